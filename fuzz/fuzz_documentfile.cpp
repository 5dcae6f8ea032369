// Feeds arbitrary bytes to the document loader. Whatever loads must write
// back to a file that loads; from then on writing and loading change nothing.
// (The first write may differ from the second: an older version's values such
// as a 410 colour of 0xFFFF are written as they are and read back by the
// current version's rules.)
#include "model/document.h"
#include "storage/documentfile.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size));
    Document doc;
    if (DocumentFile::loadFromBytes(bytes, &doc) != DocumentFile::Loaded)
        return 0;
    Document again;
    if (DocumentFile::loadFromBytes(DocumentFile::toBytes(doc), &again) != DocumentFile::Loaded)
        std::abort();
    const QByteArray written = DocumentFile::toBytes(again);
    Document third;
    if (DocumentFile::loadFromBytes(written, &third) != DocumentFile::Loaded)
        std::abort();
    if (DocumentFile::toBytes(third) != written)
        std::abort();
    return 0;
}
