#pragma once

#include <cstddef>
#include <utility>
#include <vector>

class Item;
class TreeNode;

/// Depth-first pre-order walk below a node (parent before children, children
/// in list order): the order of the file and of every export. Keeps its own
/// stack, so any depth is safe.
class TreeWalker {
public:
    explicit TreeWalker(const TreeNode *top);

    /// The next Item, or null when the branch is done.
    Item *next();
    /// Depth of the Item last returned: 1 for a child of the top node.
    int depth() const { return m_depth; }
    /// Do not descend into the Item last returned.
    void skipChildren() { m_skip = true; }

private:
    std::vector<std::pair<const TreeNode *, size_t>> m_stack;
    const TreeNode *m_last = nullptr;
    int m_depth = 0;
    bool m_skip = false;
};
