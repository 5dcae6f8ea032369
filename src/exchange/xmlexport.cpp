#include "exchange/xmlexport.h"

#include "model/linktargets.h"
#include "notes/notetext.h"
#include "model/item.h"
#include "model/treewalker.h"
#include "storage/safesave.h"

#include "storage/safesave.h"

#include <QIODevice>
#include <QtEndian>
#include <cstring>
#include <vector>

namespace {

const char *const EncodingLabels[] = {"(Default)", "UTF-8", "UTF-16", "ISO-8859-1", "Big-5", "Shift-JIS", "GB2312"};

// Where the text goes: kept whole as UTF-16 (text()), or turned into the
// file's bytes piece by piece and streamed to a device (exportXml), which
// gives the bytes of the whole text converted at once without ever holding
// the whole of either form. Appends go into a fixed chunk by plain copies;
// the exporter makes hundreds of millions of them for a large document.
class Output {
public:
    Output() : m_chunk(ChunkSize) {}
    Output(bool utf16, CodePage *codePage, QIODevice *device)
        : m_chunk(ChunkSize), m_encode(true), m_utf16(utf16), m_codePage(codePage), m_device(device)
    {
        if (m_utf16)
            m_bytes = QByteArrayLiteral("\xff\xfe");
    }

    void put(const char16_t *text, size_t n)
    {
        if (n == 0)
            return; // an empty text may have no storage at all
        if (m_length + n > ChunkSize) {
            flush();
            if (n > ChunkSize) {
                emit(text, n);
                return;
            }
        }
        std::memcpy(m_chunk.data() + m_length, text, n * sizeof(char16_t));
        m_length += n;
    }
    void put(QStringView text) { put(reinterpret_cast<const char16_t *>(text.data()), size_t(text.size())); }
    template <size_t N> void put(const char16_t (&literal)[N]) { put(literal, N - 1); }
    void put(char16_t c)
    {
        if (m_length == ChunkSize)
            flush();
        m_chunk[m_length++] = c;
    }
    void putNumber(quint64 value, int width = 1)
    {
        char16_t digits[24];
        int n = 0;
        do {
            digits[23 - n++] = char16_t(u'0' + value % 10);
            value /= 10;
        } while (value);
        while (n < width)
            digits[23 - n++] = u'0';
        put(digits + 24 - n, size_t(n));
    }

    QString takeText()
    {
        flush();
        return std::move(m_text);
    }
    /// Sends the rest to the device; false when any write failed.
    bool finish()
    {
        flush();
        if (!m_utf16)
            m_codePage->finish(&m_bytes);
        drain();
        if (!m_utf16) {
            // One byte per UTF-16 unit, whatever the conversion produced:
            // what a double-byte code page made beyond that is dropped, and
            // a conversion that made fewer bytes is padded with zeros.
            const QByteArray zeros(qMin<qint64>(m_units - m_written, DrainSize), '\0');
            while (m_ok && m_written < m_units) {
                const qint64 n = qMin<qint64>(m_units - m_written, zeros.size());
                m_ok = m_device->write(zeros.constData(), n) == n;
                m_written += n;
            }
        }
        return m_ok;
    }

private:
    static constexpr size_t ChunkSize = 1 << 16;
    static constexpr qsizetype DrainSize = 1 << 20;

    void flush()
    {
        emit(m_chunk.data(), m_length);
        m_length = 0;
    }
    void emit(const char16_t *text, size_t n)
    {
        if (n == 0)
            return;
        if (!m_encode) {
            m_text.append(reinterpret_cast<const QChar *>(text), qsizetype(n));
            return;
        }
        m_units += qsizetype(n);
        if (m_utf16) {
            const qsizetype start = m_bytes.size();
            m_bytes.resize(start + 2 * qsizetype(n));
            qToLittleEndian<quint16>(text, qsizetype(n), m_bytes.data() + start);
        } else {
            m_codePage->append(QStringView(text, qsizetype(n)), &m_bytes);
        }
        if (m_bytes.size() >= DrainSize)
            drain();
    }
    // Writes the bytes converted so far. In the code page the file ends up
    // as long as the text has units, so bytes beyond the units seen so far
    // wait: the end of the text may yet cut them off.
    void drain()
    {
        qint64 n = m_bytes.size();
        if (!m_utf16)
            n = qBound<qint64>(0, m_units - m_written, n);
        if (n == 0 || !m_ok)
            return;
        m_ok = m_device->write(m_bytes.constData(), n) == n;
        m_written += n;
        m_bytes.remove(0, qsizetype(n));
    }

    std::vector<char16_t> m_chunk;
    size_t m_length = 0;
    QString m_text;
    QByteArray m_bytes;
    qint64 m_units = 0;
    qint64 m_written = 0;
    bool m_encode = false;
    bool m_utf16 = false;
    bool m_ok = true;
    CodePage *m_codePage = nullptr;
    QIODevice *m_device = nullptr;
};

// The escaping of attribute values and element text (see XmlExport::escape).
template <typename Sink> void appendEscaped(Sink &out, QStringView text)
{
    const auto *data = reinterpret_cast<const char16_t *>(text.data());
    const qsizetype size = text.size();
    qsizetype plain = 0;
    for (qsizetype i = 0; i < size; ++i) {
        const char16_t c = data[i];
        if (c > u'>' || (c != u'<' && c != u'>' && c != u'&' && c != u'"' && c != u'\''))
            continue;
        out.put(data + plain, size_t(i - plain));
        switch (c) {
        case u'<':
            out.put(u"&amp;lt;");
            break;
        case u'>':
            out.put(u"&amp;gt;");
            break;
        case u'&':
            out.put(u"&amp;");
            break;
        case u'"':
            out.put(u"&quot;");
            break;
        default:
            out.put(u"&apos;");
            break;
        }
        plain = i + 1;
    }
    out.put(data + plain, size_t(size - plain));
}

// A QString that takes the same appends, for escape().
struct StringSink {
    QString text;
    void put(const char16_t *data, size_t n) { text.append(reinterpret_cast<const QChar *>(data), qsizetype(n)); }
    template <size_t N> void put(const char16_t (&literal)[N]) { put(literal, N - 1); }
};

void putDate(Output &out, const SystemTime &time)
{
    out.putNumber(time.year, 4);
    out.put(u'-');
    out.putNumber(time.month, 2);
    out.put(u'-');
    out.putNumber(time.day, 2);
}

// An element holding a number: "<NAME>%d</NAME>" and CR LF.
template <size_t N, size_t M>
void numberElement(Output &out, const char16_t (&open)[N], quint64 value, const char16_t (&close)[M])
{
    out.put(open);
    out.putNumber(value);
    out.put(close);
}

// An element holding escaped text, "<NAME />" when the text is absent.
template <size_t N, size_t M, size_t K>
void textElement(Output &out, const char16_t (&open)[N], const QString &value, const char16_t (&close)[M],
                 const char16_t (&absent)[K], bool present)
{
    if (!present) {
        out.put(absent);
        return;
    }
    out.put(open);
    appendEscaped(out, value);
    out.put(close);
}

// One Item's record up to its SUBITEMS, each line as the writer primitives
// (open-start, attribute, end-of-start-tag, element, cdata) spell it.
void writeItem(Output &out, const Item *item, const LinkTargets &targets, quint16 noteType)
{
    out.put(u"<ITEM StdFlags=\"");
    out.putNumber(item->stdFlags());
    out.put(u"\" Flags=\"");
    out.putNumber(item->flags());
    out.put(u"\" Image=\"");
    out.putNumber(item->image());
    out.put(u"\" Sort=\"");
    out.putNumber(item->sort());
    out.put(u"\">\r\n");

    // A name that was never set is absent ("<NAME />"); an empty one is not.
    // A name stored with no characters loads as absent.
    textElement(out, u"<NAME>", item->name(), u"</NAME>\r\n", u"<NAME />\r\n", !item->name().isNull());

    const QString taskTime = item->taskTime();
    if (!taskTime.isEmpty()) {
        // The end of the start tag brings its own line break; the text has none.
        out.put(u"<TASKTIME Type=\"");
        out.putNumber(item->taskTimeType());
        out.put(u"\">\r\n");
        appendEscaped(out, taskTime);
        out.put(u"</TASKTIME>\r\n");
    } else {
        out.put(u"<TASKTIME />\r\n");
    }

    numberElement(out, u"<COLOUR>", item->colour(), u"</COLOUR>\r\n");
    const SystemTime due = item->dueDate();
    if (due.hasDate()) {
        out.put(u"<DUEDATE>");
        putDate(out, due);
        out.put(u"</DUEDATE>\r\n");
    } else {
        out.put(u"<DUEDATE />\r\n");
    }
    numberElement(out, u"<PROGRESS>", item->progress(), u"</PROGRESS>\r\n");
    numberElement(out, u"<STATUSTYPE>", item->statusType(), u"</STATUSTYPE>\r\n");
    numberElement(out, u"<PRIORITY>", item->priority(), u"</PRIORITY>\r\n");
    textElement(out, u"<CATEGORY>", item->category(), u"</CATEGORY>\r\n", u"<CATEGORY />\r\n",
                !item->category().isEmpty());

    // CREATED is always written: the date, "T", the time on a 24-hour clock.
    const SystemTime &created = item->created();
    out.put(u"<CREATED>");
    putDate(out, created);
    out.put(u'T');
    out.putNumber(created.hour, 2);
    out.put(u':');
    out.putNumber(created.minute, 2);
    out.put(u':');
    out.putNumber(created.second, 2);
    out.put(u"</CREATED>\r\n");

    const QStringList links = item->links();
    if (links.isEmpty()) {
        out.put(u"<LINKS />\r\n");
    } else {
        out.put(u"<LINKS>\r\n");
        for (const QString &link : links) {
            if (Item::isItemLink(link)) {
                // An item link names its target; a dead one leaves no trace.
                const Item *target = targets.target(link);
                if (!target)
                    continue;
                textElement(out, u"<LINK>", target->name(), u"</LINK>\r\n", u"<LINK />\r\n", !target->name().isNull());
            } else {
                textElement(out, u"<LINK>", link, u"</LINK>\r\n", u"<LINK />\r\n", true);
            }
        }
        out.put(u"</LINKS>\r\n");
    }

    if (item->noteSize() == 0) {
        out.put(u"<NOTE />\r\n");
    } else {
        // CDATA is never escaped.
        out.put(u"<NOTE>\r\n<![CDATA[\r\n");
        out.put(NoteText::plainText(item->note(), noteType));
        out.put(u"\r\n]]>\r\n</NOTE>\r\n");
    }
}

void writeDocument(Output &out, const TreeNode *root, const XmlExport::Options &options)
{
    out.put(u"<?xml version=\"1.0\" ");
    if (!XmlExport::encodingLabel(options.encoding).isEmpty() && options.encoding > 0) {
        out.put(u"encoding=\"");
        out.put(XmlExport::encodingLabel(options.encoding));
        out.put(u"\" ");
    }
    out.put(u"?>\r\n");

    // The root's record: its StdFlags value goes by the name Flags here.
    out.put(u"<ROOT Flags=\"");
    out.putNumber(root->stdFlags());
    out.put(u"\" Image=\"");
    out.putNumber(root->image());
    out.put(u"\" Sort=\"");
    out.putNumber(root->sort());
    out.put(u"\" Name=\"");
    appendEscaped(out, root->name());
    out.put(u"\">\r\n");

    const LinkTargets targets(root);
    // Items whose SUBITEMS are open; a count, not recursion, so any depth is safe.
    qsizetype open = 0;
    TreeWalker walker(root);
    while (const Item *item = walker.next()) {
        for (; open >= walker.depth(); --open)
            out.put(u"</SUBITEMS>\r\n</ITEM>\r\n");
        writeItem(out, item, targets, options.noteType);
        if (item->hasChildren()) {
            out.put(u"<SUBITEMS>\r\n");
            ++open;
        } else {
            out.put(u"</ITEM>\r\n");
        }
    }
    for (; open > 0; --open)
        out.put(u"</SUBITEMS>\r\n</ITEM>\r\n");
    out.put(u"</ROOT>\r\n");
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
    StringSink out;
    out.text.reserve(text.size());
    appendEscaped(out, text);
    return out.text;
}

QString XmlExport::text(const TreeNode *root, const Options &options)
{
    Output output;
    writeDocument(output, root, options);
    return output.takeText();
}

bool XmlExport::exportXml(const QString &path, const TreeNode *root, const Options &options, QString *error)
{
    if (!root)
        return false;
    const bool utf16 = options.encoding == Utf16Encoding;
    CodePage codePage(utf16 ? CodePage::defaultName() : options.codePage);
    if (!codePage.isValid()) {
        if (error)
            *error = QStringLiteral("%1: the code page '%2' is not known").arg(path, options.codePage);
        return false;
    }
    // The file appears only once the whole text is written.
    return SafeSave::write(
        path,
        [&](QIODevice &device) {
            Output output(utf16, &codePage, &device);
            writeDocument(output, root, options);
            return output.finish();
        },
        error, SafeSave::Options{options.source});
}
