#include "exchange/documentimport.h"

#include "model/childorder.h"
#include "model/progress.h"
#include "model/treenode.h"
#include "notes/noteconverter.h"

namespace DocumentImport {

DocumentFile::LoadResult importInto(Document *document, TreeNode *target, const QString &path,
                                    const DocumentFile::PasswordPrompt &askPassword)
{
    const DocumentFile::LoadResult result =
        DocumentFile::importInto(document, target, path, askPassword, &NoteConverter::convertImported);
    if (result == DocumentFile::Loaded) {
        // The new children count in an automatic progress and join a sorted
        // order like any other.
        Progress::rollUp(target);
        ChildOrder::sortAgain(target);
        target->setExpanded(true);
    }
    return result;
}

} // namespace DocumentImport
