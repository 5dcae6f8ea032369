#include "shell/treepane.h"

#include "model/document.h"
#include "model/editing.h"
#include "model/item.h"
#include "shell/rowlist.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>

namespace {
constexpr int LongPressMs = 650;
constexpr int AutoScrollMs = 60;
constexpr int RenameMaxLength = 95;
constexpr quint16 RootIcon = 17;
} // namespace

TreePane::TreePane(QWidget *parent) : QAbstractScrollArea(parent)
{
    setObjectName(QStringLiteral("treePane"));
    setFocusPolicy(Qt::StrongFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    verticalScrollBar()->setSingleStep(1);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, viewport(), qOverload<>(&QWidget::update));
    m_longPress.setSingleShot(true);
    m_longPress.setInterval(LongPressMs);
    connect(&m_longPress, &QTimer::timeout, this, &TreePane::onLongPress);
    m_scrollTimer.setInterval(AutoScrollMs);
    connect(&m_scrollTimer, &QTimer::timeout, this, &TreePane::autoScroll);
    setRowStyle(RowStyle());
}

TreePane::~TreePane() = default;

void TreePane::setRowList(RowList *rows)
{
    m_rows = rows;
    m_current = 0;
    m_currentNode = rows && rows->count() > 0 ? rows->at(0).node : nullptr;
    verticalScrollBar()->setValue(0);
    rowsChanged();
}

void TreePane::setRowStyle(const RowStyle &style)
{
    m_style = style;
    m_painter = std::make_unique<RowPainter>(style, palette(), devicePixelRatioF());
    updateScrollRange();
    viewport()->update();
}

TreeNode *TreePane::currentNode() const
{
    return m_rows && m_current >= 0 && m_current < m_rows->count() ? m_rows->at(m_current).node : nullptr;
}

void TreePane::rowsChanged()
{
    if (m_editor)
        finishRename(false);
    const int count = m_rows ? m_rows->count() : 0;
    if (count == 0) {
        m_current = -1;
    } else if (m_currentNode && (m_current >= count || m_rows->at(m_current).node != m_currentNode)) {
        const int row = m_rows->indexOf(m_currentNode);
        m_current = row >= 0 ? row : std::clamp(m_current, 0, count - 1);
    } else {
        m_current = std::clamp(m_current, 0, count - 1);
    }
    updateScrollRange();
    const TreeNode *before = m_currentNode;
    m_currentNode = currentNode();
    viewport()->update();
    if (before != m_currentNode)
        Q_EMIT currentChanged(m_currentNode);
}

void TreePane::setCurrentRow(int row)
{
    if (!m_rows || m_rows->count() == 0)
        return;
    row = std::clamp(row, 0, m_rows->count() - 1);
    const bool changed = row != m_current || m_rows->at(row).node != m_currentNode;
    m_current = row;
    m_currentNode = m_rows->at(row).node;
    scrollToRow(row);
    viewport()->update();
    if (changed)
        Q_EMIT currentChanged(m_currentNode);
}

bool TreePane::setCurrentNode(const TreeNode *node)
{
    const int row = m_rows ? m_rows->indexOf(node) : -1;
    if (row < 0)
        return false;
    setCurrentRow(row);
    return true;
}

int TreePane::visibleRowCount() const
{
    return std::max(1, viewport()->height() / m_painter->rowHeight());
}

int TreePane::firstVisibleRow() const
{
    return verticalScrollBar()->value();
}

void TreePane::scrollToRow(int row)
{
    const int first = firstVisibleRow();
    const int visible = visibleRowCount();
    if (row < first)
        verticalScrollBar()->setValue(row);
    else if (row >= first + visible)
        verticalScrollBar()->setValue(row - visible + 1);
}

void TreePane::updateScrollRange()
{
    const int count = m_rows ? m_rows->count() : 0;
    const int visible = visibleRowCount();
    verticalScrollBar()->setRange(0, std::max(0, count - visible));
    verticalScrollBar()->setPageStep(visible);
}

int TreePane::rowAt(const QPoint &pos) const
{
    if (!m_rows || pos.y() < 0 || pos.x() < 0 || pos.x() >= viewport()->width())
        return -1;
    const int row = firstVisibleRow() + pos.y() / m_painter->rowHeight();
    return row < m_rows->count() ? row : -1;
}

QRect TreePane::rowRect(int row) const
{
    const int h = m_painter->rowHeight();
    return QRect(0, (row - firstVisibleRow()) * h, viewport()->width(), h);
}

int TreePane::statePainted(int row) const
{
    int state = 0;
    if (row == m_current) {
        state |= RowPainter::Selected;
        if (hasFocus() || (m_editor && m_editor->hasFocus()))
            state |= RowPainter::Focused;
    }
    return state;
}

RowGeometry TreePane::rowGeometry(int row) const
{
    const RowList::Row &r = m_rows->at(row);
    if (r.kind == RowList::Kind::Item)
        return m_painter->itemGeometry(rowRect(row), r.node->asItem(), r.level, 0, statePainted(row));
    return m_painter->titleGeometry(rowRect(row), r.level, 0);
}

void TreePane::paintEvent(QPaintEvent *)
{
    QPainter p(viewport());
    const QColor base = palette().color(QPalette::Active, QPalette::Base);
    const int h = m_painter->rowHeight();
    const int count = m_rows ? m_rows->count() : 0;
    int y = 0;
    for (int row = firstVisibleRow(); row < count && y < viewport()->height(); ++row, y += h) {
        const RowList::Row &r = m_rows->at(row);
        const QRect rect(0, y, viewport()->width(), h);
        const int state = statePainted(row);
        if (r.kind == RowList::Kind::Item)
            m_painter->paintItem(&p, rect, r.node->asItem(), r.level, 0, state);
        else
            m_painter->paintTitle(&p, rect, r.node, RootIcon, r.level, 0, state);
        if (m_dragging && row == m_dropRow) {
            p.setPen(QPen(palette().color(QPalette::Active, QPalette::Highlight), 2));
            p.setBrush(Qt::NoBrush);
            p.drawRect(rect.adjusted(1, 1, -1, -1));
        }
    }
    if (y < viewport()->height())
        p.fillRect(QRect(0, y, viewport()->width(), viewport()->height() - y), base);
}

void TreePane::resizeEvent(QResizeEvent *event)
{
    QAbstractScrollArea::resizeEvent(event);
    updateScrollRange();
    if (m_current >= 0)
        scrollToRow(m_current);
}

void TreePane::toggleRow(int row)
{
    if (!m_rows || row < 0 || row >= m_rows->count())
        return;
    TreeNode *node = m_rows->at(row).node;
    if (!node->hasChildren())
        return;
    if (node->isExpanded())
        m_rows->collapse(row);
    else
        m_rows->expand(row);
    rowsChanged();
    Q_EMIT expansionChanged();
}

void TreePane::mousePressEvent(QMouseEvent *event)
{
    if (m_editor)
        finishRename(true);
    setFocus(Qt::MouseFocusReason);
    const QPoint pos = event->position().toPoint();
    const int row = rowAt(pos);
    m_pressRow = row;
    m_pressPos = pos;
    m_longPressFired = false;
    if (row < 0)
        return;
    if (event->button() == Qt::RightButton) {
        setCurrentRow(row);
        return;
    }
    if (event->button() != Qt::LeftButton)
        return;
    m_pressed = true;
    const RowGeometry::HitCode code = rowGeometry(row).hitTest(pos);
    setCurrentRow(row);
    if (m_current != row) // a row change can rebuild the rows (a stored note)
        return;
    switch (code) {
    case RowGeometry::Glyph:
        toggleRow(row);
        break;
    case RowGeometry::Status:
        if (Item *item = m_rows->at(row).node->asItem())
            Q_EMIT statusTapped(item, viewport()->mapToGlobal(pos));
        break;
    default:
        m_longPress.start();
        break;
    }
}

void TreePane::onLongPress()
{
    if (!m_pressed || m_dragging || m_pressRow < 0)
        return;
    m_longPressFired = true;
    m_pressed = false;
    Q_EMIT contextMenuRequested(m_pressRow, viewport()->mapToGlobal(m_pressPos));
}

int TreePane::dropRowAt(const QPoint &pos) const
{
    const int row = rowAt(pos);
    if (row < 0)
        return -1;
    const RowList::Row &from = m_rows->at(m_pressRow);
    return Editing::canDrop(from.node->asItem(), m_rows->at(row).node) ? row : -1;
}

void TreePane::mouseMoveEvent(QMouseEvent *event)
{
    const QPoint pos = event->position().toPoint();
    m_lastMovePos = pos;
    if (!m_pressed || !(event->buttons() & Qt::LeftButton) || m_pressRow < 0)
        return;
    if (!m_dragging) {
        if ((pos - m_pressPos).manhattanLength() < QApplication::startDragDistance())
            return;
        if (m_rows->at(m_pressRow).kind != RowList::Kind::Item)
            return;
        m_longPress.stop();
        m_dragging = true;
        viewport()->setCursor(Qt::DragMoveCursor);
        m_scrollTimer.start();
    }
    m_dropRow = dropRowAt(pos);
    viewport()->update();
}

void TreePane::autoScroll()
{
    if (!m_dragging)
        return;
    // Holding the pointer near the top or bottom edge keeps the list moving.
    const int margin = m_painter->rowHeight();
    QScrollBar *bar = verticalScrollBar();
    if (m_lastMovePos.y() < margin)
        bar->setValue(bar->value() - 1);
    else if (m_lastMovePos.y() > viewport()->height() - margin)
        bar->setValue(bar->value() + 1);
    else
        return;
    m_dropRow = dropRowAt(m_lastMovePos);
}

void TreePane::mouseReleaseEvent(QMouseEvent *event)
{
    m_longPress.stop();
    const bool wasDragging = m_dragging;
    m_pressed = false;
    if (!wasDragging)
        return;
    m_dragging = false;
    m_scrollTimer.stop();
    viewport()->unsetCursor();
    m_dropRow = -1;
    viewport()->update();
    const int row = rowAt(event->position().toPoint());
    Item *dragged = m_pressRow >= 0 && m_pressRow < m_rows->count() ? m_rows->at(m_pressRow).node->asItem() : nullptr;
    if (dragged)
        Q_EMIT dropRequested(dragged, row >= 0 ? m_rows->at(row).node : nullptr);
}

void TreePane::mouseDoubleClickEvent(QMouseEvent *event)
{
    const QPoint pos = event->position().toPoint();
    const int row = rowAt(pos);
    if (row < 0 || event->button() != Qt::LeftButton)
        return;
    const RowGeometry::HitCode code = rowGeometry(row).hitTest(pos);
    if (code == RowGeometry::Text || code == RowGeometry::Icon)
        toggleRow(row);
    else if (code == RowGeometry::Glyph)
        toggleRow(row);
    else if (code == RowGeometry::Status) // a quick second tap is a second toggle
        mousePressEvent(event);
}

void TreePane::contextMenuEvent(QContextMenuEvent *event)
{
    int row = m_current;
    QPoint global = event->globalPos();
    if (event->reason() == QContextMenuEvent::Mouse) {
        row = rowAt(viewport()->mapFromGlobal(event->globalPos()));
    } else if (row >= 0) {
        global = viewport()->mapToGlobal(rowGeometry(row).textRect().bottomLeft());
    }
    if (row < 0)
        return;
    setCurrentRow(row);
    Q_EMIT contextMenuRequested(m_current, global);
}

void TreePane::keyPressEvent(QKeyEvent *event)
{
    if (!m_rows || m_rows->count() == 0)
        return QAbstractScrollArea::keyPressEvent(event);
    const int row = m_current;
    TreeNode *node = currentNode();
    switch (event->key()) {
    case Qt::Key_Up:
        setCurrentRow(row - 1);
        break;
    case Qt::Key_Down:
        setCurrentRow(row + 1);
        break;
    case Qt::Key_PageUp:
        setCurrentRow(row - visibleRowCount());
        break;
    case Qt::Key_PageDown:
        setCurrentRow(row + visibleRowCount());
        break;
    case Qt::Key_Home:
        setCurrentRow(0);
        break;
    case Qt::Key_End:
        setCurrentRow(m_rows->count() - 1);
        break;
    case Qt::Key_Left:
        if (node && node->isExpanded()) {
            toggleRow(row);
        } else if (node && node->parent()) {
            setCurrentNode(node->parent());
        }
        break;
    case Qt::Key_Right:
        if (node && node->hasChildren() && !node->isExpanded())
            toggleRow(row);
        else if (node && node->hasChildren())
            setCurrentRow(row + 1);
        break;
    case Qt::Key_Space:
        if (Item *item = node ? node->asItem() : nullptr; item && item->statusType() != Item::NoStatus)
            Q_EMIT statusTapped(item, viewport()->mapToGlobal(rowGeometry(row).statusRect().bottomLeft()));
        break;
    case Qt::Key_F2:
        startRename();
        break;
    case Qt::Key_Delete:
        Q_EMIT deleteRequested();
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        toggleRow(row);
        break;
    default:
        QAbstractScrollArea::keyPressEvent(event);
        return;
    }
    event->accept();
}

void TreePane::focusInEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusInEvent(event);
    viewport()->update();
}

void TreePane::focusOutEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusOutEvent(event);
    viewport()->update();
}

bool TreePane::startRename()
{
    TreeNode *node = currentNode();
    if (!node)
        return false;
    if (m_editor)
        finishRename(false);
    scrollToRow(m_current);
    m_renaming = node;
    m_renameDone = false;
    auto *editor = new QLineEdit(viewport());
    editor->setObjectName(QStringLiteral("renameEditor"));
    editor->setMaxLength(RenameMaxLength);
    editor->setFont(node->isItem() ? m_painter->itemFont(node->asItem()) : m_painter->titleFont());
    editor->setText(node->name());
    editor->selectAll();
    editor->setFrame(true);
    const QRect text = rowGeometry(m_current).textRect();
    editor->setGeometry(text.left(), text.top() - 2, std::max(120, text.width()), text.height() + 4);
    editor->installEventFilter(this);
    connect(editor, &QLineEdit::editingFinished, this, [this] { finishRename(true); });
    m_editor = editor;
    editor->show();
    editor->setFocus(Qt::OtherFocusReason);
    return true;
}

void TreePane::finishRename(bool commit)
{
    if (!m_editor || m_renameDone)
        return;
    m_renameDone = true;
    QLineEdit *editor = m_editor;
    TreeNode *node = m_renaming;
    const QString text = editor->text();
    m_editor = nullptr;
    m_renaming = nullptr;
    editor->removeEventFilter(this);
    editor->hide();
    editor->deleteLater();
    setFocus(Qt::OtherFocusReason);
    if (commit && node && text != node->name())
        Q_EMIT renameCommitted(node, text);
    viewport()->update();
}

bool TreePane::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_editor && event->type() == QEvent::KeyPress) {
        auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_Escape) {
            finishRename(false);
            return true;
        }
    }
    return QAbstractScrollArea::eventFilter(watched, event);
}
