// Feeds arbitrary bytes to the OPML importer (first byte even) or the
// Markdown importer (odd). Whatever is read must export to OPML, and from
// then on OPML export and import change nothing. The Markdown export of it
// must read back without fault.
#include "exchange/markdownexport.h"
#include "exchange/markdownimport.h"
#include "exchange/opmlexport.h"
#include "exchange/opmlimport.h"
#include "model/document.h"

#include <QBuffer>
#include <cstdint>
#include <cstdlib>

namespace {

QByteArray opml(const TreeNode *root)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (!OpmlExport::write(buffer, root, {}))
        std::abort();
    return buffer.data();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray bytes =
        QByteArray::fromRawData(reinterpret_cast<const char *>(data) + 1, qsizetype(size - 1));
    TreeNode root;
    if (data[0] % 2 == 0) {
        QBuffer buffer;
        buffer.setData(bytes);
        buffer.open(QIODevice::ReadOnly);
        if (OpmlImport::read(buffer, &root, {}, nullptr) != OpmlImport::Result::Ok)
            return 0;
    } else if (MarkdownImport::read(bytes, &root, {}) != MarkdownImport::Result::Ok) {
        std::abort(); // bytes in memory are always some outline
    }

    const QByteArray first = opml(&root);
    TreeNode again;
    QBuffer buffer;
    buffer.setData(first);
    buffer.open(QIODevice::ReadOnly);
    if (OpmlImport::read(buffer, &again, {}, nullptr) != OpmlImport::Result::Ok)
        std::abort();
    if (opml(&again) != first)
        std::abort();

    QBuffer markdown;
    markdown.open(QIODevice::WriteOnly);
    if (MarkdownExport::write(markdown, &root, {}) == MarkdownExport::Result::Ok) {
        TreeNode back;
        if (MarkdownImport::read(markdown.data(), &back, {}) != MarkdownImport::Result::Ok)
            std::abort();
    }
    return 0;
}
