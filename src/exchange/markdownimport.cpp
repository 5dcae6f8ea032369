#include "exchange/markdownimport.h"

#include "exchange/importedtree.h"
#include "exchange/textimport.h"
#include "model/document.h"
#include "model/item.h"
#include "notes/notetext.h"
#include "platform/messages.h"

#include <QFile>
#include <QFileInfo>
#include <cmark.h>
#include <memory>
#include <unordered_map>
#include <vector>

namespace {

struct NodeFree {
    void operator()(cmark_node *node) const { cmark_node_free(node); }
};
struct IterFree {
    void operator()(cmark_iter *iter) const { cmark_iter_free(iter); }
};

QString literal(cmark_node *node)
{
    return QString::fromUtf8(cmark_node_get_literal(node));
}

// The text of a block's inlines; the addresses of its links go to links.
// When dropRepeats, a link whose text is its own address leaves no text
// (with the space before it), as the exporter writes links after a name.
QString inlineText(cmark_node *block, QStringList *links, bool dropRepeats)
{
    QString text;
    // Where the text of each open link began, innermost last.
    std::vector<qsizetype> linkStarts;
    std::unique_ptr<cmark_iter, IterFree> iter(cmark_iter_new(block));
    for (cmark_event_type event; (event = cmark_iter_next(iter.get())) != CMARK_EVENT_DONE;) {
        cmark_node *node = cmark_iter_get_node(iter.get());
        const cmark_node_type type = cmark_node_get_type(node);
        if (node == block)
            continue;
        switch (type) {
        case CMARK_NODE_TEXT:
        case CMARK_NODE_CODE:
            text += literal(node);
            break;
        case CMARK_NODE_HTML_INLINE: // markup, like emphasis
            break;
        case CMARK_NODE_SOFTBREAK:
        case CMARK_NODE_LINEBREAK:
            text += QLatin1Char('\n');
            break;
        case CMARK_NODE_LINK:
        case CMARK_NODE_IMAGE:
            if (event == CMARK_EVENT_ENTER) {
                linkStarts.push_back(text.size());
            } else {
                const QString url = QString::fromUtf8(cmark_node_get_url(node)).trimmed();
                const qsizetype start = linkStarts.back();
                linkStarts.pop_back();
                if (!url.isEmpty() && !links->contains(url))
                    links->append(url);
                if (dropRepeats && !url.isEmpty() && QStringView(text).sliced(start) == url) {
                    text.truncate(start);
                    if (text.endsWith(QLatin1Char(' ')))
                        text.chop(1);
                }
            }
            break;
        default:
            break;
        }
    }
    return text;
}

// A leading "[ ]", "[x]" or "[N%]" of a list item's first paragraph, unless
// the source escaped its bracket.
void takeStatus(QString *name, Item *item, bool escaped)
{
    if (escaped || !name->startsWith(QLatin1Char('[')))
        return;
    const qsizetype close = name->indexOf(QLatin1Char(']'));
    if (close < 0 || (close + 1 < name->size() && name->at(close + 1) != QLatin1Char(' ')))
        return;
    const QStringView mark = QStringView(*name).sliced(1, close - 1);
    if (mark == QLatin1String(" ") || mark.compare(QLatin1String("x"), Qt::CaseInsensitive) == 0) {
        item->setStatusType(Item::CheckBox);
        item->storeProgress(mark == QLatin1String(" ") ? 0 : 100);
    } else if (mark.endsWith(QLatin1Char('%')) && mark.size() >= 2) {
        bool ok = false;
        const int value = mark.chopped(1).toInt(&ok);
        if (!ok || value < 0 || value > 100 || !mark.front().isDigit())
            return;
        item->setStatusType(Item::ProgressBar);
        item->storeProgress(quint16(value));
    } else {
        return;
    }
    name->remove(0, qMin(close + 2, name->size()));
}

class Builder {
public:
    Builder(const QByteArray &source, TreeNode *root, const MarkdownImport::Options &options)
        : m_source(source), m_root(root), m_options(options), m_now(SystemTime::now())
    {
        for (qsizetype i = 0; i < source.size(); ++i) {
            if (source[i] == '\n')
                m_lineStarts.push_back(i + 1);
        }
    }

    void build(cmark_node *document)
    {
        cmark_node *title = rootHeading(document);
        std::unique_ptr<cmark_iter, IterFree> iter(cmark_iter_new(document));
        for (cmark_event_type event; (event = cmark_iter_next(iter.get())) != CMARK_EVENT_DONE;) {
            cmark_node *node = cmark_iter_get_node(iter.get());
            const cmark_node_type type = cmark_node_get_type(node);
            if (type == CMARK_NODE_ITEM) {
                if (event == CMARK_EVENT_ENTER) {
                    Item *item = newItem(QString(), parent());
                    m_open.push_back({item, false});
                } else {
                    m_open.pop_back();
                }
                continue;
            }
            if (event != CMARK_EVENT_ENTER)
                continue;
            switch (type) {
            case CMARK_NODE_PARAGRAPH:
            case CMARK_NODE_HEADING: {
                QStringList links;
                const bool naming = type == CMARK_NODE_PARAGRAPH && !m_open.empty() && !m_open.back().named &&
                                    cmark_node_get_type(cmark_node_parent(node)) == CMARK_NODE_ITEM;
                QString text = inlineText(node, &links, naming || type == CMARK_NODE_HEADING);
                if (node == title) {
                    m_root->setName(text);
                } else if (naming) {
                    Item *item = m_open.back().item;
                    takeStatus(&text, item, escapedAt(node));
                    item->setName(text);
                    m_open.back().named = true;
                    addLinks(item, links);
                } else if (type == CMARK_NODE_HEADING && m_open.empty()) {
                    heading(cmark_node_get_heading_level(node), text, links);
                } else {
                    addNote(text, links);
                }
                cmark_iter_reset(iter.get(), node, CMARK_EVENT_EXIT);
                break;
            }
            case CMARK_NODE_CODE_BLOCK:
            case CMARK_NODE_HTML_BLOCK: {
                QString text = literal(node);
                if (text.endsWith(QLatin1Char('\n')))
                    text.chop(1);
                addNote(text, {});
                break;
            }
            default:
                break;
            }
            // A block other than the first paragraph means the item has no name.
            if (!m_open.empty() && type != CMARK_NODE_ITEM && type != CMARK_NODE_LIST)
                m_open.back().named = true;
        }
        for (auto &[item, note] : m_notes)
            item->setNote(NoteText::fromText(note, m_options.noteType));
    }

private:
    struct Open {
        Item *item;
        bool named;
    };

    // The heading that names the root: the file's first block, ranked above
    // every other heading.
    static cmark_node *rootHeading(cmark_node *document)
    {
        cmark_node *first = cmark_node_first_child(document);
        if (!first || cmark_node_get_type(first) != CMARK_NODE_HEADING)
            return nullptr;
        const int level = cmark_node_get_heading_level(first);
        for (cmark_node *node = cmark_node_next(first); node; node = cmark_node_next(node)) {
            if (cmark_node_get_type(node) == CMARK_NODE_HEADING && cmark_node_get_heading_level(node) <= level)
                return nullptr;
        }
        return first;
    }

    // Whether the block's source starts with a backslash: "\[x]" is a name,
    // not a check box.
    bool escapedAt(cmark_node *node) const
    {
        const int line = cmark_node_get_start_line(node);
        const int column = cmark_node_get_start_column(node);
        if (line < 1 || size_t(line) > m_lineStarts.size() + 1 || column < 1)
            return false;
        const qsizetype at = (line == 1 ? 0 : m_lineStarts[size_t(line - 2)]) + column - 1;
        return at < m_source.size() && m_source[at] == '\\';
    }

    TreeNode *parent() const
    {
        if (!m_open.empty())
            return m_open.back().item;
        if (!m_headings.empty())
            return m_headings.back().second;
        return m_root;
    }

    Item *newItem(const QString &name, TreeNode *under)
    {
        auto *item = new Item(name, m_options.icon, m_now);
        item->setStatusType(Item::NoStatus);
        under->appendChild(item);
        return item;
    }

    void heading(int level, const QString &text, const QStringList &links)
    {
        while (!m_headings.empty() && m_headings.back().first >= level)
            m_headings.pop_back();
        Item *item = newItem(text, parent());
        addLinks(item, links);
        m_headings.emplace_back(level, item);
    }

    // Text that belongs to the innermost item; one outside every item
    // becomes an item of its own.
    void addNote(const QString &text, const QStringList &links)
    {
        Item *owner = !m_open.empty() ? m_open.back().item : !m_headings.empty() ? m_headings.back().second : nullptr;
        if (!owner) {
            Item *item = newItem(QString(text).replace(QLatin1Char('\n'), QLatin1Char(' ')), m_root);
            addLinks(item, links);
            return;
        }
        QString &note = m_notes[owner];
        if (!note.isEmpty())
            note += QLatin1String("\n\n");
        note += text;
        addLinks(owner, links);
    }

    static void addLinks(Item *item, const QStringList &links)
    {
        if (links.isEmpty())
            return;
        QStringList all = item->links();
        for (const QString &link : links) {
            if (!all.contains(link))
                all.append(link);
        }
        item->setLinks(all);
    }

    const QByteArray &m_source;
    TreeNode *m_root;
    const MarkdownImport::Options &m_options;
    const SystemTime m_now;
    std::vector<qsizetype> m_lineStarts;
    std::vector<Open> m_open;
    std::vector<std::pair<int, Item *>> m_headings;
    std::unordered_map<Item *, QString> m_notes;
};

MarkdownImport::Result readFile(const QString &path, QByteArray *bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return MarkdownImport::Result::Unreadable;
    *bytes = file.readAll();
    return file.error() == QFileDevice::NoError ? MarkdownImport::Result::Ok : MarkdownImport::Result::Unreadable;
}

} // namespace

MarkdownImport::Result MarkdownImport::read(const QByteArray &markdown, TreeNode *root, const Options &options)
{
    const QByteArray source = markdown.startsWith("\xef\xbb\xbf") ? markdown.mid(3) : markdown;
    std::unique_ptr<cmark_node, NodeFree> document(
        cmark_parse_document(source.constData(), size_t(source.size()), CMARK_OPT_DEFAULT));
    if (!document)
        return Result::Unreadable;
    Builder(source, root, options).build(document.get());
    return Result::Ok;
}

MarkdownImport::Result MarkdownImport::importDocument(const QString &path, const Options &options,
                                                      Document *document)
{
    document->noteType = options.noteType;
    document->path = TextImport::documentPath(path);
    document->root()->setName(QFileInfo(path).completeBaseName());
    QByteArray bytes;
    if (const Result result = readFile(path, &bytes); result != Result::Ok)
        return result;
    return read(bytes, document->root(), options);
}

MarkdownImport::Result MarkdownImport::importInto(const QString &path, Document *document, TreeNode *target,
                                                  const Options &options)
{
    QByteArray bytes;
    if (const Result result = readFile(path, &bytes); result != Result::Ok)
        return result;
    Options into = options;
    into.noteType = document->noteType;
    return ImportedTree::into(
        document, target, [&](TreeNode *root, Document *) { return read(bytes, root, into); }, Result::Ok);
}

QString MarkdownImport::message(Result result)
{
    return result == Result::Ok ? QString() : QString::fromLatin1(Messages::ImportTooLarge);
}
