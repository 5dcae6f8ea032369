#include "exchange/xmlexport.h"

#include "exchange/notetext.h"
#include "model/item.h"
#include "model/treewalker.h"

#include <QFile>
#include <QtEndian>

namespace {

const char *const EncodingLabels[] = {"(Default)", "UTF-8", "UTF-16", "ISO-8859-1", "Big-5", "Shift-JIS", "GB2312"};

// Where the text goes: kept whole as UTF-16 (text()), or turned into the
// file's bytes piece by piece (exportXml), which gives the bytes of the whole
// text converted at once without holding both forms of it.
class Output {
public:
    Output() = default;
    Output(bool utf16, CodePage *codePage) : m_encode(true), m_utf16(utf16), m_codePage(codePage)
    {
        if (m_utf16)
            m_bytes = QByteArrayLiteral("\xff\xfe");
    }

    QString &buffer() { return m_buffer; }
    void maybeFlush()
    {
        if (m_encode && m_buffer.size() >= 1 << 18)
            flush();
    }
    QString takeText() { return std::move(m_buffer); }
    QByteArray takeBytes()
    {
        flush();
        if (!m_utf16) {
            m_codePage->finish(&m_bytes);
            // One byte per UTF-16 unit, whatever the conversion produced.
            const qsizetype produced = m_bytes.size();
            m_bytes.resize(m_units);
            if (produced < m_units)
                std::fill(m_bytes.begin() + produced, m_bytes.end(), '\0');
        }
        return std::move(m_bytes);
    }

private:
    void flush()
    {
        m_units += m_buffer.size();
        if (m_utf16) {
            const qsizetype start = m_bytes.size();
            m_bytes.resize(start + 2 * m_buffer.size());
            qToLittleEndian<quint16>(m_buffer.constData(), m_buffer.size(), m_bytes.data() + start);
        } else {
            m_codePage->append(m_buffer, &m_bytes);
        }
        m_buffer.clear();
    }

    QString m_buffer;
    QByteArray m_bytes;
    qsizetype m_units = 0;
    bool m_encode = false;
    bool m_utf16 = false;
    CodePage *m_codePage = nullptr;
};

void appendEscaped(QString &out, QStringView text)
{
    qsizetype plain = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        const char *replacement = nullptr;
        switch (c) {
        case u'<':
            replacement = "&amp;lt;";
            break;
        case u'>':
            replacement = "&amp;gt;";
            break;
        case u'&':
            replacement = "&amp;";
            break;
        case u'"':
            replacement = "&quot;";
            break;
        case u'\'':
            replacement = "&apos;";
            break;
        default:
            continue;
        }
        out.append(text.mid(plain, i - plain));
        out.append(QLatin1StringView(replacement));
        plain = i + 1;
    }
    out.append(text.mid(plain));
}

void appendNumber(QString &out, quint64 value, int width = 1)
{
    char digits[24];
    int n = 0;
    do {
        digits[sizeof digits - 1 - n++] = char('0' + value % 10);
        value /= 10;
    } while (value);
    while (n < width)
        digits[sizeof digits - 1 - n++] = '0';
    out.append(QLatin1StringView(digits + sizeof digits - n, n));
}

// The writer primitives, each appending exactly its text.
class XmlWriter {
public:
    explicit XmlWriter(Output &output) : m_out(output), m_text(output.buffer()) {}

    void raw(QLatin1StringView text) { m_text.append(text); }
    void openStart(QLatin1StringView name)
    {
        m_text.append(QLatin1Char('<'));
        m_text.append(name);
    }
    void attribute(QLatin1StringView key, QStringView value)
    {
        beginAttribute(key);
        appendEscaped(m_text, value);
        m_text.append(QLatin1Char('"'));
    }
    void attribute(QLatin1StringView key, quint64 value)
    {
        beginAttribute(key);
        appendNumber(m_text, value);
        m_text.append(QLatin1Char('"'));
    }
    void endOfStartTag() { m_text.append(QLatin1StringView(">\r\n")); }
    void startTag(QLatin1StringView name)
    {
        openStart(name);
        endOfStartTag();
    }
    void endTag(QLatin1StringView name)
    {
        m_text.append(QLatin1StringView("</"));
        m_text.append(name);
        endOfStartTag();
    }
    void element(QLatin1StringView name, QStringView value, bool present = true)
    {
        if (!present) {
            emptyElement(name);
            return;
        }
        openStart(name);
        m_text.append(QLatin1Char('>'));
        appendEscaped(m_text, value);
        endTag(name);
    }
    void element(QLatin1StringView name, quint64 value)
    {
        openStart(name);
        m_text.append(QLatin1Char('>'));
        appendNumber(m_text, value);
        endTag(name);
    }
    void emptyElement(QLatin1StringView name)
    {
        openStart(name);
        m_text.append(QLatin1StringView(" />\r\n"));
    }
    void cdata(QStringView text)
    {
        m_text.append(QLatin1StringView("<![CDATA[\r\n"));
        m_text.append(text);
        m_text.append(QLatin1StringView("\r\n]]>\r\n"));
    }
    QString &text() { return m_text; }
    void pieceDone() { m_out.maybeFlush(); }

private:
    void beginAttribute(QLatin1StringView key)
    {
        m_text.append(QLatin1Char(' '));
        m_text.append(key);
        m_text.append(QLatin1StringView("=\""));
    }

    Output &m_out;
    QString &m_text;
};

const TreeNode *topOf(const TreeNode *node)
{
    while (node->parent())
        node = node->parent();
    return node;
}

void writeDate(QString &out, const SystemTime &time)
{
    appendNumber(out, time.year, 4);
    out.append(QLatin1Char('-'));
    appendNumber(out, time.month, 2);
    out.append(QLatin1Char('-'));
    appendNumber(out, time.day, 2);
}

void writeItem(XmlWriter &w, const Item *item, const TreeNode *top, quint16 noteType)
{
    w.openStart(QLatin1StringView("ITEM"));
    w.attribute(QLatin1StringView("StdFlags"), item->stdFlags());
    w.attribute(QLatin1StringView("Flags"), item->flags());
    w.attribute(QLatin1StringView("Image"), item->image());
    w.attribute(QLatin1StringView("Sort"), item->sort());
    w.endOfStartTag();

    // A name that was never set is absent ("<NAME />"); an empty one is not.
    w.element(QLatin1StringView("NAME"), item->name(), !item->name().isNull());

    const QString taskTime = item->taskTime();
    if (!taskTime.isEmpty()) {
        w.openStart(QLatin1StringView("TASKTIME"));
        w.attribute(QLatin1StringView("Type"), item->taskTimeType());
        w.endOfStartTag();
        appendEscaped(w.text(), taskTime);
        w.endTag(QLatin1StringView("TASKTIME"));
    } else {
        w.emptyElement(QLatin1StringView("TASKTIME"));
    }

    w.element(QLatin1StringView("COLOUR"), item->colour());
    const SystemTime due = item->dueDate();
    if (due.hasDate()) {
        w.openStart(QLatin1StringView("DUEDATE"));
        w.text().append(QLatin1Char('>'));
        writeDate(w.text(), due);
        w.endTag(QLatin1StringView("DUEDATE"));
    } else {
        w.emptyElement(QLatin1StringView("DUEDATE"));
    }
    w.element(QLatin1StringView("PROGRESS"), item->progress());
    w.element(QLatin1StringView("STATUSTYPE"), item->statusType());
    w.element(QLatin1StringView("PRIORITY"), item->priority());
    w.element(QLatin1StringView("CATEGORY"), item->category(), !item->category().isEmpty());

    // CREATED is always written: the date, "T", the time on a 24-hour clock.
    const SystemTime &created = item->created();
    w.openStart(QLatin1StringView("CREATED"));
    w.text().append(QLatin1Char('>'));
    writeDate(w.text(), created);
    w.text().append(QLatin1Char('T'));
    appendNumber(w.text(), created.hour, 2);
    w.text().append(QLatin1Char(':'));
    appendNumber(w.text(), created.minute, 2);
    w.text().append(QLatin1Char(':'));
    appendNumber(w.text(), created.second, 2);
    w.endTag(QLatin1StringView("CREATED"));

    const QStringList links = item->links();
    if (links.isEmpty()) {
        w.emptyElement(QLatin1StringView("LINKS"));
    } else {
        w.startTag(QLatin1StringView("LINKS"));
        for (const QString &link : links) {
            if (Item::isItemLink(link)) {
                // An item link names its target; a dead one leaves no trace.
                const Item *target = Item::fromHandle(Item::handleOfLink(link));
                if (!target || topOf(target) != top)
                    continue;
                w.element(QLatin1StringView("LINK"), target->name(), !target->name().isNull());
            } else {
                w.element(QLatin1StringView("LINK"), link);
            }
        }
        w.endTag(QLatin1StringView("LINKS"));
    }

    if (item->noteSize() == 0) {
        w.emptyElement(QLatin1StringView("NOTE"));
    } else {
        w.startTag(QLatin1StringView("NOTE"));
        w.cdata(NoteText::plainText(item->note(), noteType));
        w.endTag(QLatin1StringView("NOTE"));
    }
}

void writeDocument(Output &output, const TreeNode *root, const XmlExport::Options &options)
{
    XmlWriter w(output);
    w.raw(QLatin1StringView("<?xml version=\"1.0\" "));
    if (options.encoding > 0) {
        w.raw(QLatin1StringView("encoding=\""));
        w.text().append(XmlExport::encodingLabel(options.encoding));
        w.raw(QLatin1StringView("\" "));
    }
    w.raw(QLatin1StringView("?>\r\n"));

    // The root's record: its StdFlags value goes by the name Flags here.
    w.openStart(QLatin1StringView("ROOT"));
    w.attribute(QLatin1StringView("Flags"), root->stdFlags());
    w.attribute(QLatin1StringView("Image"), root->image());
    w.attribute(QLatin1StringView("Sort"), root->sort());
    w.attribute(QLatin1StringView("Name"), root->name());
    w.endOfStartTag();

    const TreeNode *top = topOf(root);
    // Items whose SUBITEMS are open; an explicit stack, so any depth is safe.
    qsizetype open = 0;
    TreeWalker walker(root);
    while (const Item *item = walker.next()) {
        for (; open >= walker.depth(); --open) {
            w.endTag(QLatin1StringView("SUBITEMS"));
            w.endTag(QLatin1StringView("ITEM"));
        }
        writeItem(w, item, top, options.noteType);
        if (item->hasChildren()) {
            w.startTag(QLatin1StringView("SUBITEMS"));
            ++open;
        } else {
            w.endTag(QLatin1StringView("ITEM"));
        }
        w.pieceDone();
    }
    for (; open > 0; --open) {
        w.endTag(QLatin1StringView("SUBITEMS"));
        w.endTag(QLatin1StringView("ITEM"));
    }
    w.endTag(QLatin1StringView("ROOT"));
}

} // namespace

QString XmlExport::encodingLabel(int index)
{
    if (index < 0 || index >= int(std::size(EncodingLabels)))
        return QString();
    return QLatin1StringView(EncodingLabels[index]);
}

QStringList XmlExport::encodingLabels()
{
    QStringList labels;
    for (const char *label : EncodingLabels)
        labels << QLatin1StringView(label);
    return labels;
}

QString XmlExport::escape(QStringView text)
{
    QString out;
    out.reserve(text.size());
    appendEscaped(out, text);
    return out;
}

QString XmlExport::text(const TreeNode *root, const Options &options)
{
    Output output;
    writeDocument(output, root, options);
    return output.takeText();
}

bool XmlExport::exportXml(const QString &path, const TreeNode *root, const Options &options)
{
    if (!root)
        return false;
    const bool utf16 = options.encoding == Utf16Encoding;
    CodePage codePage(utf16 ? CodePage::defaultName() : options.codePage);
    if (!codePage.isValid())
        return false;
    QByteArray bytes;
    {
        Output output(utf16, &codePage);
        writeDocument(output, root, options);
        bytes = output.takeBytes();
    }
    // The file is created only now that the whole text exists.
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite | QIODevice::Truncate))
        return false;
    if (file.write(bytes) != bytes.size())
        return false;
    return file.flush();
}
