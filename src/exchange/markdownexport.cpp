#include "exchange/markdownexport.h"

#include "exchange/exchangetext.h"
#include "model/item.h"
#include "model/treewalker.h"
#include "platform/messages.h"
#include "storage/safesave.h"

#include <QIODevice>

namespace {

// The text is gathered in pieces of about this size and written as UTF-8.
constexpr qsizetype ChunkSize = 1 << 16;

class Output {
public:
    explicit Output(QIODevice &device) : m_device(device) { m_text.reserve(ChunkSize + 1024); }

    Output &operator<<(QStringView text)
    {
        m_text += text;
        return *this;
    }
    Output &operator<<(QChar c)
    {
        m_text += c;
        return *this;
    }
    void spaces(qsizetype n) { m_text.append(QString(n, QLatin1Char(' '))); }
    // Writes what has been gathered once a piece is full (always when forced).
    bool flush(bool force = false)
    {
        if (!force && m_text.size() < ChunkSize)
            return true;
        const QByteArray bytes = m_text.toUtf8();
        m_text.clear();
        return m_device.write(bytes) == bytes.size();
    }

private:
    QIODevice &m_device;
    QString m_text;
};

bool isBlank(QStringView line)
{
    return line.trimmed().isEmpty();
}

// A note's lines as paragraphs: blank lines part them, and every line but a
// paragraph's last ends in a hard break.
void writeNote(Output &out, const QString &note, qsizetype indent)
{
    const QStringList lines = note.split(QLatin1Char('\n'));
    bool inParagraph = false;
    for (const QString &line : lines) {
        if (isBlank(line)) {
            if (inParagraph)
                out << u"\n";
            inParagraph = false;
            continue;
        }
        if (inParagraph) {
            out << u"\\\n";
        } else {
            out << u"\n"; // a blank line before the paragraph
        }
        out.spaces(indent);
        out << MarkdownExport::escape(line);
        inParagraph = true;
    }
    if (inParagraph)
        out << u"\n";
}

// A link as "[address](<address>)": an importer sees the text equal to the
// address and keeps the address only.
void writeLink(Output &out, QString link)
{
    link.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
    QString destination;
    for (const QChar c : std::as_const(link)) {
        if (c == QLatin1Char('<') || c == QLatin1Char('>') || c == QLatin1Char('\\'))
            destination += QLatin1Char('\\');
        destination += c;
    }
    out << u" [" << MarkdownExport::escape(link) << u"](<" << destination << u">)";
}

void writeItem(Output &out, const Item &item, int depth, quint16 noteType)
{
    const qsizetype indent = 2 * qsizetype(depth - 1);
    out.spaces(indent);
    out << u"-";
    switch (item.statusType()) {
    case Item::CheckBox:
        out << (item.isComplete() ? u" [x]" : u" [ ]");
        break;
    case Item::ProgressBar:
        out << u" [" << QString::number(item.progress()) << u"%]";
        break;
    default:
        break;
    }
    QString name = item.name();
    name.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
    if (!name.isEmpty())
        out << u" " << MarkdownExport::escape(name);
    else if (item.statusType() != Item::CheckBox && item.statusType() != Item::ProgressBar)
        out << u" <span></span>"; // an empty list item would end before its note; a comment would open an HTML block
    for (const QString &link : item.links()) {
        if (!Item::isItemLink(link) && !link.isEmpty())
            writeLink(out, link);
    }
    out << u"\n";
    const QString note = ExchangeText::noteText(item, noteType);
    if (!note.isEmpty())
        writeNote(out, note, indent + 2);
}

} // namespace

QString MarkdownExport::escape(QStringView text)
{
    QString out;
    out.reserve(text.size() + 8);
    qsizetype begin = 0;
    qsizetype end = text.size();
    // White space at either end would be dropped: character references keep it.
    for (; begin < end && (text[begin] == QLatin1Char(' ') || text[begin] == QLatin1Char('\t')); ++begin)
        out += text[begin] == QLatin1Char(' ') ? u"&#32;" : u"&#9;";
    qsizetype tail = end;
    while (tail > begin && (text[tail - 1] == QLatin1Char(' ') || text[tail - 1] == QLatin1Char('\t')))
        --tail;

    // What would open a block at the start of a line: a list item, a
    // thematic break or a setext underline ("#" is escaped everywhere, as a
    // heading's closing sequence ends it).
    qsizetype i = begin;
    if (i < tail && QStringView(u"-+=").contains(text[i])) {
        out += QLatin1Char('\\');
    } else {
        qsizetype digits = i;
        while (digits < tail && text[digits].isDigit() && text[digits].unicode() < 0x80)
            ++digits;
        if (digits > i && digits < tail && (text[digits] == QLatin1Char('.') || text[digits] == QLatin1Char(')'))) {
            out += text.sliced(i, digits - i);
            out += QLatin1Char('\\');
            i = digits;
        }
    }
    // Inline syntax: emphasis, code, links, raw HTML, entities, and the
    // strike-through and tables that common dialects add.
    for (; i < tail; ++i) {
        const QChar c = text[i];
        if (QStringView(u"\\`*_[]<>&~|!#").contains(c))
            out += QLatin1Char('\\');
        out += c;
    }
    for (; tail < end; ++tail)
        out += text[tail] == QLatin1Char(' ') ? u"&#32;" : u"&#9;";
    return out;
}

MarkdownExport::Result MarkdownExport::write(QIODevice &device, const TreeNode *root, const Options &options)
{
    {
        TreeWalker walker(root);
        while (walker.next()) {
            if (walker.depth() > MaxDepth)
                return Result::TooDeep;
        }
    }
    Output out(device);
    out << u"#";
    if (!root->name().isEmpty())
        out << u" " << escape(root->name());
    out << u"\n\n";
    TreeWalker walker(root);
    while (const Item *item = walker.next()) {
        writeItem(out, *item, walker.depth(), options.noteType);
        if (!out.flush())
            return Result::WriteFailed;
    }
    return out.flush(true) ? Result::Ok : Result::WriteFailed;
}

MarkdownExport::Result MarkdownExport::exportMarkdown(const QString &path, const TreeNode *root,
                                                      const Options &options, QString *error)
{
    Result result = Result::Ok;
    const bool saved = SafeSave::write(
        path,
        [&](QIODevice &out) {
            result = write(out, root, options);
            return result == Result::Ok;
        },
        error);
    if (result == Result::Ok && !saved)
        result = Result::WriteFailed;
    return result;
}

QString MarkdownExport::message(Result result)
{
    switch (result) {
    case Result::Ok:
        return QString();
    case Result::TooDeep:
        return QString::fromLatin1(Messages::MarkdownTooDeep);
    case Result::WriteFailed:
        return QString::fromLatin1(Messages::ExportFailed);
    }
    return QString();
}
