#include "shell/dialogs/passworddialog.h"

#include "model/document.h"
#include "platform/messages.h"
#include "shell/widgets/prompts.h"
#include "storage/password.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QStyle>
#include <QVBoxLayout>

PasswordDialog::PasswordDialog(const Check &check, Prompts *prompts, QWidget *parent)
    : QDialog(parent), m_check(check), m_prompts(prompts)
{
    build(QString::fromLatin1(Messages::PasswordEnterPrompt), true, false);
}

PasswordDialog::PasswordDialog(Document *document, Prompts *prompts, QWidget *parent)
    : QDialog(parent), m_document(document), m_prompts(prompts)
{
    build(QString::fromLatin1(Messages::PasswordSetPrompt), !document->passwordHash.isEmpty(), true);
}

void PasswordDialog::build(const QString &message, bool currentOpen, bool newOpen)
{
    setObjectName(QStringLiteral("passwordDialog"));
    setWindowTitle(QString::fromLatin1(Messages::Caption));
    auto *layout = new QVBoxLayout(this);

    auto *top = new QHBoxLayout;
    auto *icon = new QLabel(this);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxInformation).pixmap(32, 32));
    icon->setAlignment(Qt::AlignTop);
    auto *text = new QLabel(message, this);
    text->setObjectName(QStringLiteral("passwordMessage"));
    text->setWordWrap(true);
    top->addWidget(icon);
    top->addWidget(text, 1);
    layout->addLayout(top);
    layout->addSpacing(6);

    auto *form = new QFormLayout;
    auto addBox = [&](const char *name, const QString &label, bool open) {
        auto *edit = new QLineEdit(this);
        edit->setObjectName(QString::fromLatin1(name));
        edit->setEchoMode(QLineEdit::Password);
        edit->setMaxLength(Password::MaxLength);
        edit->setEnabled(open);
        auto *caption = new QLabel(label, this);
        caption->setBuddy(edit);
        caption->setEnabled(open);
        form->addRow(caption, edit);
        return edit;
    };
    m_current = addBox("currentPassword", QStringLiteral("&Password:"), currentOpen);
    m_new = addBox("newPassword", QStringLiteral("&New password:"), newOpen);
    m_confirm = addBox("confirmPassword", QStringLiteral("&Confirm:"), newOpen);
    layout->addLayout(form);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->setObjectName(QStringLiteral("buttons"));
    connect(buttons, &QDialogButtonBox::accepted, this, &PasswordDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &PasswordDialog::reject);
    layout->addWidget(buttons);

    (currentOpen ? m_current : m_new)->setFocus();
    setMinimumWidth(380);
}

void PasswordDialog::accept()
{
    QString refusal;
    QLineEdit *retry = m_current;
    if (m_check) {
        if (!m_check(m_current->text()))
            refusal = Password::message(Password::Result::NotCorrect);
    } else {
        const Password::Result result =
            Password::change(m_document, m_current->text(), m_new->text(), m_confirm->text());
        refusal = Password::message(result);
        if (result == Password::Result::Mismatch)
            retry = m_new;
    }
    if (!refusal.isEmpty()) {
        // Wrong passwords may be retried without limit.
        m_prompts->message(this, Prompts::Icon::Stop, refusal);
        retry->selectAll();
        retry->setFocus();
        return;
    }
    QDialog::accept();
}
