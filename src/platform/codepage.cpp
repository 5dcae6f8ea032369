#include "platform/codepage.h"

#include <unicode/ucnv.h>

#include <algorithm>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif
#include <limits>

namespace {

// The end of the run of units below 0x80 that starts at p.
const QChar *asciiEnd(const QChar *p, const QChar *end)
{
#if defined(__SSE2__)
    const __m128i high = _mm_set1_epi16(short(0xff80));
    const __m128i zero = _mm_setzero_si128();
    while (end - p >= 8) {
        const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
        if (_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(units, high), zero)) != 0xffff)
            break;
        p += 8;
    }
#endif
    while (p != end && p->unicode() < 0x80)
        ++p;
    return p;
}

// Narrows units below 0x80 to their bytes.
void copyAscii(const QChar *p, const QChar *end, char *target)
{
#if defined(__SSE2__)
    while (end - p >= 16) {
        const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
        const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p + 8));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(target), _mm_packus_epi16(a, b));
        p += 16;
        target += 16;
    }
#endif
    while (p != end)
        *target++ = char((p++)->unicode());
}

} // namespace

CodePage::CodePage(const QString &name) : m_name(name)
{
    UErrorCode error = U_ZERO_ERROR;
    const QByteArray latinName = name.toLatin1();
    UConverter *converter = ucnv_open(latinName.constData(), &error);
    if (U_FAILURE(error) || !converter)
        return;
    // The substitute is "?" in every code page, not the code page's own
    // substitute byte (0x1A, or 0xFC 0xFC in some double-byte ones).
    const UChar question = u'?';
    ucnv_setSubstString(converter, &question, 1, &error);
    if (U_FAILURE(error)) {
        ucnv_close(converter);
        return;
    }
    m_converter = converter;

    // Most code pages keep ASCII as it is; the long texts of the exports are
    // mostly ASCII, so those runs are copied without the converter.
    const UConverterType type = ucnv_getType(converter);
    if (type == UCNV_SBCS || type == UCNV_DBCS || type == UCNV_MBCS || type == UCNV_LATIN_1 || type == UCNV_UTF8 ||
        type == UCNV_US_ASCII) {
        QString ascii(128, Qt::Uninitialized);
        for (int i = 0; i < 128; ++i)
            ascii[i] = QChar(ushort(i));
        const QByteArray bytes = fromUnicode(ascii);
        bool same = bytes.size() == 128;
        for (int i = 0; same && i < 128; ++i)
            same = uchar(bytes[i]) == i;
        m_asciiTransparent = same;
    }
}

CodePage::~CodePage()
{
    if (m_converter)
        ucnv_close(m_converter);
}

void CodePage::convertRun(const QChar *begin, const QChar *end, QByteArray *out, bool flush)
{
    const auto *source = reinterpret_cast<const UChar *>(begin);
    const auto *sourceEnd = reinterpret_cast<const UChar *>(end);
    const qsizetype maxChar = ucnv_getMaxCharSize(m_converter);
    for (;;) {
        const qsizetype start = out->size();
        const qsizetype room = (sourceEnd - source) * maxChar + 16;
        out->resize(start + room);
        char *target = out->data() + start;
        char *targetBegin = target;
        UErrorCode error = U_ZERO_ERROR;
        ucnv_fromUnicode(m_converter, &target, targetBegin + room, &source, sourceEnd, nullptr, flush, &error);
        out->resize(start + (target - targetBegin));
        if (error != U_BUFFER_OVERFLOW_ERROR)
            break;
    }
    m_pending = !flush;
}

void CodePage::append(QStringView piece, QByteArray *out)
{
    if (!m_converter)
        return;
    const QChar *p = piece.begin();
    const QChar *end = piece.end();
    if (!m_asciiTransparent) {
        convertRun(p, end, out, false);
        return;
    }
    while (p != end) {
        const QChar *runEnd = p;
        if (p->unicode() < 0x80) {
            runEnd = asciiEnd(p, end);
            if (m_pending) // a lone first half of a pair ends here: let the converter write its "?"
                convertRun(p, p, out, true);
            const qsizetype start = out->size();
            out->resize(start + (runEnd - p));
            copyAscii(p, runEnd, out->data() + start);
        } else {
            while (runEnd != end && runEnd->unicode() >= 0x80)
                ++runEnd;
            // Flush only when ASCII follows in this piece; at the piece's end
            // the next piece may bring the second half of a pair.
            convertRun(p, runEnd, out, runEnd != end);
        }
        p = runEnd;
    }
}

void CodePage::finish(QByteArray *out)
{
    if (m_converter && m_pending)
        convertRun(nullptr, nullptr, out, true);
    if (m_converter)
        ucnv_resetFromUnicode(m_converter);
    m_pending = false;
}

QByteArray CodePage::fromUnicode(QStringView text)
{
    QByteArray bytes;
    if (!m_converter)
        return bytes;
    ucnv_resetFromUnicode(m_converter);
    m_pending = false;
    append(text, &bytes);
    finish(&bytes);
    return bytes;
}

QByteArray CodePage::exportBytes(QStringView text)
{
    QByteArray bytes = fromUnicode(text);
    const qsizetype previous = bytes.size();
    bytes.resize(text.size());
    if (previous < bytes.size())
        std::fill(bytes.begin() + previous, bytes.end(), '\0');
    return bytes;
}

QString CodePage::toUnicode(QByteArrayView bytes, bool *ok)
{
    QString text;
    if (ok)
        *ok = m_converter != nullptr && bytes.size() < std::numeric_limits<int32_t>::max() / 2;
    if (!m_converter || bytes.isEmpty() || bytes.size() >= std::numeric_limits<int32_t>::max() / 2)
        return text;
    // The Windows code pages give at most one UTF-16 unit per byte; other
    // converters that ICU knows may need more, and then the buffer grows.
    qsizetype room = bytes.size() + 2;
    for (;;) {
        text.resize(room);
        UErrorCode error = U_ZERO_ERROR;
        const int32_t length = ucnv_toUChars(m_converter, reinterpret_cast<UChar *>(text.data()), int32_t(room),
                                             bytes.data(), int32_t(bytes.size()), &error);
        if (error == U_BUFFER_OVERFLOW_ERROR) {
            room = qsizetype(length) + 2;
            continue;
        }
        if (U_FAILURE(error)) {
            if (ok)
                *ok = false;
            return QString();
        }
        text.resize(length);
        return text;
    }
}
