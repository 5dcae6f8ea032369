#include "shell/dialogs/itemexportdialog.h"

#include "exchange/itemexport.h"
#include "shell/widgets/nodetree.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QRadioButton>
#include <QVBoxLayout>

ItemExportDialog::ItemExportDialog(const Document &document, bool deleteAfter, QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("itemExport"));
    setWindowTitle(QStringLiteral("Export Items"));
    auto *layout = new QVBoxLayout(this);
    m_choices = new QButtonGroup(this);
    for (int choice = ItemExport::CompletedOnly; choice <= ItemExport::SelectedItems; ++choice) {
        auto *button = new QRadioButton(ItemExport::choiceLabel(choice), this);
        button->setObjectName(QStringLiteral("choice%1").arg(choice));
        m_choices->addButton(button, choice);
        layout->addWidget(button);
    }
    m_tree = new NodeTree(document, true, this);
    m_tree->setObjectName(QStringLiteral("exportTree"));
    m_tree->setEnabled(false);
    layout->addWidget(m_tree, 1);
    connect(m_choices, &QButtonGroup::idToggled, this, [this](int id, bool on) {
        if (id == ItemExport::SelectedItems)
            m_tree->setEnabled(on);
    });
    m_choices->button(ItemExport::CompletedOnly)->setChecked(true);

    m_delete = new QCheckBox(QStringLiteral("&Delete after export"), this);
    m_delete->setObjectName(QStringLiteral("deleteAfterExport"));
    m_delete->setChecked(deleteAfter);
    layout->addWidget(m_delete);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    resize(400, 480);
}

int ItemExportDialog::choice() const
{
    return m_choices->checkedId();
}

bool ItemExportDialog::deleteAfter() const
{
    return m_delete->isChecked();
}

std::vector<Item *> ItemExportDialog::selection() const
{
    return m_tree->checkedItems();
}
