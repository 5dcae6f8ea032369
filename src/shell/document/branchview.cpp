#include "shell/document/branchview.h"

#include "model/childorder.h"
#include "model/document.h"
#include "model/progress.h"
#include "platform/messages.h"
#include "rows/rowpainter.h"
#include "shell/document/itemactions.h"
#include "shell/document/treepane.h"
#include "shell/document/undostack.h"
#include "shell/widgets/prompts.h"
#include "shell/widgets/waitcursor.h"
#include "storage/settings.h"
#include "views/viewrows.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QLabel>
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

    m_toolBar = new QToolBar(this);
    m_toolBar->setObjectName(QStringLiteral("branchToolBar"));
    m_toolBar->setIconSize(QSize(20, 20));
    m_toolBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    layout->addWidget(m_toolBar);

    m_rows = std::make_unique<ViewRows>(*document, top);
    m_tree = new TreePane(this);
    m_tree->setObjectName(QStringLiteral("branchTree"));
    m_tree->setRowStyle(settings, *document);
    m_tree->setBaseLevel(-1);
    m_tree->setRows(m_rows.get());
    m_tree->rowsChanged(0);
    layout->addWidget(m_tree, 1);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    buttons->setContentsMargins(6, 0, 6, 0);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::accept);
    layout->addWidget(buttons);

    connect(m_tree, &TreePane::statusTapped, this, &BranchView::onStatusTapped);
    connect(m_tree, &TreePane::dropRequested, this, [this](Item *dragged, TreeNode *target) {
        // Nothing leaves the branch by a drop, and the top stays on top.
        Item *branchTop = this->top();
        const bool inBranch = branchTop && (target == branchTop || branchTop->isAncestorOf(target));
        EditScope scope(undoStack(), QStringLiteral("Drag and Drop"));
        if (!inBranch || !Editing::drop(dragged, target)) {
            m_tree->viewport()->update();
            return;
        }
        changed(dragged);
    });
    connect(m_tree, &TreePane::renameCommitted, this, [this](TreeNode *node, const QString &name) {
        EditScope scope(undoStack(), QStringLiteral("Rename"));
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

void BranchView::setMainList(ItemHost *main)
{
    m_main = main;
    if (UndoStack *stack = undoStack()) {
        connect(stack, &UndoStack::stepApplied, this, [this](TreeNode *focus) {
            if (m_clip.item() && m_clip.item()->topNode() != m_document->root())
                m_clip.clear();
            changed(focus);
        });
    }
}

void BranchView::addToolBarAction(QAction *action)
{
    m_toolBar->addAction(action);
}

void BranchView::forgetBranch(const Item *item)
{
    if (m_otherClip)
        m_otherClip->forgetBranch(item);
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

void BranchView::onStatusTapped(Item *item, const QPoint &globalPos)
{
    auto afterProgress = [this, item] {
        {
            WaitCursor wait;
            Progress::resortAncestors(item);
        }
        changed(item);
    };
    EditScope scope(undoStack(),
                    item->statusType() == Item::ProgressBar ? QStringLiteral("Progress") : QStringLiteral("Check Box"));
    ItemActions::tapStatus(item, globalPos, m_prompts, this, afterProgress);
}
