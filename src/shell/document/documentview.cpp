#include "shell/document/documentview.h"

#include "model/childorder.h"
#include "model/document.h"
#include "model/item.h"
#include "model/progress.h"
#include "noteeditor/notepane.h"
#include "platform/messages.h"
#include "shell/commands/commandids.h"
#include "shell/document/itemactions.h"
#include "shell/document/itemmenu.h"
#include "shell/widgets/prompts.h"
#include "shell/document/quickentrybar.h"
#include "shell/document/treepane.h"
#include "shell/widgets/waitcursor.h"
#include "storage/documentfile.h"
#include "storage/settings.h"
#include "views/viewrows.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>
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
    applyRowStyle();
    m_tree->setRows(m_rows.get());

    connect(m_tree, &TreePane::currentChanged, this, &DocumentView::onCurrentChanged);
    connect(m_tree, &TreePane::statusTapped, this, &DocumentView::onStatusTapped);
    connect(m_tree, &TreePane::contextMenuRequested, this, &DocumentView::showItemMenu);
    connect(m_tree, &TreePane::dropRequested, this, &DocumentView::onDrop);
    connect(m_tree, &TreePane::renameCommitted, this, &DocumentView::onRename);
    connect(m_tree, &TreePane::deleteRequested, this, [this] { runCommand(CommandId::DeleteItem); });
    connect(m_tree, &TreePane::renameRequested, this, [this] { runCommand(CommandId::Rename); });
    connect(m_tree, &TreePane::expansionChanged, this, &DocumentView::stateChanged);
    connect(m_splitter, &QSplitter::splitterMoved, this, &DocumentView::onSplitterMoved);
    connect(m_quick, &QuickEntryBar::addRequested, this, &DocumentView::onQuickAdd);
    registerCommands();

    // Start on the node the document names as current, when it is shown.
    const int start = m_rows->reveal(m_document->current());
    m_tree->rowsChanged(start >= 0 ? start : 0);
    loadNote(m_tree->currentNode());
    m_tree->setFocus();
}

DocumentView::~DocumentView() = default;

void DocumentView::applyRowStyle()
{
    RowStyle style;
    if (m_settings) {
        style.fontSize = m_settings->fontSize;
        style.flags = m_settings->flags;
        style.prgColour = m_settings->prgColour;
    }
    style.showDueDate = m_document->showDueDate;
    style.showStatistics = m_document->showStatistics;
    m_tree->setRowStyle(style);
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

bool DocumentView::save()
{
    commitEdits();
    bool saved = false;
    {
        WaitCursor wait;
        saved = DocumentFile::save(*m_document);
    }
    if (!saved)
        m_prompts->message(this, Prompts::Icon::Stop, QString::fromLatin1(Messages::SaveFailed));
    return saved;
}

bool DocumentView::saveAs(const QString &path)
{
    commitEdits();
    bool saved = false;
    {
        WaitCursor wait;
        saved = DocumentFile::save(*m_document, path);
    }
    if (!saved) {
        m_prompts->message(this, Prompts::Icon::Stop, QString::fromLatin1(Messages::SaveFailed));
        return false;
    }
    m_document->path = path;
    return true;
}

// ---- rows

void DocumentView::refresh(TreeNode *select)
{
    int row = m_rows->rebuild(m_tree->currentRow());
    if (select) {
        const int revealed = m_rows->reveal(select);
        if (revealed >= 0)
            row = revealed;
    }
    m_tree->rowsChanged(row);
    Q_EMIT stateChanged();
}

// ---- commands

bool DocumentView::hasCommand(int id) const
{
    return m_commands.contains(id);
}

void DocumentView::setCommand(int id, std::function<void()> handler)
{
    m_commands.insert(id, std::move(handler));
}

void DocumentView::setCommand(int id, std::function<void()> handler, std::function<bool()> enabled)
{
    m_commands.insert(id, std::move(handler));
    m_enabledRules.insert(id, std::move(enabled));
}

bool DocumentView::isCommandEnabled(int id) const
{
    using namespace CommandId;
    if (!hasCommand(id))
        return false;
    if (const auto rule = m_enabledRules.constFind(id); rule != m_enabledRules.constEnd())
        return (*rule)();
    const Document &d = *m_document;
    const bool defaultView = d.viewMode == Document::DefaultView;
    switch (id) {
    case MoveUp:
        return Editing::canMove(d, currentItem(), Editing::Move::Up);
    case MoveDown:
        return Editing::canMove(d, currentItem(), Editing::Move::Down);
    case UpALevel:
        return Editing::canMove(d, currentItem(), Editing::Move::UpLevel);
    case DownALevel:
        return Editing::canMove(d, currentItem(), Editing::Move::DownLevel);
    case RecordingToolbar:
        return d.noteType == Document::RichInk && d.showNoteWindow;
    case ExportView:
    case ExportXml:
    case ExportLinks:
    case ExportNotes:
    case ExportItems:
        return defaultView && d.root()->hasChildren();
    case ImportFile:
        return defaultView;
    case Rename: {
        // An item, or the root's title in the default view.
        const TreeNode *node = currentNode();
        return node && (node->isItem() || defaultView);
    }
    default:
        return true;
    }
}

bool DocumentView::isCommandChecked(int id) const
{
    using namespace CommandId;
    const Document &d = *m_document;
    switch (id) {
    case CommandId::QuickEntryBar:
        return isQuickEntryVisible();
    case RecordingToolbar:
        return d.noteType == Document::RichInk && m_recordingToolbar;
    case NoteWindow:
        return d.showNoteWindow;
    case HideCompleted:
        return d.hideCompleted;
    case HideNoStatus:
        return d.hideByStatus & Document::HideNoStatus;
    case HideCheckBox:
        return d.hideByStatus & Document::HideCheckBox;
    case HideProgressBar:
        return d.hideByStatus & Document::HideProgressBar;
    case ShowDueDate:
        return d.showDueDate;
    case ShowStatistics:
        return d.showStatistics;
    case DefaultView:
    case ByCategory:
    case ByDueDate:
    case ByPriority:
        return d.viewMode == id - DefaultView;
    default:
        return false;
    }
}

bool DocumentView::runCommand(int id)
{
    auto it = m_commands.constFind(id);
    if (it == m_commands.constEnd() || !isCommandEnabled(id))
        return false;
    (*it)();
    return true;
}

void DocumentView::registerCommands()
{
    using namespace CommandId;
    auto onItem = [this](auto fn) {
        return [this, fn] {
            if (Item *item = currentItem())
                fn(item);
        };
    };

    setCommand(Save, [this] { save(); });
    setCommand(SaveAs, [this] {
        const QString path = m_prompts->saveFileName(this, QStringLiteral("Save As"), m_document->path,
                                                     QString::fromLatin1(Messages::FileFilter));
        if (!path.isEmpty())
            saveAs(path);
    });
    setCommand(New, [this] {
        insertNewItem(new Item(QStringLiteral("New Item")), InsertPosition::Same);
        m_tree->startRename();
    });
    setCommand(MoveUp, [this] { moveCurrent(Editing::Move::Up); });
    setCommand(MoveDown, [this] { moveCurrent(Editing::Move::Down); });
    setCommand(UpALevel, [this] { moveCurrent(Editing::Move::UpLevel); });
    setCommand(DownALevel, [this] { moveCurrent(Editing::Move::DownLevel); });
    setCommand(ExpandAll, [this] {
        WaitCursor wait;
        const TreeNode *keep = currentNode();
        const bool heading = keep == nullptr;
        const int before = m_tree->currentRow();
        m_rows->expandAll();
        // Expanding adds rows only below their parents: a heading's row is
        // found again by counting, a node's by looking it up.
        m_tree->rowsChanged(heading ? before : std::max(0, m_rows->indexOf(keep)));
        Q_EMIT stateChanged();
    });
    setCommand(CollapseAll, [this] {
        WaitCursor wait;
        const TreeNode *keep = currentNode();
        m_rows->collapseAll();
        int row = 0;
        for (const TreeNode *n = keep; n && row == 0; n = n->parent())
            row = std::max(0, m_rows->indexOf(n));
        m_tree->rowsChanged(row);
        Q_EMIT stateChanged();
    });
    const std::pair<int, VisibilityFilter::Toggle> toggles[] = {
        {HideCompleted, VisibilityFilter::HideCompleted}, {HideNoStatus, VisibilityFilter::HideNoStatus},
        {HideCheckBox, VisibilityFilter::HideCheckBox},   {HideProgressBar, VisibilityFilter::HideProgressBar},
        {ShowDueDate, VisibilityFilter::ShowDueDate},     {ShowStatistics, VisibilityFilter::ShowStatistics},
    };
    for (auto [id, toggle] : toggles)
        setCommand(id, [this, toggle = toggle] { toggleFilter(toggle); });
    setCommand(NoteWindow, [this] {
        storeNote();
        m_document->showNoteWindow = !m_document->showNoteWindow;
        m_notes->setVisible(m_document->showNoteWindow);
        applySplit();
    });
    setCommand(CommandId::QuickEntryBar, [this] {
        setQuickEntryVisible(!isQuickEntryVisible());
        Q_EMIT settingsChanged();
    });
    setCommand(RecordingToolbar, [this] {
        m_recordingToolbar = !m_recordingToolbar;
        m_notes->setRecordingToolbarVisible(m_recordingToolbar);
    });
    for (int m = 0; m < 4; ++m)
        setCommand(DefaultView + m, [this, m] { setViewMode(quint16(m)); });

    // The item menu.
    setCommand(Rename, [this] { m_tree->startRename(); });
    for (int p = 1; p <= 20; ++p) {
        setCommand(Priority1 + p - 1, onItem([this, p](Item *item) {
                       Editing::setPriority(item, quint16(p));
                       const bool sorted = item->parent() && item->parent()->sort() == TreeNode::SortPriority;
                       if (sorted || m_rows->isGrouped())
                           refresh(item);
                       else
                           m_tree->viewport()->update();
                   }));
    }
    setCommand(ChangeIcon, onItem([this](Item *item) {
                   const int icon =
                       m_prompts->chooseIcon(this, item->image(), m_settings ? m_settings->favIcons : QList<quint16>());
                   if (icon >= 0) {
                       item->setImage(quint16(icon));
                       m_tree->viewport()->update();
                   }
               }));
    for (int c = 0; c < 36; ++c) {
        setCommand(Colour0 + c, onItem([this, c](Item *item) {
                       item->setColour(quint16(c));
                       m_tree->viewport()->update();
                   }));
    }
    setCommand(ShowIcon, onItem([this](Item *item) {
                   item->setShowIcon(!item->showIcon());
                   m_tree->viewport()->update();
               }));
    setCommand(ItalicStyle, onItem([this](Item *item) {
                   item->setItalic(!item->isItalic());
                   m_tree->viewport()->update();
               }));
    for (int t = 0; t < 3; ++t) {
        setCommand(NoStatus + t, onItem([this, t](Item *item) {
                       item->setStatusType(quint16(t));
                       // A filter by status type may hide the item now.
                       refresh(item);
                   }));
    }
    for (int k = 0; k < 6; ++k)
        setCommand(OrderByName + k, [this, k] { orderChildren(quint16(k)); });
    setCommand(OrderManual, [this] { orderChildren(TreeNode::SortManual); });
    setCommand(Ascending, [this] { setDirection(true); });
    setCommand(Descending, [this] { setDirection(false); });
    setCommand(CreateCopy, onItem([this](Item *item) {
                   Item *copy = Editing::createCopy(item);
                   const int row = m_rows->itemInserted(copy);
                   m_tree->rowsChanged(row >= 0 ? row : m_tree->currentRow());
                   Q_EMIT stateChanged();
               }));
    setCommand(MarkMove, onItem([this](Item *item) { m_clip.markMove(item); }));
    setCommand(MarkCopy, onItem([this](Item *item) {
                   m_clip.markCopy(item);
                   if (QClipboard *clipboard = QGuiApplication::clipboard())
                       clipboard->setText(item->name());
               }));
    setCommand(Paste, [this] { paste(); });
    setCommand(DeleteItem, [this] { deleteCurrent(); });
}

void DocumentView::showItemMenu(int row, const QPoint &globalPos)
{
    if (row < 0 || row >= m_rows->count())
        return;
    m_tree->setCurrentRow(row);
    const ViewRows::Row &r = m_rows->row(row);
    ItemMenu::State state;
    state.kind = r.kind == ViewRows::Kind::Item ? ItemMenu::RowKind::Item : ItemMenu::RowKind::Title;
    state.grouped = m_rows->isGrouped();
    state.node = r.kind == ViewRows::Kind::Heading ? nullptr : r.node;
    state.viewOrder = m_document->viewOrder;
    state.viewAscending = m_document->viewAscending;
    state.canPaste = !state.grouped && m_clip.canPaste(r.node);
    // An entry whose operation is not available here stays greyed.
    ItemActions::popupItemMenu(
        ItemMenu::build(state, this), globalPos, m_prompts, this, [this](int id) { return hasCommand(id); },
        [this](int id) { runCommand(id); });
}

void DocumentView::onStatusTapped(Item *item, const QPoint &globalPos)
{
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
    if (m_rows->isGrouped() || !Editing::drop(dragged, target)) {
        m_tree->viewport()->update();
        return;
    }
    refresh(dragged);
}

void DocumentView::onRename(TreeNode *node, const QString &name)
{
    node->setName(name);
    // A parent ordered by name keeps its order after a rename.
    if (TreeNode *parent = node->parent(); parent && parent->sort() == TreeNode::SortName)
        ChildOrder::sortAgain(parent);
    refresh(node);
}

void DocumentView::onQuickAdd(const QString &text, quint16 icon, bool italic, bool child)
{
    TreeNode *current = currentNode();
    Item *item = Editing::quickEntryItem(text, icon, italic, current);
    insertNewItem(item, Editing::quickEntryPosition(current, child));
}

void DocumentView::insertNewItem(Item *item, InsertPosition position)
{
    commitEdits();
    Editing::insertItem(*m_document, item, position);
    // A grouped view files the item under its heading as well.
    const int row = m_rows->itemInserted(item);
    m_tree->rowsChanged(row >= 0 ? row : m_tree->currentRow());
    Q_EMIT stateChanged();
}

void DocumentView::paste()
{
    if (Item *pasted = ItemActions::paste(m_clip, currentNode(), m_prompts, this))
        refresh(pasted);
}

void DocumentView::deleteCurrent()
{
    Item *item = currentItem();
    if (!item)
        return;
    if (!m_prompts->askYesNo(this, QString::fromLatin1(Messages::AskDelete)))
        return;
    if (m_noteItem && (m_noteItem == item || item->isAncestorOf(m_noteItem))) {
        m_noteItem = nullptr;
        m_notes->setModified(false);
    }
    TreeNode *parent = nullptr;
    {
        WaitCursor wait;
        parent = Editing::deleteItem(*m_document, item, &m_clip);
    }
    refresh(parent);
}

void DocumentView::moveCurrent(Editing::Move move)
{
    Item *item = currentItem();
    if (item && Editing::move(*m_document, item, move))
        refresh(item);
}

void DocumentView::setViewMode(quint16 mode)
{
    WaitCursor wait;
    const int row = m_rows->setViewMode(mode, currentNode());
    m_tree->rowsChanged(row >= 0 ? row : 0);
    Q_EMIT stateChanged();
}

void DocumentView::toggleFilter(VisibilityFilter::Toggle toggle)
{
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

void DocumentView::orderChildren(quint16 key)
{
    TreeNode *node = currentNode();
    if (!node)
        return;
    {
        WaitCursor wait;
        ChildOrder::orderChildrenBy(node, key);
    }
    refresh(node);
}

void DocumentView::setDirection(bool ascending)
{
    if (m_rows->isGrouped()) {
        // A heading's menu orders the whole view.
        WaitCursor wait;
        m_rows->setViewOrder(m_document->viewOrder, ascending);
        m_tree->rowsChanged(m_rows->rebuild(m_tree->currentRow()));
        Q_EMIT stateChanged();
        return;
    }
    TreeNode *node = currentNode();
    if (!node)
        return;
    {
        WaitCursor wait;
        ChildOrder::setDirection(node, ascending);
    }
    refresh(node);
}
