#include "shell/widgets/nodetree.h"

#include "model/document.h"
#include "rows/iconset.h"

#include <QHeaderView>

namespace {

constexpr int NodeRole = Qt::UserRole;
constexpr int FilledRole = Qt::UserRole + 1;

} // namespace

NodeTree::NodeTree(const Document &document, bool checkable, QWidget *parent)
    : QTreeWidget(parent), m_checkable(checkable)
{
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setIconSize(QSize(16, 16));
    connect(this, &QTreeWidget::itemExpanded, this, &NodeTree::fill);

    QTreeWidgetItem *top = makeRow(document.root());
    // The list title is never one of the chosen items.
    top->setFlags(top->flags() & ~Qt::ItemIsUserCheckable);
    top->setData(0, Qt::CheckStateRole, QVariant());
    QFont bold = top->font(0);
    bold.setBold(true);
    top->setFont(0, bold);
    addTopLevelItem(top);
    top->setExpanded(true);
    setCurrentItem(top);
}

TreeNode *NodeTree::nodeOf(const QTreeWidgetItem *row)
{
    return row ? reinterpret_cast<TreeNode *>(row->data(0, NodeRole).value<quintptr>()) : nullptr;
}

TreeNode *NodeTree::currentNode() const
{
    return nodeOf(currentItem());
}

QTreeWidgetItem *NodeTree::makeRow(TreeNode *node) const
{
    auto *row = new QTreeWidgetItem;
    row->setText(0, node->name());
    row->setIcon(0, QIcon(IconSet::instance().icon(node->image(), 16, devicePixelRatioF())));
    row->setData(0, NodeRole, QVariant::fromValue(quintptr(node)));
    if (m_checkable) {
        row->setFlags(row->flags() | Qt::ItemIsUserCheckable);
        row->setCheckState(0, Qt::Unchecked);
    }
    if (node->hasChildren())
        row->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
    return row;
}

void NodeTree::fill(QTreeWidgetItem *row)
{
    if (row->data(0, FilledRole).toBool())
        return;
    row->setData(0, FilledRole, true);
    QList<QTreeWidgetItem *> rows;
    for (Item *child : nodeOf(row)->children())
        rows.append(makeRow(child));
    row->addChildren(rows);
}

QTreeWidgetItem *NodeTree::rowFor(const TreeNode *node)
{
    std::vector<const TreeNode *> chain;
    for (const TreeNode *n = node; n; n = n->parent())
        chain.push_back(n);
    QTreeWidgetItem *row = topLevelItem(0);
    if (!row || chain.empty() || nodeOf(row) != chain.back())
        return nullptr;
    for (auto it = chain.rbegin() + 1; it != chain.rend(); ++it) {
        row->setExpanded(true); // fills the row's children
        row = row->child(nodeOf(row)->indexOf(*it));
        if (!row)
            return nullptr;
    }
    return row;
}

bool NodeTree::selectNode(const TreeNode *node)
{
    QTreeWidgetItem *row = rowFor(node);
    if (!row)
        return false;
    setCurrentItem(row);
    scrollToItem(row);
    return true;
}

std::vector<Item *> NodeTree::checkedItems() const
{
    // Only filled rows can have been checked; walk them in tree order.
    std::vector<Item *> items;
    std::vector<const QTreeWidgetItem *> stack;
    if (const QTreeWidgetItem *top = topLevelItem(0))
        stack.push_back(top);
    while (!stack.empty()) {
        const QTreeWidgetItem *row = stack.back();
        stack.pop_back();
        if (Item *item = nodeOf(row)->asItem(); item && row->checkState(0) == Qt::Checked)
            items.push_back(item);
        for (int i = row->childCount() - 1; i >= 0; --i)
            stack.push_back(row->child(i));
    }
    return items;
}
