#pragma once

#include <QTreeWidget>
#include <vector>

class Document;
class Item;
class TreeNode;

/// The note tree as a plain tree list, for choosing items: it opens at the
/// root and fills a branch's rows only when the branch is opened, so a
/// document of any size shows at once. Rows may carry check boxes.
class NodeTree : public QTreeWidget {
    Q_OBJECT
public:
    NodeTree(const Document &document, bool checkable, QWidget *parent = nullptr);

    static TreeNode *nodeOf(const QTreeWidgetItem *row);
    /// The node of the current row, or null.
    TreeNode *currentNode() const;
    /// The row of a node, opening its ancestors; null when it is not in the
    /// tree.
    QTreeWidgetItem *rowFor(const TreeNode *node);
    /// Opens the ancestors of node and makes its row current.
    bool selectNode(const TreeNode *node);
    /// The checked Items, in the order of the tree.
    std::vector<Item *> checkedItems() const;

private:
    QTreeWidgetItem *makeRow(TreeNode *node) const;
    void fill(QTreeWidgetItem *row);

    bool m_checkable;
};
