#include "shell/document/branchview.h"

#include "model/childorder.h"
#include "model/document.h"
#include "model/progress.h"
#include "platform/messages.h"
#include "rows/rowpainter.h"
#include "shell/commands/commandids.h"
#include "shell/document/itemactions.h"
#include "shell/document/itemmenu.h"
#include "shell/widgets/prompts.h"
#include "shell/widgets/toolbaricons.h"
#include "shell/document/treepane.h"
#include "shell/widgets/waitcursor.h"
#include "storage/settings.h"
#include "views/viewrows.h"

#include <QAction>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QLabel>
#include <QMenu>
#include <QToolBar>
#include <QVBoxLayout>

BranchView::BranchView(Document *document, Item *top, const Settings *settings, Prompts *prompts, ItemClip *otherClip,
                       QWidget *parent)
    : QDialog(parent), m_document(document), m_topHandle(top->handle()), m_settings(settings), m_prompts(prompts),
      m_otherClip(otherClip)
{
    setObjectName(QStringLiteral("branchView"));
    setWindowTitle(QStringLiteral("Branch View - %1").arg(top->name()));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 6);

    auto *bar = new QToolBar(this);
    bar->setObjectName(QStringLiteral("branchToolBar"));
    bar->setIconSize(QSize(20, 20));
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    QAction *modify = bar->addAction(ToolbarIcons::modifyItem(), QStringLiteral("Modify Item"));
    modify->setObjectName(QStringLiteral("action%1").arg(CommandId::ModifyItem));
    connect(modify, &QAction::triggered, this, [this] { runCommand(CommandId::ModifyItem); });
    layout->addWidget(bar);

    m_rows = std::make_unique<ViewRows>(*document, top);
    m_tree = new TreePane(this);
    m_tree->setObjectName(QStringLiteral("branchTree"));
    RowStyle style;
    if (settings) {
        style.fontSize = settings->fontSize;
        style.flags = settings->flags;
        style.prgColour = settings->prgColour;
    }
    style.showDueDate = document->showDueDate;
    style.showStatistics = document->showStatistics;
    m_tree->setRowStyle(style);
    m_tree->setBaseLevel(-1);
    m_tree->setRows(m_rows.get());
    m_tree->rowsChanged(0);
    layout->addWidget(m_tree, 1);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    buttons->setContentsMargins(6, 0, 6, 0);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::accept);
    layout->addWidget(buttons);

    connect(m_tree, &TreePane::statusTapped, this, &BranchView::onStatusTapped);
    connect(m_tree, &TreePane::contextMenuRequested, this, &BranchView::showItemMenu);
    connect(m_tree, &TreePane::deleteRequested, this, [this] { runCommand(CommandId::DeleteItem); });
    connect(m_tree, &TreePane::dropRequested, this, [this](Item *dragged, TreeNode *target) {
        // Nothing leaves the branch by a drop, and the top stays on top.
        Item *branchTop = this->top();
        const bool inBranch = branchTop && (target == branchTop || branchTop->isAncestorOf(target));
        if (!inBranch || !Editing::drop(dragged, target)) {
            m_tree->viewport()->update();
            return;
        }
        changed(dragged);
    });
    connect(m_tree, &TreePane::renameCommitted, this, [this](TreeNode *node, const QString &name) {
        node->setName(name);
        if (TreeNode *parent = node->parent(); parent && parent->sort() == TreeNode::SortName)
            ChildOrder::sortAgain(parent);
        changed(node);
    });
    resize(420, 520);
}

BranchView::~BranchView() = default;

Item *BranchView::top() const
{
    return m_document->liveItem(m_topHandle);
}

Item *BranchView::currentItem() const
{
    TreeNode *node = m_tree->currentNode();
    return node ? node->asItem() : nullptr;
}

void BranchView::changed(TreeNode *select)
{
    if (m_afterChange)
        m_afterChange();
    if (!top()) {
        accept();
        return;
    }
    int row = m_rows->rebuild(m_tree->currentRow());
    if (m_rows->isEmpty()) {
        m_prompts->message(this, Prompts::Icon::Information, QString::fromLatin1(Messages::BranchHidden));
        accept();
        return;
    }
    if (select) {
        const int revealed = m_rows->reveal(select);
        if (revealed >= 0)
            row = revealed;
    }
    m_tree->rowsChanged(std::max(row, 0));
}

bool BranchView::isAvailable(int id) const
{
    using namespace CommandId;
    if ((id >= Priority1 && id <= Priority20) || (id >= Colour0 && id <= Colour35) ||
        (id >= OrderByName && id <= OrderByName + 5))
        return true;
    switch (id) {
    case Rename:
    case ChangeIcon:
    case ShowIcon:
    case ItalicStyle:
    case NoStatus:
    case CheckBox:
    case ProgressBar:
    case OrderManual:
    case CommandId::Ascending:
    case Descending:
    case CreateCopy:
    case MarkMove:
    case MarkCopy:
    case Paste:
    case DeleteItem:
        return true;
    case ModifyItem:
        return bool(m_editProperties);
    default:
        return false;
    }
}

void BranchView::showItemMenu(int row, const QPoint &globalPos)
{
    if (row < 0 || row >= m_rows->count())
        return;
    m_tree->setCurrentRow(row);
    ItemMenu::State state;
    state.kind = ItemMenu::RowKind::Item;
    state.node = m_rows->row(row).node;
    state.canPaste = m_clip.canPaste(state.node);
    ItemActions::popupItemMenu(
        ItemMenu::build(state, this), globalPos, m_prompts, this, [this](int id) { return isAvailable(id); },
        [this](int id) { runCommand(id); });
}

bool BranchView::runCommand(int id)
{
    using namespace CommandId;
    Item *item = currentItem();
    if (!item || !isAvailable(id))
        return false;
    if (id >= Priority1 && id <= Priority20) {
        Editing::setPriority(item, quint16(id - Priority1 + 1));
        changed(item);
    } else if (id >= Colour0 && id <= Colour35) {
        item->setColour(quint16(id - Colour0));
        m_tree->viewport()->update();
    } else if (id >= OrderByName && id <= OrderManual) {
        if (id > OrderByName + 5 && id != OrderManual)
            return false;
        WaitCursor wait;
        ChildOrder::orderChildrenBy(item, quint16(id - OrderByName));
        changed(item);
    } else {
        switch (id) {
        case Rename:
            m_tree->startRename();
            break;
        case ChangeIcon:
            if (const int icon =
                    m_prompts->chooseIcon(this, item->image(), m_settings ? m_settings->favIcons : QList<quint16>());
                icon >= 0) {
                item->setImage(quint16(icon));
                m_tree->viewport()->update();
            }
            break;
        case ShowIcon:
            item->setShowIcon(!item->showIcon());
            m_tree->viewport()->update();
            break;
        case ItalicStyle:
            item->setItalic(!item->isItalic());
            m_tree->viewport()->update();
            break;
        case NoStatus:
        case CheckBox:
        case ProgressBar:
            item->setStatusType(quint16(id - NoStatus));
            changed(item);
            break;
        case CommandId::Ascending:
        case Descending: {
            WaitCursor wait;
            ChildOrder::setDirection(item, id == CommandId::Ascending);
            changed(item);
            break;
        }
        case CreateCopy: {
            // The top's copy goes beside it, outside the branch: the top
            // stays current here.
            Item *copy = Editing::createCopy(item);
            changed(item == top() ? item : copy);
            break;
        }
        case MarkMove:
            m_clip.markMove(item);
            break;
        case MarkCopy:
            m_clip.markCopy(item);
            if (QClipboard *clipboard = QGuiApplication::clipboard())
                clipboard->setText(item->name());
            break;
        case Paste:
            paste();
            break;
        case DeleteItem:
            deleteCurrent();
            break;
        case ModifyItem:
            if (m_editProperties(item))
                changed(item);
            break;
        default:
            return false;
        }
    }
    return true;
}

void BranchView::onStatusTapped(Item *item, const QPoint &globalPos)
{
    auto afterProgress = [this, item] {
        {
            WaitCursor wait;
            Progress::resortAncestors(item);
        }
        changed(item);
    };
    ItemActions::tapStatus(item, globalPos, m_prompts, this, afterProgress);
}

void BranchView::paste()
{
    if (Item *pasted = ItemActions::paste(m_clip, m_tree->currentNode(), m_prompts, this))
        changed(pasted);
}

void BranchView::deleteCurrent()
{
    Item *item = currentItem();
    if (!item || !m_prompts->askYesNo(this, QString::fromLatin1(Messages::AskDelete)))
        return;
    TreeNode *parent = nullptr;
    {
        WaitCursor wait;
        // The main view's mark lets go of the branch too.
        if (m_otherClip)
            m_otherClip->forgetBranch(item);
        parent = Editing::deleteItem(*m_document, item, &m_clip);
    }
    changed(parent);
}
