#pragma once

#include "views/groupview.h"
#include "views/visibilityfilter.h"

#include <QString>
#include <memory>
#include <vector>

class Document;
class TreeNode;

/// The rows of the main list (or of a branch view) as a flat list, for the
/// default view and the grouped views alike, with the visibility filters
/// applied. GUI-free: a tree pane draws row(i) and calls the operations
/// below, then redraws.
///
/// Rows, in display order:
/// - Default view: the top node (the document root, or the branch view's
///   item) at level 0, then every shown item below it whose ancestors are all
///   expanded, parent before children, at its depth below the top. Expanded
///   is the node's own flag, which the document file keeps.
/// - Grouped view: the virtual root (titled with the root's name, its node
///   the document root) at level 0, the headings at level 1, and under each
///   expanded heading its shown items at level 2. Items have no child rows
///   here. Heading expansion lives in the GroupView and survives rebuilds.
///
/// A hidden item has no row, nor has anything below it. Headings stay even
/// when all their items are hidden. Collapse All closes every row but the
/// top one, so the top level stays in sight.
///
/// After any change of the tree, or of an item's values that can move it
/// between groups or hide it, call rebuild(currentRow): it returns the row
/// to make current, which is the same row when it still exists and else the
/// nearest row that does.
class ViewRows {
public:
    enum class Kind : quint8 { Root, Heading, Item };

    struct Row {
        TreeNode *node = nullptr;        ///< Root and Item rows
        GroupHeading *heading = nullptr; ///< Heading rows
        int level = 0;
        Kind kind = Kind::Item;
        /// The row has rows to show under it when expanded (its expand glyph).
        bool expandable = false;
    };

    /// Rows of the document in its ViewMode. With a top Item, the rows of
    /// that item's branch in the default view (the branch view).
    explicit ViewRows(Document &document, TreeNode *top = nullptr);
    ~ViewRows();
    ViewRows(const ViewRows &) = delete;
    ViewRows &operator=(const ViewRows &) = delete;

    Document &document() const { return m_document; }
    const VisibilityFilter &filter() const { return m_filter; }
    /// The grouped view behind the rows, or null in the default view.
    const GroupView *groupView() const { return m_group.get(); }
    bool isGrouped() const { return m_group != nullptr; }

    int count() const { return int(m_rows.size()); }
    const Row &row(int index) const { return m_rows[size_t(index)]; }
    const std::vector<Row> &rows() const { return m_rows; }
    /// The root's name, the heading's text or the item's name.
    QString text(int index) const;
    bool isExpanded(int index) const;
    /// The row of a node (the root stands for the virtual root), or -1.
    int indexOf(const TreeNode *node) const;
    int indexOf(const GroupHeading *heading) const;
    /// The nearest row above with a smaller level, or -1 for the top row.
    int parentIndex(int index) const;
    /// A branch view whose item is no longer shown has no rows at all.
    bool isEmpty() const { return m_rows.empty(); }

    /// Rows that collapsing the row would remove.
    int rowsBelow(int index) const;
    /// Rows that expanding the row would add.
    int rowsOnExpand(int index) const;
    /// Opens or closes one row; returns the number of rows added or removed
    /// right after it.
    int setExpanded(int index, bool expanded);
    /// "Expand All": every row that has rows under it is opened.
    void expandAll();
    /// "Collapse All": every row but the top one is closed.
    void collapseAll();

    /// Builds the rows again from the document (and, in a grouped view, the
    /// groups again). Returns the row to make current for what was row
    /// currentRow before: the same row if it still exists; otherwise the
    /// nearest old row that still exists, looking one row down, then one up,
    /// then two down and so on; otherwise the first row (-1 when there are no
    /// rows). A currentRow of -1 gives -1.
    int rebuild(int currentRow = -1);

    /// Switches the view mode (0 to 4) and stores it in the document. The
    /// current node stays current: back in the default view every ancestor
    /// of an item is expanded; in a grouped view its heading is. Returns the
    /// row of current (the root maps to the top row).
    int setViewMode(quint16 mode, const TreeNode *current);

    /// The item order of a grouped view (ViewOrder, ViewAscending); stored in
    /// the document, every group sorted again.
    void setViewOrder(quint16 key, bool ascending);

    /// Opens what must be opened so that node has a row; returns the row, or
    /// -1 when the filters hide it.
    int reveal(const TreeNode *node);

    /// After an item was inserted into the tree: in a grouped view it joins
    /// its heading (made and opened when new). Returns the item's row, opening
    /// its parent or heading, or -1 when the filters hide it.
    int itemInserted(Item *item);

    /// Flips a view menu toggle in the document. The hide toggles collapse
    /// the list to its top level and rebuild it; the display toggles change
    /// no row. Returns whether the rows were rebuilt.
    bool toggle(VisibilityFilter::Toggle toggle);

private:
    TreeNode *top() const;
    void makeGroupView(quint16 mode);
    void buildRows();
    void appendBranch(std::vector<Row> &out, TreeNode *node, int level) const;
    void appendHeadingItems(std::vector<Row> &out, GroupHeading *heading) const;
    Row nodeRow(TreeNode *node, int level, Kind kind) const;
    Row headingRow(GroupHeading *heading) const;
    bool hasShownChild(const TreeNode *node) const;

    Document &m_document;
    TreeNode *m_top = nullptr;
    VisibilityFilter m_filter;
    std::unique_ptr<GroupView> m_group;
    std::vector<Row> m_rows;
    bool m_groupRootExpanded = true;
};
