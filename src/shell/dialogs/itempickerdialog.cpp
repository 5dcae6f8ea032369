#include "shell/dialogs/itempickerdialog.h"

#include "model/document.h"
#include "platform/messages.h"
#include "shell/widgets/nodetree.h"
#include "shell/widgets/prompts.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

ItemPickerDialog::ItemPickerDialog(const Document &document, Prompts *prompts, QWidget *parent)
    : QDialog(parent), m_prompts(prompts)
{
    setObjectName(QStringLiteral("itemPicker"));
    setWindowTitle(QStringLiteral("Item Link"));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("Choose the item to link to:"), this));
    m_tree = new NodeTree(document, false, this);
    m_tree->setObjectName(QStringLiteral("pickerTree"));
    connect(m_tree, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem *row) {
        if (NodeTree::nodeOf(row)->isItem())
            accept();
    });
    layout->addWidget(m_tree, 1);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &ItemPickerDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &ItemPickerDialog::reject);
    layout->addWidget(buttons);
    resize(380, 460);
}

bool ItemPickerDialog::selectNode(const TreeNode *node)
{
    return m_tree->selectNode(node);
}

void ItemPickerDialog::accept()
{
    TreeNode *node = m_tree->currentNode();
    Item *item = node ? node->asItem() : nullptr;
    if (!item) {
        m_prompts->message(this, Prompts::Icon::Exclamation, QString::fromLatin1(Messages::ListTitleNotLinkable));
        return;
    }
    m_chosen = item;
    QDialog::accept();
}
