#include "notes/richink.h"

#include "notes/rtfreader.h"
#include "notes/rtfwriter.h"

#include <QtEndian>

RichInk RichInk::fromNote(const QByteArray &note)
{
    RichInk ink;
    if (!note.isEmpty() && !note.startsWith(magic())) {
        ink.m_foreign = note;
        ink.m_isForeign = true;
        return ink;
    }
    qsizetype pos = magic().size();
    while (pos < note.size()) {
        // Never trust a length before checking it against the bytes left.
        if (note.size() - pos < 8) {
            ink.m_damaged = true;
            break;
        }
        const QByteArray tag = note.mid(pos, 4);
        const quint32 length = qFromLittleEndian<quint32>(note.constData() + pos + 4);
        pos += 8;
        if (length > quint64(note.size() - pos)) {
            ink.m_damaged = true;
            break;
        }
        ink.m_chunks.push_back({tag, note.mid(pos, qsizetype(length))});
        pos += qsizetype(length);
    }
    return ink;
}

RichInk RichInk::fromRtf(const QByteArray &rtf)
{
    RichInk ink;
    ink.setChunk(rtfTag(), rtf);
    return ink;
}

QByteArray RichInk::chunk(const QByteArray &tag) const
{
    for (const Chunk &c : m_chunks) {
        if (c.tag == tag)
            return c.data;
    }
    return {};
}

void RichInk::setChunk(const QByteArray &tag, const QByteArray &data)
{
    m_foreign.clear();
    m_isForeign = false;
    m_damaged = false;
    bool placed = false;
    for (auto it = m_chunks.begin(); it != m_chunks.end();) {
        if (it->tag != tag) {
            ++it;
        } else if (!placed && !data.isEmpty()) {
            it->data = data;
            placed = true;
            ++it;
        } else {
            it = m_chunks.erase(it);
        }
    }
    if (!placed && !data.isEmpty())
        m_chunks.push_back({tag, data});
}

QByteArray RichInk::rtf() const
{
    if (isOurs())
        return chunk(rtfTag());
    if (RtfReader::looksLikeRtf(m_foreign)) {
        // A bare RTF document keeps its formatting.
        QByteArray rtf = m_foreign;
        while (rtf.endsWith('\0'))
            rtf.chop(1);
        return rtf;
    }
    const QString text = extractText(m_foreign);
    return text.isEmpty() ? QByteArray() : RtfWriter::fromPlainText(text);
}

QString RichInk::plainText() const
{
    if (!isOurs())
        return extractText(m_foreign);
    const QByteArray rtfData = chunk(rtfTag());
    return rtfData.isEmpty() ? QString() : RtfReader::plainText(rtfData);
}

QByteArray RichInk::toNote() const
{
    if (!isOurs())
        return m_foreign;
    QByteArray bytes = magic();
    for (const Chunk &c : m_chunks) {
        bytes += c.tag.leftJustified(4, ' ', true);
        char length[4];
        qToLittleEndian<quint32>(quint32(c.data.size()), length);
        bytes.append(length, 4);
        bytes += c.data;
    }
    return bytes;
}

namespace {

// Units that text is made of; stroke and sound data rarely form long runs of
// them, and the runs must also hold letters.
bool isTextUnit(char16_t unit)
{
    return (unit >= 0x20 && unit < 0x7f) || unit == u'\t' || unit == u'\r' || unit == u'\n' ||
           (unit >= 0xa0 && unit < 0x180) || (unit >= 0x370 && unit < 0x530) || (unit >= 0x2010 && unit < 0x2070) ||
           unit == 0x20ac;
}

} // namespace

QString RichInk::extractText(const QByteArray &bytes)
{
    const qsizetype rtfStart = bytes.indexOf("{\\rtf");
    if (rtfStart >= 0)
        return RtfReader::plainText(QByteArrayView(bytes).sliced(rtfStart));

    constexpr qsizetype MinimumRun = 4;
    QString text;
    const auto *data = reinterpret_cast<const uchar *>(bytes.constData());
    qsizetype pos = 0;
    while (pos + 2 * MinimumRun <= bytes.size()) {
        qsizetype end = pos;
        int letters = 0;
        while (end + 2 <= bytes.size()) {
            const char16_t unit = qFromLittleEndian<quint16>(data + end);
            if (!isTextUnit(unit))
                break;
            letters += QChar(unit).isLetter() ? 1 : 0;
            end += 2;
        }
        if ((end - pos) / 2 < MinimumRun) {
            ++pos;
            continue;
        }
        if (letters >= 2) {
            if (!text.isEmpty())
                text += QLatin1String("\r\n");
            for (qsizetype i = pos; i < end; i += 2)
                text += QChar(char16_t(qFromLittleEndian<quint16>(data + i)));
        }
        pos = end;
    }
    return text;
}
