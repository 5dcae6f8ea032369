#pragma once

#include <QDialog>
#include <vector>

class Item;
class QTreeWidget;

/// The "Search Results" list: one row per match, with the item's icon and
/// name, in the order of the tree. Choosing a row (OK or a double click)
/// makes that item the current item of the main list.
class SearchResultsDialog : public QDialog {
    Q_OBJECT
public:
    SearchResultsDialog(const std::vector<Item *> &items, QWidget *parent = nullptr);

    /// The chosen item, or null.
    Item *chosen() const;
    QTreeWidget *list() const { return m_list; }
    /// Where item lies: its nearest ancestors' names, "A > B".
    static QString placeOf(const Item *item);

private:
    std::vector<Item *> m_items;
    QTreeWidget *m_list = nullptr;
};
