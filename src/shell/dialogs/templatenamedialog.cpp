#include "shell/dialogs/templatenamedialog.h"

#include "model/document.h"
#include "platform/messages.h"
#include "shell/widgets/prompts.h"
#include "storage/template.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

TemplateNameDialog::TemplateNameDialog(const QString &name, quint16 noteType, bool noteTypeFixed, Prompts *prompts,
                                       QWidget *parent)
    : QDialog(parent), m_prompts(prompts)
{
    setObjectName(QStringLiteral("templateName"));
    setWindowTitle(QStringLiteral("Item Template"));
    auto *layout = new QVBoxLayout(this);
    auto *label = new QLabel(QString::fromLatin1(Messages::TemplateNameLabel), this);
    layout->addWidget(label);
    m_name = new QLineEdit(name, this);
    m_name->setObjectName(QStringLiteral("templateNameEdit"));
    m_name->setMaxLength(Template::MaxNameLength);
    label->setBuddy(m_name);
    layout->addWidget(m_name);
    auto *form = new QFormLayout;
    m_noteType = new QComboBox(this);
    m_noteType->setObjectName(QStringLiteral("templateNoteType"));
    m_noteType->addItems({Document::noteTypeName(0), Document::noteTypeName(1), Document::noteTypeName(2)});
    m_noteType->setCurrentIndex(noteType < 3 ? noteType : 0);
    m_noteType->setEnabled(!noteTypeFixed);
    form->addRow(QStringLiteral("&Note type:"), m_noteType);
    layout->addLayout(form);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &TemplateNameDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    m_name->selectAll();
    m_name->setFocus();
    setMinimumWidth(340);
}

QString TemplateNameDialog::name() const
{
    return m_name->text();
}

quint16 TemplateNameDialog::noteType() const
{
    return quint16(m_noteType->currentIndex());
}

void TemplateNameDialog::accept()
{
    const QString error = Template::nameError(m_name->text());
    if (!error.isEmpty()) {
        m_prompts->message(this, Prompts::Icon::Exclamation, error);
        m_name->setFocus();
        return;
    }
    QDialog::accept();
}
