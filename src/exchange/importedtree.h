#pragma once

#include "model/childorder.h"
#include "model/document.h"
#include "model/progress.h"

/// The step every outline import shares when it joins an existing document:
/// the outline is read into a scratch tree, whose categories a scratch
/// document collects apart, and only a complete read changes the document.
namespace ImportedTree {

/// Runs read(root, categoryOwner) on a scratch tree; when it returns ok the
/// scratch Items become the last children of target and their new categories
/// join the document's list, and target settles as after a document import:
/// its automatic progress rolls up, a sorted order takes the new children in,
/// and it opens. The document is untouched otherwise.
template <typename Result, typename Read> Result into(Document *document, TreeNode *target, Read read, Result ok)
{
    Document scratch;
    scratch.categories = document->categories;
    TreeNode root;
    const Result result = read(&root, &scratch);
    if (result != ok)
        return result;
    for (qsizetype i = document->categories.size(); i < scratch.categories.size(); ++i)
        document->collectCategory(scratch.categories.at(i));
    const std::vector<Item *> imported = root.copyOfChildren();
    while (root.hasChildren())
        root.takeChild(root.childCount() - 1);
    for (Item *item : imported)
        target->appendChild(item);
    Progress::rollUp(target);
    ChildOrder::sortAgain(target);
    target->setExpanded(true);
    return result;
}

} // namespace ImportedTree
