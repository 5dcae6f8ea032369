#include "views/groupview.h"

#include "model/childorder.h"
#include "model/document.h"
#include "model/treewalker.h"

#include <QLocale>

namespace {

QString noCategoryText()
{
    return QStringLiteral("[No Category]");
}

QString noDueDateText()
{
    return QStringLiteral("[No Task/Due Date]");
}

QString longDateText(const SystemTime &date)
{
    const QDate day(date.year, date.month, date.day);
    // A stored date the calendar cannot hold still gets a heading of its own.
    if (!day.isValid())
        return QStringLiteral("%1-%2-%3")
            .arg(date.year, 4, 10, QLatin1Char('0'))
            .arg(date.month, 2, 10, QLatin1Char('0'))
            .arg(date.day, 2, 10, QLatin1Char('0'));
    return QLocale().toString(day, QLocale::LongFormat).left(63);
}

// Texts are a function of one small value per mode, so each value's text is
// made once per build: a million items share a few thousand headings.
quint64 groupValue(const Item *item, quint16 mode)
{
    switch (mode) {
    case GroupView::ByDueDate: {
        const SystemTime date = item->dueDate();
        if (!date.hasDate())
            return 0;
        return quint64(date.year) << 32 | quint64(date.month) << 16 | date.day;
    }
    case GroupView::ByPriority:
        return item->priority();
    default:
        return item->progress();
    }
}

} // namespace

QString GroupView::headingText(const Item *item, quint16 mode)
{
    switch (mode) {
    case ByCategory: {
        const QString category = item->category();
        return category.isEmpty() ? noCategoryText() : category;
    }
    case ByDueDate:
        return item->hasDueDate() ? longDateText(item->dueDate()) : noDueDateText();
    case ByPriority:
        return QStringLiteral("Priority %1").arg(item->priority());
    default:
        return QStringLiteral("%1%").arg(item->progress());
    }
}

quint16 GroupView::headingKey(quint16 mode)
{
    switch (mode) {
    case ByCategory:
        return TreeNode::SortCategory;
    case ByDueDate:
        return TreeNode::SortDueDate;
    case ByPriority:
        return TreeNode::SortPriority;
    default:
        return TreeNode::SortPercentComplete;
    }
}

quint16 GroupView::headingIcon(quint16 mode)
{
    switch (mode) {
    case ByCategory:
        return GroupHeading::CategoryIcon;
    case ByDueDate:
        return GroupHeading::DueDateIcon;
    case ByPriority:
        return GroupHeading::PriorityIcon;
    default:
        return GroupHeading::PercentCompleteIcon;
    }
}

GroupView::GroupView(const Document &document, quint16 mode, const VisibilityFilter &filter)
    : m_filter(filter), m_rootName(document.root()->name()), m_mode(mode), m_orderKey(document.viewOrder),
      m_ascending(document.viewAscending)
{
    QHash<quint64, GroupHeading *> byValue;
    QString lastCategory;
    GroupHeading *lastHeading = nullptr;
    // Depth of the first hidden item of the branch being walked; everything
    // deeper belongs to its hidden branch.
    int hiddenDepth = 0;
    TreeWalker walker(document.root());
    while (Item *item = walker.next()) {
        if (m_filter.isActive()) {
            const int depth = walker.depth();
            if (hiddenDepth && depth <= hiddenDepth)
                hiddenDepth = 0;
            if (!hiddenDepth && !m_filter.isVisible(item))
                hiddenDepth = depth;
            if (hiddenDepth)
                m_hidden.insert(item);
        }
        GroupHeading *heading = nullptr;
        if (mode == ByCategory) {
            // Neighbours in the tree mostly share a category.
            QString category = item->category();
            if (lastHeading && category == lastCategory) {
                heading = lastHeading;
            } else {
                heading = findOrMake(item, category.isEmpty() ? noCategoryText() : category);
                lastCategory = std::move(category);
                lastHeading = heading;
            }
        } else {
            const quint64 value = groupValue(item, mode);
            heading = byValue.value(value);
            if (!heading) {
                heading = findOrMake(item, headingText(item, mode));
                byValue.insert(value, heading);
            }
        }
        heading->m_items.push_back(item);
    }
    for (GroupHeading *heading : m_headings)
        heading->setOrder(m_orderKey, m_ascending);
    sortHeadings();
}

GroupView::~GroupView() = default;

GroupHeading *GroupView::findOrMake(const Item *item, const QString &text, bool *isNew)
{
    if (GroupHeading *known = m_byText.value(text))
        return known;
    m_owned.push_back(std::make_unique<GroupHeading>(text, headingIcon(m_mode), item));
    GroupHeading *heading = m_owned.back().get();
    m_headings.push_back(heading);
    m_byText.insert(text, heading);
    if (isNew)
        *isNew = true;
    return heading;
}

void GroupView::sortHeadings()
{
    // The headings are ordered through the grouping values they copied, with
    // the same stable sort as items.
    std::vector<Item *> values;
    values.reserve(m_headings.size());
    QHash<const Item *, GroupHeading *> headingOfValues;
    for (GroupHeading *heading : m_headings) {
        values.push_back(heading->m_values.get());
        headingOfValues.insert(heading->m_values.get(), heading);
    }
    ChildOrder::sortItems(values, headingKey(m_mode), m_ascending);
    for (size_t i = 0; i < values.size(); ++i)
        m_headings[i] = headingOfValues.value(values[i]);
}

GroupView::Insertion GroupView::insertItem(Item *item)
{
    Insertion insertion;
    insertion.heading = findOrMake(item, headingText(item, m_mode), &insertion.isNew);
    insertion.heading->m_items.push_back(item);
    insertion.heading->setOrder(m_orderKey, m_ascending);
    if (m_filter.isActive() && !m_filter.isShown(item))
        m_hidden.insert(item);
    if (insertion.isNew) {
        insertion.heading->setExpanded(true);
        sortHeadings();
    }
    return insertion;
}

void GroupView::setOrder(quint16 key, bool ascending)
{
    m_orderKey = key;
    m_ascending = ascending;
    for (GroupHeading *heading : m_headings)
        heading->setOrder(m_orderKey, m_ascending);
    sortHeadings();
}
