#pragma once

#include "storage/documentfile.h"

class Document;
class TreeNode;

/// "Import File": another document's items join this one under target. The
/// one operation behind the desktop's Import File and `qbx import doc`, so
/// both give the same document.
namespace DocumentImport {

/// Reads the file at path (asking for its password when it has one),
/// converts its notes to the document's note type, appends its top-level
/// items to target, then rolls target's automatic progress up, sorts its
/// children again when it orders them by a key, and opens it. Nothing
/// changes unless the result is Loaded.
DocumentFile::LoadResult importInto(Document *document, TreeNode *target, const QString &path,
                                    const DocumentFile::PasswordPrompt &askPassword);

} // namespace DocumentImport
