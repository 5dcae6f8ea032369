#pragma once

#include <QString>
#include <unordered_set>

class Item;
class TreeNode;

/// Which item links of a document lead to an Item that is still in its tree.
/// Built with two walks over the tree, so that an export of any depth does
/// not climb from every target to the root.
class LinkTargets {
public:
    /// The targets of the item links held by the Items of root's document.
    explicit LinkTargets(const TreeNode *root);

    /// The live target of an item link ("!" and a handle), or null when the
    /// link is no item link or its target is gone.
    const Item *target(const QString &link) const;

private:
    std::unordered_set<const Item *> m_live;
};
