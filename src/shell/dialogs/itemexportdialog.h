#pragma once

#include <QDialog>
#include <vector>

class Document;
class Item;
class NodeTree;
class QButtonGroup;
class QCheckBox;

/// "Items...": which items go to a new document (completed items, with or
/// without their hierarchy, the selected item's branch, or items picked in
/// the tree), and whether they are deleted here afterwards.
class ItemExportDialog : public QDialog {
    Q_OBJECT
public:
    /// deleteAfter is the initial state of "Delete after export" (the
    /// option "Delete items after export").
    ItemExportDialog(const Document &document, bool deleteAfter, QWidget *parent = nullptr);

    /// An ItemExport::Choice.
    int choice() const;
    bool deleteAfter() const;
    /// The items picked in the tree (choice "Selected item(s):").
    std::vector<Item *> selection() const;
    NodeTree *tree() const { return m_tree; }

private:
    QButtonGroup *m_choices = nullptr;
    NodeTree *m_tree = nullptr;
    QCheckBox *m_delete = nullptr;
};
