// Feeds arbitrary bytes to the text import: any outline, however deep or
// malformed, imports or fails with a result, and the tree it made is freed.
#include "exchange/textimport.h"
#include "model/treenode.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size));
    TreeNode root;
    TextImport::import(bytes, &root, {});
    return 0;
}
