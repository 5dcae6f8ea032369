#include "shell/document/treepane.h"

#include "storage/settings.h"
#include "model/document.h"
#include "model/editing.h"
#include "model/item.h"
#include "views/viewrows.h"

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
// Items of a grouped view sit one level below their heading, drawn flat.
constexpr int GroupedItemState = RowPainter::Flat;
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

void TreePane::setRows(ViewRows *rows)
{
    m_rows = rows;
    m_current = 0;
    m_currentIdentity = identityOf(0);
    verticalScrollBar()->setValue(0);
    rowsChanged(0);
}

const void *TreePane::identityOf(int row) const
{
    if (!m_rows || row < 0 || row >= m_rows->count())
        return nullptr;
    const ViewRows::Row &r = m_rows->row(row);
    return r.kind == ViewRows::Kind::Heading ? static_cast<const void *>(r.heading) : r.node;
}

void TreePane::setRowStyle(const Settings *settings, const Document &document)
{
    RowStyle style;
    if (settings) {
        style.fontSize = settings->fontSize;
        style.flags = settings->flags;
        style.prgColour = settings->prgColour;
    }
    style.showDueDate = document.showDueDate;
    style.showStatistics = document.showStatistics;
    setRowStyle(style);
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
    return m_rows && m_current >= 0 && m_current < m_rows->count() ? m_rows->row(m_current).node : nullptr;
}

void TreePane::rowsChanged(int current)
{
    if (m_editor)
        finishRename(false);
    const int count = m_rows ? m_rows->count() : 0;
    m_current = count == 0 ? -1 : std::clamp(current, 0, count - 1);
    updateScrollRange();
    if (m_current >= 0)
        scrollToRow(m_current);
    viewport()->update();
    const void *before = m_currentIdentity;
    m_currentIdentity = identityOf(m_current);
    if (before != m_currentIdentity)
        Q_EMIT currentChanged(currentNode());
}

void TreePane::setCurrentRow(int row)
{
    if (!m_rows || m_rows->count() == 0)
        return;
    row = std::clamp(row, 0, m_rows->count() - 1);
    const bool changed = identityOf(row) != m_currentIdentity;
    m_current = row;
    m_currentIdentity = identityOf(row);
    scrollToRow(row);
    viewport()->update();
    if (changed)
        Q_EMIT currentChanged(currentNode());
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
    if (m_rows->isGrouped() && m_rows->row(row).kind == ViewRows::Kind::Item)
        state |= GroupedItemState;
    if (row == m_current) {
        state |= RowPainter::Selected;
        if (hasFocus() || (m_editor && m_editor->hasFocus()))
            state |= RowPainter::Focused;
    }
    return state;
}

RowGeometry TreePane::rowGeometry(int row) const
{
    const ViewRows::Row &r = m_rows->row(row);
    if (r.kind == ViewRows::Kind::Item)
        return m_painter->itemGeometry(rowRect(row), r.node->asItem(), r.level, m_baseLevel, statePainted(row));
    return m_painter->titleGeometry(rowRect(row), r.level, m_baseLevel);
}

void TreePane::paintEvent(QPaintEvent *)
{
    QPainter p(viewport());
    const QColor base = palette().color(QPalette::Active, QPalette::Base);
    const int h = m_painter->rowHeight();
    const int count = m_rows ? m_rows->count() : 0;
    int y = 0;
    for (int row = firstVisibleRow(); row < count && y < viewport()->height(); ++row, y += h) {
        const ViewRows::Row &r = m_rows->row(row);
        const QRect rect(0, y, viewport()->width(), h);
        const int state = statePainted(row);
        if (r.kind == ViewRows::Kind::Item) {
            m_painter->paintItem(&p, rect, r.node->asItem(), r.level, m_baseLevel, state);
        } else {
            const quint16 icon = r.kind == ViewRows::Kind::Heading ? r.heading->icon() : RootIcon;
            m_painter->paintTitle(&p, rect, m_rows->text(row), icon, r.expandable, m_rows->isExpanded(row),
                                  r.level, m_baseLevel, state);
        }
        if (m_dragging && row == m_dropRow) {
            p.setPen(QPen(palette().color(QPalette::Active, QPalette::Highlight), 2));
            p.setBrush(Qt::NoBrush);
            p.drawRect(rect.adjusted(1, 1, -1, -1));
        }
    }
    if (y < viewport()->height())
        p.fillRect(QRect(0, y, viewport()->width(), viewport()->height() - y), base);
    if (m_dragging && !m_dragImage.isNull()) {
        p.setOpacity(0.6);
        p.drawPixmap(m_lastMovePos + QPoint(8, 4), m_dragImage);
    }
}

void TreePane::changeEvent(QEvent *event)
{
    QAbstractScrollArea::changeEvent(event);
    // The rows take the desktop's colours (a switch to a dark palette) and
    // its scale as they change.
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange ||
        event->type() == QEvent::ScreenChangeInternal)
        setRowStyle(m_style);
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
    if (!m_rows || row < 0 || row >= m_rows->count() || !m_rows->row(row).expandable)
        return;
    const bool expand = !m_rows->isExpanded(row);
    const int changed = m_rows->setExpanded(row, expand);
    // The current row keeps its node: it moves with the rows added or
    // removed above it, or falls back to the row that closed over it.
    int current = m_current;
    if (current > row) {
        if (expand)
            current += changed;
        else
            current = current <= row + changed ? row : current - changed;
    }
    rowsChanged(current);
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
        if (Item *item = currentNode() ? currentNode()->asItem() : nullptr)
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
    m_pressed = false;
    Q_EMIT contextMenuRequested(m_pressRow, viewport()->mapToGlobal(m_pressPos));
}

int TreePane::dropRowAt(const QPoint &pos) const
{
    const int row = rowAt(pos);
    if (row < 0)
        return -1;
    const ViewRows::Row &from = m_rows->row(m_pressRow);
    const ViewRows::Row &to = m_rows->row(row);
    return from.node && to.node && Editing::canDrop(from.node->asItem(), to.node) ? row : -1;
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
        if (m_rows->row(m_pressRow).kind != ViewRows::Kind::Item)
            return;
        m_longPress.stop();
        m_dragging = true;
        m_dragImage = viewport()->grab(rowRect(m_pressRow));
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
    m_dragImage = QPixmap();
    m_scrollTimer.stop();
    viewport()->unsetCursor();
    m_dropRow = -1;
    viewport()->update();
    const int row = rowAt(event->position().toPoint());
    Item *dragged = m_pressRow >= 0 && m_pressRow < m_rows->count() && m_rows->row(m_pressRow).node
                        ? m_rows->row(m_pressRow).node->asItem()
                        : nullptr;
    if (dragged)
        Q_EMIT dropRequested(dragged, row >= 0 ? m_rows->row(row).node : nullptr);
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
    if (row < 0)
        return QAbstractScrollArea::keyPressEvent(event);
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
        if (m_rows->row(row).expandable && m_rows->isExpanded(row))
            toggleRow(row);
        else if (m_rows->parentIndex(row) >= 0)
            setCurrentRow(m_rows->parentIndex(row));
        break;
    case Qt::Key_Right:
        if (m_rows->row(row).expandable && !m_rows->isExpanded(row))
            toggleRow(row);
        else if (m_rows->row(row).expandable)
            setCurrentRow(row + 1);
        break;
    case Qt::Key_Space:
        if (Item *item = node ? node->asItem() : nullptr; item && item->statusType() != Item::NoStatus)
            Q_EMIT statusTapped(item, viewport()->mapToGlobal(rowGeometry(row).statusRect().bottomLeft()));
        break;
    case Qt::Key_F2:
        Q_EMIT renameRequested();
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
