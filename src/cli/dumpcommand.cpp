#include "cli/clicommand.h"
#include "cli/documentloading.h"
#include "cli/standardoutput.h"

#include <QHash>
#include <cstdio>

namespace {

/// JSON written straight to stdout in large pieces, so a document of a
/// million items (or one a million levels deep) never builds a JSON tree.
class JsonOut {
public:
    ~JsonOut() { flush(); }
    JsonOut &raw(const char *text)
    {
        m_buffer.append(text);
        return *this;
    }
    JsonOut &number(qint64 value)
    {
        m_buffer.append(QByteArray::number(value));
        return *this;
    }
    JsonOut &boolean(bool value) { return raw(value ? "true" : "false"); }
    JsonOut &key(const char *name)
    {
        m_buffer.append('"').append(name).append("\":");
        return *this;
    }
    JsonOut &string(const QString &text);
    JsonOut &latin1(const QByteArray &text)
    {
        m_buffer.append('"').append(text).append('"');
        return *this;
    }
    JsonOut &time(const SystemTime &t)
    {
        raw("[");
        const auto fields = t.fields();
        for (size_t i = 0; i < fields.size(); ++i) {
            if (i)
                raw(",");
            number(fields[i]);
        }
        return raw("]");
    }
    void maybeFlush()
    {
        if (m_buffer.size() > (1 << 20))
            flush();
    }
    void flush()
    {
        StandardOutput::write(m_buffer);
        m_buffer.resize(0);
    }

private:
    QByteArray m_buffer;
};

JsonOut &JsonOut::string(const QString &text)
{
    m_buffer.append('"');
    const qsizetype size = text.size();
    for (qsizetype i = 0; i < size; ++i) {
        const char16_t c = text[i].unicode();
        if (c == u'"' || c == u'\\') {
            m_buffer.append('\\').append(char(c));
        } else if (c < 0x20) {
            m_buffer.append(QByteArray("\\u00") + QByteArray::number(c, 16).rightJustified(2, '0'));
        } else if (QChar::isHighSurrogate(c) && i + 1 < size && QChar::isLowSurrogate(text[i + 1].unicode())) {
            m_buffer.append(text.mid(i, 2).toUtf8());
            ++i;
        } else if (QChar::isSurrogate(c)) {
            // A lone surrogate has no UTF-8 form; the escape keeps the unit.
            m_buffer.append(QByteArray("\\u") + QByteArray::number(c, 16).rightJustified(4, '0'));
        } else {
            m_buffer.append(QString(QChar(c)).toUtf8());
        }
    }
    m_buffer.append('"');
    return *this;
}

void writeNodeFields(JsonOut &out, const TreeNode *node)
{
    out.key("Image").number(node->image()).raw(",");
    out.key("Sort").number(node->sort()).raw(",");
    out.key("Name").string(node->name()).raw(",");
    out.key("ExtraWord").number(node->extraWord()).raw(",");
    out.key("Expanded").boolean(node->isExpanded()).raw(",");
    out.key("Ascending").boolean(node->isAscending()).raw(",");
}

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Loads a document and prints it as JSON on standard output. Item links are written as "
                       "\"!\" and the target's 1-based position in depth-first order, \"!0\" for a dead link; "
                       "notes are base64; times are the eight date-time numbers.\n"
                       "Exit status: 0 loaded, 1 unreadable or damaged, 2 unsupported version, 4 not found."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The .qbx document."));
    if (const int status = DocumentLoading::parse(parser, arguments, "dump", 1, 1); status >= 0)
        return status;
    Document document;
    if (const int status = DocumentLoading::load(parser.positionalArguments().at(0), &document))
        return status;
    const TreeNode *root = document.root();

    // Positions of the current Item and of link targets that live in this tree.
    QHash<const Item *, qint64> positions;
    root->forEachDescendant([&positions](const Item *item) {
        for (const QString &link : item->links()) {
            if (const Item *target = Item::fromHandle(Item::handleOfLink(link)))
                positions.insert(target, 0);
        }
    });
    if (const Item *current = document.currentItem())
        positions.insert(current, 0);
    if (!positions.isEmpty()) {
        qint64 position = 0;
        root->forEachDescendant([&](const Item *item) {
            ++position;
            const auto found = positions.find(item);
            if (found != positions.end())
                *found = position;
        });
    }

    JsonOut out;
    out.raw("{");
    out.key("Version").number(document.version).raw(",");
    out.key("PasswordHash").latin1(document.passwordHash.toHex()).raw(",");
    out.key("NoteType").number(document.noteType).raw(",");
    out.key("ViewMode").number(document.viewMode).raw(",");
    out.key("ViewOrder").number(document.viewOrder).raw(",");
    out.key("ViewAscending").boolean(document.viewAscending).raw(",");
    out.key("HideCompleted").boolean(document.hideCompleted).raw(",");
    out.key("ShowNoteWindow").boolean(document.showNoteWindow).raw(",");
    out.key("ShowDueDate").boolean(document.showDueDate).raw(",");
    out.key("ShowStatistics").boolean(document.showStatistics).raw(",");
    out.key("HideByStatus").number(document.hideByStatus).raw(",");
    out.key("Current").number(document.currentItem() ? positions.value(document.currentItem()) : 0).raw(",");
    out.key("Categories").raw("[");
    for (qsizetype i = 0; i < document.categories.size(); ++i) {
        if (i)
            out.raw(",");
        out.string(document.categories.at(i));
    }
    out.raw("],");
    out.key("Root").raw("{");
    writeNodeFields(out, root);
    out.key("Children").raw("[");

    TreeWalker walker(root);
    int open = 0; // Items whose Children array is still open
    while (const Item *item = walker.next()) {
        const int depth = walker.depth();
        const bool sibling = open >= depth;
        while (open >= depth) {
            out.raw("]}");
            --open;
        }
        if (sibling)
            out.raw(",");
        out.raw("{");
        writeNodeFields(out, item);
        out.key("TaskTime").string(item->taskTime()).raw(",");
        out.key("TaskTimeType").number(item->taskTimeType()).raw(",");
        out.key("Colour").number(item->colour()).raw(",");
        out.key("Created").time(item->created()).raw(",");
        out.key("Progress").number(item->progress()).raw(",");
        out.key("StatusType").number(item->statusType()).raw(",");
        out.key("ShowIcon").boolean(item->showIcon()).raw(",");
        out.key("AutoProgress").boolean(item->autoProgress()).raw(",");
        out.key("Italic").boolean(item->isItalic()).raw(",");
        out.key("Category").string(item->category()).raw(",");
        out.key("Priority").number(item->priority()).raw(",");
        out.key("DueDate").time(item->dueDate()).raw(",");
        out.key("ReminderTime").time(item->reminderTime()).raw(",");
        out.key("Note").latin1(item->note().toBase64()).raw(",");
        out.key("Links").raw("[");
        const QStringList links = item->links();
        for (qsizetype i = 0; i < links.size(); ++i) {
            if (i)
                out.raw(",");
            if (Item::isItemLink(links[i])) {
                const Item *target = Item::fromHandle(Item::handleOfLink(links[i]));
                out.string(QLatin1Char('!') + QString::number(target ? positions.value(target) : 0));
            } else {
                out.string(links[i]);
            }
        }
        out.raw("],");
        out.key("Children").raw("[");
        open = depth;
        out.maybeFlush();
    }
    while (open-- > 0)
        out.raw("]}");
    out.raw("]}}\n");
    out.flush();
    return StandardOutput::finish(ExitCode::Ok);
}

const CliCommand command("dump", "Print a document as JSON", run);

} // namespace
