#include "model/treenode.h"

#include "model/item.h"
#include "model/progress.h"

#include <algorithm>

TreeNode::TreeNode(const QString &name, quint16 image) : TreeNode(Kind::Root, name, image) {}

TreeNode::TreeNode(Kind kind, const QString &name, quint16 image)
    : m_name(name), m_image(image), m_isItem(kind == Kind::Item)
{
}

TreeNode::~TreeNode()
{
    // Destroy the branch with an explicit stack: each node's children are
    // taken away before it is deleted, so no destructor recurses.
    std::vector<Item *> pending = m_children.take();
    while (!pending.empty()) {
        Item *node = pending.back();
        pending.pop_back();
        TreeNode *base = node;
        const std::span<Item *const> children = base->m_children.view();
        pending.insert(pending.end(), children.begin(), children.end());
        base->m_children.clear();
        delete node;
    }
}

Item *TreeNode::asItem()
{
    return isItem() ? static_cast<Item *>(this) : nullptr;
}

const Item *TreeNode::asItem() const
{
    return isItem() ? static_cast<const Item *>(this) : nullptr;
}

void TreeNode::setStdFlags(quint32 flags)
{
    willChange();
    m_ascending = flags & 2;
    setExpanded(flags & 1);
}

void TreeNode::insertChild(Item *child, int position)
{
    const qsizetype count = m_children.size();
    const qsizetype at = position < 0 || position >= count ? count : position;
    m_children.insert(at, child);
    static_cast<TreeNode *>(child)->m_parent = this;
    if (EditRecording::step) [[unlikely]]
        EditRecording::childInserted(this, int(at), child);
}

Item *TreeNode::takeChild(int position)
{
    Item *child = m_children[position];
    if (EditRecording::step) [[unlikely]]
        EditRecording::childTaking(this, position, child);
    m_children.erase(position);
    static_cast<TreeNode *>(child)->m_parent = nullptr;
    if (m_children.empty())
        m_expanded = false;
    return child;
}

bool TreeNode::removeChild(Item *child)
{
    const int index = indexOf(child);
    if (index == childCount())
        return false;
    takeChild(index);
    return true;
}

int TreeNode::indexOf(const TreeNode *child) const
{
    const std::span<Item *const> children = m_children.view();
    return int(std::find(children.begin(), children.end(), child) - children.begin());
}

int TreeNode::level() const
{
    int level = 0;
    for (const TreeNode *node = m_parent; node; node = node->m_parent)
        ++level;
    return level;
}

TreeNode *TreeNode::topNode()
{
    TreeNode *node = this;
    while (node->m_parent)
        node = node->m_parent;
    return node;
}

bool TreeNode::isAncestorOf(const TreeNode *node) const
{
    for (const TreeNode *up = node ? node->m_parent : nullptr; up; up = up->m_parent) {
        if (up == this)
            return true;
    }
    return false;
}


void TreeNode::copyFieldsTo(TreeNode &other) const
{
    other.m_name = m_name;
    other.m_image = m_image;
    other.m_sort = m_sort;
    other.m_extraWord = m_extraWord;
    other.m_ascending = m_ascending;
    other.m_expanded = m_expanded;
    if (isItem() && other.isItem())
        static_cast<const Item *>(this)->copyItemFieldsTo(static_cast<Item &>(other));
}

void TreeNode::swapFields(TreeNode &other)
{
    std::swap(m_name, other.m_name);
    std::swap(m_image, other.m_image);
    std::swap(m_sort, other.m_sort);
    std::swap(m_extraWord, other.m_extraWord);
    const bool ascending = m_ascending;
    m_ascending = other.m_ascending;
    other.m_ascending = ascending;
    const bool expanded = m_expanded;
    m_expanded = other.m_expanded;
    other.m_expanded = expanded;
    if (isItem() && other.isItem())
        static_cast<Item *>(this)->swapItemFields(static_cast<Item &>(other));
}

void TreeNode::progressChanged()
{
    Progress::rollUp(this);
}
