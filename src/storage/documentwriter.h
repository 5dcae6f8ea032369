#pragma once

#include <QtGlobal>

class ByteWriter;
class Document;
class TreeNode;

/// The writer of the .qbx format, in its current version. Items are
/// numbered as they are met, so the links between them survive the file.
namespace DocumentWriter {

inline constexpr quint32 Version = 551;

/// The whole document, its current item numbered first.
bool writeDocument(ByteWriter &out, const Document &doc);
/// The branch at node as a document of its own, under the document's header
/// values.
bool writeBranch(ByteWriter &out, const Document &doc, const TreeNode *node);

} // namespace DocumentWriter
