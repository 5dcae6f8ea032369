#include "model/treewalker.h"

#include "model/item.h"

TreeWalker::TreeWalker(const TreeNode *top)
{
    if (top)
        m_stack.emplace_back(top, 0);
}

Item *TreeWalker::next()
{
    if (m_last && !m_skip && m_last->hasChildren())
        m_stack.emplace_back(m_last, 0);
    m_skip = false;
    m_last = nullptr;
    while (!m_stack.empty()) {
        auto &[node, index] = m_stack.back();
        if (index < node->children().size()) {
            Item *item = node->children()[index++];
            m_last = item;
            m_depth = int(m_stack.size());
            return item;
        }
        m_stack.pop_back();
    }
    return nullptr;
}
