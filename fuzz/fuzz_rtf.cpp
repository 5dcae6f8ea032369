// Feeds arbitrary bytes to the RTF reader. Whatever it reads, the writer must
// write so that reading again gives the same text (control characters aside,
// which the writer drops or spells as line breaks).
#include "notes/rtfreader.h"
#include "notes/rtfwriter.h"

#include <cstdint>
#include <cstdlib>

namespace {

QString comparable(const QString &text)
{
    QString out;
    for (const QChar c : text) {
        if ((c.unicode() >= 0x20 && c.unicode() != 0x7f && c.unicode() != 0x2028) || c == QLatin1Char('\t'))
            out += c;
    }
    return out;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size));
    const RichText text = RtfReader::read(bytes);
    const RichText again = RtfReader::read(RtfWriter::write(text));
    if (comparable(again.plainText()) != comparable(text.plainText()))
        std::abort();
    return 0;
}
