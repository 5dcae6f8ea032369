#include "shell/itempickerdialog.h"

#include "model/document.h"
#include "platform/messages.h"
#include "rows/iconset.h"
#include "shell/prompts.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <vector>

namespace {

constexpr int NodeRole = Qt::UserRole;
constexpr int FilledRole = Qt::UserRole + 1;

QTreeWidgetItem *makeRow(TreeNode *node, qreal dpr)
{
    auto *row = new QTreeWidgetItem;
    row->setText(0, node->name());
    row->setIcon(0, QIcon(IconSet::instance().icon(node->image(), 16, dpr)));
    row->setData(0, NodeRole, QVariant::fromValue(quintptr(node)));
    if (node->hasChildren())
        row->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
    return row;
}

} // namespace

ItemPickerDialog::ItemPickerDialog(const Document &document, Prompts *prompts, QWidget *parent)
    : QDialog(parent), m_prompts(prompts)
{
    setObjectName(QStringLiteral("itemPicker"));
    setWindowTitle(QStringLiteral("Item Link"));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("Choose the item to link to:"), this));
    m_tree = new QTreeWidget(this);
    m_tree->setObjectName(QStringLiteral("pickerTree"));
    m_tree->setHeaderHidden(true);
    m_tree->setUniformRowHeights(true);
    m_tree->setIconSize(QSize(16, 16));
    connect(m_tree, &QTreeWidget::itemExpanded, this, &ItemPickerDialog::fill);
    connect(m_tree, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem *row) {
        if (row && nodeOf(row)->isItem())
            accept();
    });
    layout->addWidget(m_tree, 1);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &ItemPickerDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &ItemPickerDialog::reject);
    layout->addWidget(buttons);

    QTreeWidgetItem *top = makeRow(document.root(), devicePixelRatioF());
    QFont bold = top->font(0);
    bold.setBold(true);
    top->setFont(0, bold);
    m_tree->addTopLevelItem(top);
    top->setExpanded(true);
    m_tree->setCurrentItem(top);
    resize(380, 460);
}

TreeNode *ItemPickerDialog::nodeOf(const QTreeWidgetItem *row)
{
    return reinterpret_cast<TreeNode *>(row->data(0, NodeRole).value<quintptr>());
}

void ItemPickerDialog::fill(QTreeWidgetItem *row)
{
    if (row->data(0, FilledRole).toBool())
        return;
    row->setData(0, FilledRole, true);
    const qreal dpr = devicePixelRatioF();
    QList<QTreeWidgetItem *> rows;
    for (Item *child : nodeOf(row)->children())
        rows.append(makeRow(child, dpr));
    row->addChildren(rows);
}

QTreeWidgetItem *ItemPickerDialog::rowFor(TreeNode *node) const
{
    std::vector<TreeNode *> chain;
    for (TreeNode *n = node; n; n = n->parent())
        chain.push_back(n);
    QTreeWidgetItem *row = m_tree->topLevelItem(0);
    if (!row || nodeOf(row) != chain.back())
        return nullptr;
    for (auto it = chain.rbegin() + 1; it != chain.rend(); ++it) {
        row->setExpanded(true); // fills the row's children
        const int index = nodeOf(row)->indexOf(*it);
        row = row->child(index);
        if (!row)
            return nullptr;
    }
    return row;
}

bool ItemPickerDialog::selectNode(const TreeNode *node)
{
    QTreeWidgetItem *row = rowFor(const_cast<TreeNode *>(node));
    if (!row)
        return false;
    m_tree->setCurrentItem(row);
    m_tree->scrollToItem(row);
    return true;
}

void ItemPickerDialog::accept()
{
    QTreeWidgetItem *row = m_tree->currentItem();
    Item *item = row ? nodeOf(row)->asItem() : nullptr;
    if (!item) {
        m_prompts->message(this, Prompts::Icon::Exclamation, QString::fromLatin1(Messages::ListTitleNotLinkable));
        return;
    }
    m_chosen = item;
    QDialog::accept();
}
