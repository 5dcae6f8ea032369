// Feeds arbitrary bytes to the document loader. Whatever loads must write
// back, load again and write back to the very same bytes.
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
    const QByteArray written = DocumentFile::toBytes(doc);
    Document again;
    if (DocumentFile::loadFromBytes(written, &again) != DocumentFile::Loaded)
        std::abort();
    if (DocumentFile::toBytes(again) != written)
        std::abort();
    return 0;
}
