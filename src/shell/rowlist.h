#pragma once

#include <QtGlobal>
#include <vector>

class Document;
class Item;
class TreeNode;

/// The rows of the main list in the default view: the root's title row, then
/// every shown item whose ancestors are all expanded, each with its level.
/// Items hidden by the document's filters are left out with their branch.
class RowList {
public:
    enum class Kind : quint8 { Title, Item };
    struct Row {
        TreeNode *node = nullptr;
        int level = 0;
        Kind kind = Kind::Item;
    };

    void setDocument(Document *document);
    Document *document() const { return m_document; }

    /// Builds the rows again from the document's root.
    void rebuild();
    int count() const { return int(m_rows.size()); }
    const Row &at(int row) const { return m_rows[size_t(row)]; }
    /// The row of a node, or -1 when it is not shown.
    int indexOf(const TreeNode *node) const;

    /// Whether the filters let an item be seen by itself (ancestors aside).
    bool isVisibleByItself(const Item *item) const;
    /// Visible by itself and so is every ancestor.
    bool isShown(const TreeNode *node) const;

    /// Opens or closes one row's children; false when it has none.
    bool expand(int row);
    bool collapse(int row);
    void expandAll();
    void collapseAll();
    /// Opens every ancestor of node so that its row exists (when the filters
    /// show it).
    void reveal(const TreeNode *node);

private:
    /// Appends the shown rows below node (not node itself) to out.
    void appendBranch(const TreeNode *node, int level, std::vector<Row> &out) const;

    Document *m_document = nullptr;
    std::vector<Row> m_rows;
};
