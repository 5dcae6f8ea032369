#include "shell/rowlist.h"

#include "model/document.h"
#include "model/item.h"
#include "model/treewalker.h"

void RowList::setDocument(Document *document)
{
    m_document = document;
    rebuild();
}

void RowList::rebuild()
{
    m_rows.clear();
    if (!m_document)
        return;
    TreeNode *root = m_document->root();
    m_rows.push_back({root, 0, Kind::Title});
    if (root->isExpanded())
        appendBranch(root, 1, m_rows);
}

void RowList::appendBranch(const TreeNode *node, int level, std::vector<Row> &out) const
{
    TreeWalker walker(node);
    while (Item *item = walker.next()) {
        if (!isVisibleByItself(item)) {
            walker.skipChildren();
            continue;
        }
        out.push_back({item, level + walker.depth() - 1, Kind::Item});
        if (!item->isExpanded())
            walker.skipChildren();
    }
}

int RowList::indexOf(const TreeNode *node) const
{
    for (size_t i = 0; i < m_rows.size(); ++i) {
        if (m_rows[i].node == node)
            return int(i);
    }
    return -1;
}

bool RowList::isVisibleByItself(const Item *item) const
{
    const Document &d = *m_document;
    if (d.hideCompleted && item->isComplete())
        return false;
    switch (item->statusType()) {
    case Item::NoStatus:
        return !(d.hideByStatus & Document::HideNoStatus);
    case Item::CheckBox:
        return !(d.hideByStatus & Document::HideCheckBox);
    case Item::ProgressBar:
        return !(d.hideByStatus & Document::HideProgressBar);
    default:
        return true;
    }
}

bool RowList::isShown(const TreeNode *node) const
{
    for (; node; node = node->parent()) {
        if (const Item *item = node->asItem(); item && !isVisibleByItself(item))
            return false;
    }
    return true;
}

bool RowList::expand(int row)
{
    Row r = m_rows[size_t(row)];
    if (!r.node->hasChildren())
        return false;
    if (r.node->isExpanded())
        return true;
    r.node->setExpanded(true);
    std::vector<Row> branch;
    appendBranch(r.node, r.level + 1, branch);
    m_rows.insert(m_rows.begin() + row + 1, branch.begin(), branch.end());
    return true;
}

bool RowList::collapse(int row)
{
    Row r = m_rows[size_t(row)];
    if (!r.node->hasChildren() || !r.node->isExpanded())
        return false;
    r.node->setExpanded(false);
    size_t end = size_t(row) + 1;
    while (end < m_rows.size() && m_rows[end].level > r.level)
        ++end;
    m_rows.erase(m_rows.begin() + row + 1, m_rows.begin() + qsizetype(end));
    return true;
}

void RowList::expandAll()
{
    if (!m_document)
        return;
    TreeNode *root = m_document->root();
    root->setExpanded(true);
    root->forEachDescendant([](Item *item) { item->setExpanded(true); });
    rebuild();
}

void RowList::collapseAll()
{
    if (!m_document)
        return;
    TreeNode *root = m_document->root();
    root->forEachDescendant([](Item *item) { item->setExpanded(false); });
    // The root stays open: its top level is what a collapsed list shows.
    root->setExpanded(true);
    rebuild();
}

void RowList::reveal(const TreeNode *node)
{
    bool changed = false;
    for (TreeNode *n = node ? node->parent() : nullptr; n; n = n->parent()) {
        if (!n->isExpanded()) {
            n->setExpanded(true);
            changed = true;
        }
    }
    if (changed)
        rebuild();
}
