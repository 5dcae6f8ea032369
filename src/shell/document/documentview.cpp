#include "shell/document/documentview.h"

#include "model/childorder.h"
#include "model/document.h"
#include "model/item.h"
#include "model/progress.h"
#include "noteeditor/notepane.h"
#include "platform/messages.h"
#include "shell/document/itemactions.h"
#include "shell/document/quickentrybar.h"
#include "shell/document/treepane.h"
#include "shell/document/undostack.h"
#include "shell/widgets/prompts.h"
#include "shell/widgets/waitcursor.h"
#include "storage/documentfile.h"
#include "storage/settings.h"
#include "views/viewrows.h"

#include <QSplitter>
#include <QVBoxLayout>
#include <algorithm>

namespace {
// The split is kept within the range the settings accept.
constexpr int MinSplit = 35;
constexpr int MaxSplit = 85;
} // namespace

DocumentView::DocumentView(std::unique_ptr<Document> document, Settings *settings, Prompts *prompts, QWidget *parent)
    : QWidget(parent), m_document(std::move(document)), m_settings(settings), m_prompts(prompts)
{
    setObjectName(QStringLiteral("documentView"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    m_splitter = new QSplitter(Qt::Vertical, this);
    m_splitter->setObjectName(QStringLiteral("splitter"));
    m_splitter->setHandleWidth(7);
    m_splitter->setChildrenCollapsible(false);
    m_tree = new TreePane(m_splitter);
    m_notes = new NotePane(m_splitter);
    m_splitter->addWidget(m_tree);
    m_splitter->addWidget(m_notes);
    m_splitter->setStretchFactor(0, 1);
    m_splitter->setStretchFactor(1, 1);
    m_quick = new QuickEntryBar(this);
    m_quick->setIconChooser([this](quint16 current) {
        return m_prompts->chooseIcon(this, current, m_settings ? m_settings->favIcons : QList<quint16>());
    });
    layout->addWidget(m_splitter, 1);
    layout->addWidget(m_quick);

    m_notes->setNoteType(m_document->noteType);
    m_notes->setVisible(m_document->showNoteWindow);
    // The root is open: a document shows at least its top level.
    m_document->root()->setExpanded(true);
    m_rows = std::make_unique<ViewRows>(*m_document);
    m_undo = std::make_unique<UndoStack>(m_document.get(), m_settings ? m_settings->undoLimit : 100, nullptr);
    m_undo->setPendingEdits([this] { storeNote(); });
    connect(m_undo.get(), &UndoStack::stepApplied, this, &DocumentView::afterStep);
    connect(m_undo.get(), &QUndoStack::indexChanged, this, &DocumentView::markChanged);
    applyRowStyle();
    m_tree->setRows(m_rows.get());

    connect(m_tree, &TreePane::currentChanged, this, &DocumentView::onCurrentChanged);
    connect(m_tree, &TreePane::statusTapped, this, &DocumentView::onStatusTapped);
    connect(m_tree, &TreePane::dropRequested, this, &DocumentView::onDrop);
    connect(m_tree, &TreePane::renameCommitted, this, &DocumentView::onRename);
    connect(m_tree, &TreePane::expansionChanged, this, [this] {
        markChanged();
        Q_EMIT stateChanged();
    });
    connect(m_notes, &NotePane::modificationChanged, this, [this](bool modified) {
        if (modified)
            markChanged();
    });
    connect(m_splitter, &QSplitter::splitterMoved, this, &DocumentView::onSplitterMoved);
    connect(m_quick, &QuickEntryBar::addRequested, this, &DocumentView::onQuickAdd);

    // Start on the node the document names as current, when it is shown.
    const int start = m_rows->reveal(m_document->current());
    m_tree->rowsChanged(start >= 0 ? start : 0);
    loadNote(m_tree->currentNode());
    m_tree->setFocus();
}

DocumentView::~DocumentView() = default;

void DocumentView::applyRowStyle()
{
    m_tree->setRowStyle(m_settings, *m_document);
}

TreeNode *DocumentView::currentNode() const
{
    return m_tree->currentNode();
}

Item *DocumentView::currentItem() const
{
    TreeNode *node = currentNode();
    return node ? node->asItem() : nullptr;
}

// ---- layout

void DocumentView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    applySplit();
}

void DocumentView::applySplit()
{
    // Portrait windows stack the note pane under the tree (the first
    // layout); landscape ones put it beside the tree (the second layout).
    const bool portrait = height() > width();
    const Qt::Orientation orientation = portrait ? Qt::Vertical : Qt::Horizontal;
    const int pct = m_settings ? (portrait ? m_settings->splitPct : m_settings->splitPct7) : 60;
    m_applyingSplit = true;
    if (m_splitter->orientation() != orientation)
        m_splitter->setOrientation(orientation);
    const int total = (portrait ? m_splitter->height() : m_splitter->width()) - m_splitter->handleWidth();
    if (total > 0)
        m_splitter->setSizes({total * pct / 100, total - total * pct / 100});
    m_applyingSplit = false;
}

void DocumentView::onSplitterMoved()
{
    if (m_applyingSplit || !m_settings)
        return;
    const QList<int> sizes = m_splitter->sizes();
    const int total = sizes.value(0) + sizes.value(1);
    if (total <= 0)
        return;
    const int pct = std::clamp(sizes.value(0) * 100 / total, MinSplit, MaxSplit);
    if (m_splitter->orientation() == Qt::Vertical)
        m_settings->splitPct = quint16(pct);
    else
        m_settings->splitPct7 = quint16(pct);
    Q_EMIT settingsChanged();
}

void DocumentView::setQuickEntryVisible(bool visible)
{
    m_quick->setVisible(visible);
    if (visible) {
        // The bar starts from the selected item's icon and style.
        if (const Item *item = currentItem()) {
            m_quick->setIcon(item->image());
            m_quick->setItalic(item->isItalic());
        }
    }
}

bool DocumentView::isQuickEntryVisible() const
{
    return !m_quick->isHidden();
}

// ---- selection and the note pane

void DocumentView::onCurrentChanged(TreeNode *node)
{
    storeNote();
    m_document->setCurrent(node ? node : m_document->root());
    loadNote(node);
    Q_EMIT stateChanged();
}

void DocumentView::storeNote()
{
    if (m_noteItem && m_notes->isModified()) {
        EditScope scope(m_undo.get(), QStringLiteral("Edit Note"));
        m_noteItem->setNote(m_notes->noteBytes());
        m_notes->setModified(false);
    }
}

void DocumentView::loadNote(TreeNode *node)
{
    m_noteItem = node ? node->asItem() : nullptr;
    if (m_noteItem)
        m_notes->load(m_noteItem->note());
    else
        m_notes->clear(false);
}

void DocumentView::commitEdits()
{
    // A heading is no node of the tree: the root stands for it.
    TreeNode *node = currentNode();
    m_document->setCurrent(node ? node : m_document->root());
    storeNote();
}

bool DocumentView::save(const QString &path, QString *error)
{
    commitEdits();
    const quint64 written = m_changes;
    WaitCursor wait;
    if (!DocumentFile::save(*m_document, path, error))
        return false;
    if (!path.isEmpty())
        m_document->path = path;
    m_savedChanges = written;
    Q_EMIT stateChanged();
    return true;
}

QByteArray DocumentView::snapshot(quint64 *changes)
{
    commitEdits();
    *changes = m_changes;
    return DocumentFile::toBytes(*m_document);
}

void DocumentView::markSaved(quint64 changes)
{
    m_savedChanges = changes;
    Q_EMIT stateChanged();
}

void DocumentView::markChanged()
{
    ++m_changes;
    Q_EMIT documentChanged();
}

bool DocumentView::isModified() const
{
    return m_changes != m_savedChanges || m_notes->isModified();
}

void DocumentView::forgetBranch(const Item *item)
{
    if (m_noteItem && (m_noteItem == item || item->isAncestorOf(m_noteItem))) {
        m_noteItem = nullptr;
        m_notes->setModified(false);
    }
}

void DocumentView::setNoteWindowVisible(bool visible)
{
    markChanged();
    storeNote();
    m_document->showNoteWindow = visible;
    m_notes->setVisible(visible);
    applySplit();
}

void DocumentView::setRecordingToolbarVisible(bool visible)
{
    m_recordingToolbar = visible;
    m_notes->setRecordingToolbarVisible(visible);
}

// ---- rows

void DocumentView::refresh(TreeNode *select)
{
    markChanged();
    int row = m_rows->rebuild(m_tree->currentRow());
    if (select) {
        const int revealed = m_rows->reveal(select);
        if (revealed >= 0)
            row = revealed;
    }
    m_tree->rowsChanged(row);
    Q_EMIT stateChanged();
}

// ---- view changes

void DocumentView::expandAll()
{
    markChanged();
    WaitCursor wait;
    const TreeNode *keep = currentNode();
    const bool heading = keep == nullptr;
    const int before = m_tree->currentRow();
    m_rows->expandAll();
    // Expanding adds rows only below their parents: a heading's row is
    // found again by counting, a node's by looking it up.
    m_tree->rowsChanged(heading ? before : std::max(0, m_rows->indexOf(keep)));
    Q_EMIT stateChanged();
}

void DocumentView::collapseAll()
{
    markChanged();
    WaitCursor wait;
    const TreeNode *keep = currentNode();
    m_rows->collapseAll();
    int row = 0;
    for (const TreeNode *n = keep; n && row == 0; n = n->parent())
        row = std::max(0, m_rows->indexOf(n));
    m_tree->rowsChanged(row);
    Q_EMIT stateChanged();
}

void DocumentView::onStatusTapped(Item *item, const QPoint &globalPos)
{
    EditScope scope(m_undo.get(),
                    item->statusType() == Item::ProgressBar ? QStringLiteral("Progress") : QStringLiteral("Check Box"));
    ItemActions::tapStatus(item, globalPos, m_prompts, this, [this, item] { afterProgressChange(item); });
}

void DocumentView::afterProgressChange(Item *item)
{
    // Rows only move when a filter may hide the item, a grouped view may file
    // it elsewhere, or an ancestor orders its children by percent complete;
    // otherwise a repaint shows the new values without rebuilding a long list.
    bool rowsMayMove = m_rows->isGrouped() || VisibilityFilter(*m_document).isActive();
    for (TreeNode *n = item->parent(); n && !rowsMayMove; n = n->parent())
        rowsMayMove = n->sort() == TreeNode::SortPercentComplete;
    if (!rowsMayMove) {
        markChanged();
        m_tree->viewport()->update();
        Q_EMIT stateChanged();
        return;
    }
    {
        WaitCursor wait;
        Progress::resortAncestors(item);
    }
    refresh(item);
}

void DocumentView::onDrop(Item *dragged, TreeNode *target)
{
    EditScope scope(m_undo.get(), QStringLiteral("Drag and Drop"));
    if (m_rows->isGrouped() || !Editing::drop(dragged, target)) {
        m_tree->viewport()->update();
        return;
    }
    refresh(dragged);
}

void DocumentView::onRename(TreeNode *node, const QString &name)
{
    EditScope scope(m_undo.get(), QStringLiteral("Rename"));
    node->setName(name);
    // A parent ordered by name keeps its order after a rename.
    if (TreeNode *parent = node->parent(); parent && parent->sort() == TreeNode::SortName)
        ChildOrder::sortAgain(parent);
    refresh(node);
}

void DocumentView::onQuickAdd(const QString &text, quint16 icon, bool italic, bool child)
{
    EditScope scope(m_undo.get(), QStringLiteral("Quick Entry"));
    TreeNode *current = currentNode();
    Item *item = Editing::quickEntryItem(text, icon, italic, current);
    insertNewItem(item, Editing::quickEntryPosition(current, child));
}

void DocumentView::afterStep(TreeNode *focus)
{
    // Whatever pointed at an item the step took out of the tree lets go.
    if (m_clip.item() && m_clip.item()->topNode() != m_document->root())
        m_clip.clear();
    m_noteItem = nullptr;
    refresh(focus);
    loadNote(currentNode());
    // The reminders read the document again.
    Q_EMIT itemsEdited(Edit::ItemsAdded, nullptr);
}

void DocumentView::insertNewItem(Item *item, InsertPosition position)
{
    markChanged();
    commitEdits();
    Editing::insertItem(*m_document, item, position);
    // A grouped view files the item under its heading as well.
    const int row = m_rows->itemInserted(item);
    m_tree->rowsChanged(row >= 0 ? row : m_tree->currentRow());
    Q_EMIT stateChanged();
}

void DocumentView::setViewMode(quint16 mode)
{
    markChanged();
    WaitCursor wait;
    const int row = m_rows->setViewMode(mode, currentNode());
    m_tree->rowsChanged(row >= 0 ? row : 0);
    Q_EMIT stateChanged();
}

void DocumentView::toggleFilter(VisibilityFilter::Toggle toggle)
{
    markChanged();
    const TreeNode *keep = currentNode();
    if (!m_rows->toggle(toggle)) {
        applyRowStyle(); // a display option: only the rows' look changes
        return;
    }
    // A hide toggle has closed the list down to its top level.
    int row = 0;
    for (const TreeNode *n = keep; n && row == 0; n = n->parent())
        row = std::max(0, m_rows->indexOf(n));
    m_tree->rowsChanged(row);
    Q_EMIT stateChanged();
}
