#pragma once

#include "rows/rowgeometry.h"
#include "rows/rowpainter.h"

#include <QAbstractScrollArea>
#include <QPixmap>
#include <QPointer>
#include <QTimer>
#include <memory>

class Document;
class Item;
class Settings;
#include <QLineEdit>
class GroupHeading;
class ViewRows;
class TreeNode;

/// The tree pane: a flat list of rows drawn by the row painter. Only the rows
/// in sight are painted and nothing is kept per row, so a million rows
/// scroll as lightly as ten. Taps are resolved by the rows' hit-testing.
class TreePane : public QAbstractScrollArea {
    Q_OBJECT
public:
    explicit TreePane(QWidget *parent = nullptr);
    ~TreePane() override;

    void setRows(ViewRows *rows);
    ViewRows *rows() const { return m_rows; }
    void setRowStyle(const RowStyle &style);
    /// The rows' look from the settings (font size, flags, progress colour;
    /// none for the defaults) and the document's display options.
    void setRowStyle(const Settings *settings, const Document &document);
    /// Rows are indented by their level less this less one: 0 for the main
    /// list, whose title row is not an item; -1 indents an item's branch
    /// below its top row.
    void setBaseLevel(int level) { m_baseLevel = level; }

    /// Call after the rows changed, with the row to make current: updates
    /// the scroll range, repaints, and tells when the current row now shows
    /// another node or heading.
    void rowsChanged(int current);
    int currentRow() const { return m_current; }
    /// The node of the current row: the root for the top row, null for a
    /// group heading.
    TreeNode *currentNode() const;
    /// Makes a row current (clamped), scrolls it into view, and tells.
    void setCurrentRow(int row);
    /// Makes node's row current when it has one (revealing nothing).
    bool setCurrentNode(const TreeNode *node);
    void scrollToRow(int row);
    int firstVisibleRow() const;

    /// The row under a viewport point, or -1.
    int rowAt(const QPoint &pos) const;
    /// The row's rectangle in viewport coordinates.
    QRect rowRect(int row) const;
    /// The columns of a row as drawn.
    RowGeometry rowGeometry(int row) const;
    int statePainted(int row) const;

    /// Opens the rename box over the current row's text: at most 95
    /// characters, the whole name selected.
    bool startRename();
    QLineEdit *renameEditor() const { return m_editor; }
    bool isDragging() const { return m_dragging; }

    /// Opens a collapsed row or closes an open one.
    void toggleRow(int row);

Q_SIGNALS:
    void currentChanged(TreeNode *node);
    void statusTapped(Item *item, const QPoint &globalPos);
    void contextMenuRequested(int row, const QPoint &globalPos);
    void dropRequested(Item *dragged, TreeNode *target);
    void renameCommitted(TreeNode *node, const QString &name);
    void deleteRequested();
    void renameRequested();
    void expansionChanged();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void updateScrollRange();
    int visibleRowCount() const;
    void finishRename(bool commit);
    void autoScroll();
    void onLongPress();
    int dropRowAt(const QPoint &pos) const;

    const void *identityOf(int row) const;

    ViewRows *m_rows = nullptr;
    int m_baseLevel = 0;
    std::unique_ptr<RowPainter> m_painter;
    RowStyle m_style;
    int m_current = 0;
    const void *m_currentIdentity = nullptr;

    // Press, long press and drag.
    int m_pressRow = -1;
    QPoint m_pressPos;
    bool m_pressed = false;
    bool m_dragging = false;
    int m_dropRow = -1;
    QPoint m_lastMovePos;
    QPixmap m_dragImage; // the dragged row, drawn under the pointer
    QTimer m_longPress;
    QTimer m_scrollTimer;

    QPointer<QLineEdit> m_editor;
    TreeNode *m_renaming = nullptr;
    bool m_renameDone = false;
};
