#pragma once

#include <QDialog>
#include <functional>

class Document;
class Prompts;
class QLabel;
class QLineEdit;

/// The password dialog: a message line over three boxes (current password,
/// new password, confirmation), each taking at most 15 characters.
///
/// "Enter" mode checks the password of a protected document; only the first
/// box is open, and a wrong password keeps the dialog open for another try.
/// "Set" mode sets, changes or removes a document's password: a protected
/// document's current password is checked first, then the new password and
/// its confirmation must agree; both left empty remove the protection. The
/// document changes only when the dialog closes with OK.
class PasswordDialog : public QDialog {
    Q_OBJECT
public:
    using Check = std::function<bool(const QString &password)>;

    /// "Enter" mode: OK closes the dialog only when check accepts the text.
    PasswordDialog(const Check &check, Prompts *prompts, QWidget *parent = nullptr);
    /// "Set" mode over the document's PasswordHash.
    PasswordDialog(Document *document, Prompts *prompts, QWidget *parent = nullptr);

    QLineEdit *currentEdit() const { return m_current; }
    QLineEdit *newEdit() const { return m_new; }
    QLineEdit *confirmEdit() const { return m_confirm; }

    void accept() override;

private:
    void build(const QString &message, bool currentOpen, bool newOpen);

    Check m_check;
    Document *m_document = nullptr;
    Prompts *m_prompts;
    QLineEdit *m_current = nullptr;
    QLineEdit *m_new = nullptr;
    QLineEdit *m_confirm = nullptr;
};
