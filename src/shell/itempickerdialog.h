#pragma once

#include <QDialog>

class Document;
class Item;
class Prompts;
class QTreeWidget;
class QTreeWidgetItem;
class TreeNode;

/// Picks an item of the document's tree for an item link. The tree opens at
/// the list title (the root), whose rows are filled only as branches are
/// opened, so a document of any size opens at once. The list title itself
/// cannot be chosen: OK on it is refused with its message.
class ItemPickerDialog : public QDialog {
    Q_OBJECT
public:
    ItemPickerDialog(const Document &document, Prompts *prompts, QWidget *parent = nullptr);

    /// Opens the ancestors of node and makes its row current; false when it
    /// is not in the tree.
    bool selectNode(const TreeNode *node);
    Item *chosen() const { return m_chosen; }
    QTreeWidget *tree() const { return m_tree; }

    void accept() override;

private:
    QTreeWidgetItem *rowFor(TreeNode *node) const;
    void fill(QTreeWidgetItem *row);
    static TreeNode *nodeOf(const QTreeWidgetItem *row);

    Prompts *m_prompts;
    QTreeWidget *m_tree = nullptr;
    Item *m_chosen = nullptr;
};
