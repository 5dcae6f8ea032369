#include "views/finder.h"

#include "notes/notetext.h"
#include "model/document.h"
#include "platform/collation.h"
#include "views/visibilityfilter.h"

namespace {

// The day of a date as a file time; a date the calendar cannot hold counts
// as the earliest time, as the due-date ordering does.
qint64 dayOf(SystemTime date)
{
    date.hour = date.minute = date.second = date.milliseconds = 0;
    qint64 fileTime = 0;
    if (!date.toFileTime(&fileTime))
        return 0;
    return fileTime;
}

void lowerInto(QStringView text, QString &out)
{
    out.resize(text.size());
    QChar *data = out.data();
    const QChar *in = text.data();
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t unit = in[i].unicode();
        if (unit < 0x80)
            data[i] = QChar(unit >= 'A' && unit <= 'Z' ? unit + 32 : unit);
        else
            data[i] = QChar(QChar::toLower(unit)); // one unit to one unit; surrogates stay
    }
}

} // namespace

QString Finder::lowered(const QString &text)
{
    QString out;
    lowerInto(text, out);
    return out;
}

Finder::Finder(const FindCriteria &criteria, quint16 noteType) : m_criteria(criteria), m_noteType(noteType)
{
    m_name = criteria.caseInsensitive ? lowered(criteria.name) : criteria.name;
    m_phrase = criteria.caseInsensitive ? lowered(criteria.notePhrase) : criteria.notePhrase;
    m_day = dayOf(criteria.date);
}

bool Finder::nameMatches(const QString &name) const
{
    if (!m_criteria.caseInsensitive)
        return name.contains(m_name);
    lowerInto(name, m_buffer);
    return QStringView(m_buffer).contains(m_name);
}

bool Finder::categoryMatches(const QString &category) const
{
    // Equal by the locale, whatever the case option says.
    if (category == m_criteria.category)
        return true;
    const auto known = m_categoryResults.constFind(category);
    if (known != m_categoryResults.constEnd())
        return *known;
    const bool equal = Collation::instance().equal(category, m_criteria.category);
    m_categoryResults.insert(category, equal);
    return equal;
}

bool Finder::dueDateMatches(const Item *item) const
{
    if (!item->hasDueDate())
        return false;
    const qint64 day = dayOf(item->dueDate());
    switch (m_criteria.dateOperator) {
    case FindCriteria::LessThan:
        return day < m_day;
    case FindCriteria::EqualTo:
        return day == m_day;
    case FindCriteria::GreaterThan:
        return day > m_day;
    }
    return false;
}

bool Finder::noteMatches(const Item *item) const
{
    if (item->noteSize() == 0)
        return false;
    QString text = NoteText::plainText(item->note(), m_noteType);
    if (m_criteria.caseInsensitive)
        text = lowered(text);
    return text.contains(m_phrase);
}

bool Finder::matches(const Item *item) const
{
    const FindCriteria &c = m_criteria;
    if (c.has(FindCriteria::Name) && !nameMatches(item->name()))
        return false;
    if (c.has(FindCriteria::Priority) && item->priority() != c.priority)
        return false;
    if (c.has(FindCriteria::Category) && !categoryMatches(item->category()))
        return false;
    if (c.has(FindCriteria::DueDate) && !dueDateMatches(item))
        return false;
    // "Completed" cleared finds only items not started, not every unfinished
    // item.
    if (c.has(FindCriteria::Progress) && item->progress() != c.progress)
        return false;
    if (c.has(FindCriteria::Colour) && item->colour() != c.colour)
        return false;
    if (c.has(FindCriteria::Italic) && item->isItalic() != c.italic)
        return false;
    if (c.has(FindCriteria::ShowIcon) && item->showIcon() != c.showIcon)
        return false;
    // The note is converted last: it is by far the dearest test.
    if (c.has(FindCriteria::NotePhrase) && !noteMatches(item))
        return false;
    return true;
}

std::vector<Item *> Finder::search(const Document &document, const FindCriteria &criteria)
{
    const Finder finder(criteria, document.noteType);
    const VisibilityFilter filter(document);
    const bool filterActive = filter.isActive();
    std::vector<Item *> found;
    // Depth-first with an explicit stack. Each item's children, and their
    // names, are fetched from memory while the branches before them are
    // searched: the search itself is cheap, waiting for memory is not.
    std::vector<std::pair<const TreeNode *, size_t>> stack{{document.root(), 0}};
    while (!stack.empty()) {
        auto &[node, index] = stack.back();
        const std::span<Item *const> children = node->children();
        if (index >= children.size()) {
            stack.pop_back();
            continue;
        }
        Item *item = children[index++];
        if (filterActive && !filter.isVisible(item))
            continue; // a hidden branch holds no match to list
        if (finder.matches(item))
            found.push_back(item);
        if (item->hasChildren()) {
            for (const Item *child : item->children())
                __builtin_prefetch(child->name().constData());
            stack.emplace_back(item, 0);
        }
    }
    return found;
}
