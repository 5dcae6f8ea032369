#pragma once

#include <QDialog>

class Document;
class Item;
class NodeTree;
class Prompts;
class TreeNode;

/// Picks an item of the document's tree for an item link. The list title
/// (the root) cannot be chosen: OK on it is refused with its message.
class ItemPickerDialog : public QDialog {
    Q_OBJECT
public:
    ItemPickerDialog(const Document &document, Prompts *prompts, QWidget *parent = nullptr);

    /// Opens the ancestors of node and makes its row current; false when it
    /// is not in the tree.
    bool selectNode(const TreeNode *node);
    Item *chosen() const { return m_chosen; }
    NodeTree *tree() const { return m_tree; }

    void accept() override;

private:
    Prompts *m_prompts;
    NodeTree *m_tree = nullptr;
    Item *m_chosen = nullptr;
};
