#include "shell/widgets/prompts.h"

#include "platform/messages.h"
#include "shell/dialogs/passworddialog.h"
#include "shell/widgets/iconchooser.h"

#include <QAction>
#include <QApplication>
#include <QButtonGroup>
#include <QDesktopServices>
#include <QDialog>
#include <QDir>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QUrl>
#include <QVBoxLayout>
#include <algorithm>

namespace {

QString caption()
{
    return QString::fromLatin1(Messages::Caption);
}

} // namespace

bool DialogPrompts::askYesNo(QWidget *parent, const QString &text)
{
    QMessageBox box(QMessageBox::Question, caption(), text, QMessageBox::Yes | QMessageBox::No, parent);
    box.setDefaultButton(QMessageBox::Yes);
    return box.exec() != QMessageBox::No;
}

void DialogPrompts::message(QWidget *parent, Icon icon, const QString &text)
{
    QMessageBox::Icon boxIcon = QMessageBox::Information;
    switch (icon) {
    case Icon::Stop:
        boxIcon = QMessageBox::Critical;
        break;
    case Icon::Exclamation:
        boxIcon = QMessageBox::Warning;
        break;
    case Icon::Question:
        boxIcon = QMessageBox::Question;
        break;
    case Icon::Information:
        break;
    }
    QMessageBox box(boxIcon, caption(), text, QMessageBox::Ok, parent);
    box.exec();
}

QString DialogPrompts::openFileName(QWidget *parent, const QString &title, const QString &folder, const QString &filter)
{
    return QFileDialog::getOpenFileName(parent, title.isEmpty() ? caption() : title, folder, filter);
}

QString DialogPrompts::saveFileName(QWidget *parent, const QString &title, const QString &suggested,
                                    const QString &filter)
{
    QFileDialog dialog(parent, title.isEmpty() ? caption() : title, suggested, filter);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QStringLiteral("qbx"));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().constFirst();
}

int DialogPrompts::askNoteType(QWidget *parent, int preselected)
{
    QDialog dialog(parent);
    dialog.setWindowTitle(caption());
    auto *layout = new QVBoxLayout(&dialog);
    layout->addWidget(new QLabel(QString::fromLatin1(Messages::NoteTypeQuestion)));
    const char *names[] = {Messages::NoteTypePlain, Messages::NoteTypeInk, Messages::NoteTypeRich};
    const char *details[] = {
        "Notes are plain text, readable by any program.",
        "Notes hold formatted text together with drawings and voice recordings.",
        "Notes hold formatted text: fonts, bold, italic, colours and lists.",
    };
    QButtonGroup group;
    for (int i = 0; i < 3; ++i) {
        auto *button = new QRadioButton(QString::fromLatin1(names[i]));
        button->setObjectName(QStringLiteral("noteType%1").arg(i));
        group.addButton(button, i);
        layout->addWidget(button);
        auto *detail = new QLabel(QString::fromLatin1(details[i]));
        detail->setContentsMargins(24, 0, 0, 6);
        detail->setEnabled(false);
        layout->addWidget(detail);
    }
    group.button(preselected >= 0 && preselected < 3 ? preselected : 0)->setChecked(true);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    layout->addWidget(buttons);
    if (dialog.exec() != QDialog::Accepted)
        return -1;
    return group.checkedId();
}

bool DialogPrompts::askPassword(QWidget *parent, const std::function<bool(const QString &)> &check)
{
    // The password dialog in its "enter" mode: the new-password boxes are
    // greyed, and a wrong password keeps it open for another try.
    PasswordDialog dialog(check, this, parent);
    return dialog.exec() == QDialog::Accepted;
}

QAction *DialogPrompts::popupMenu(QMenu *menu, const QPoint &globalPos)
{
    return menu->exec(globalPos);
}

void DialogPrompts::about(QWidget *parent)
{
    QMessageBox box(parent);
    box.setWindowTitle(caption());
    box.setIconPixmap(QApplication::windowIcon().pixmap(64, 64));
    box.setText(QStringLiteral("<h3>Quillbox %1</h3>").arg(QStringLiteral(QUILLBOX_VERSION)));
    box.setInformativeText(QStringLiteral("A hierarchical note-taking and task outliner.\n\n"
                                          "Documents are kept as .qbx files in your documents folder."));
    box.exec();
}

int DialogPrompts::chooseIcon(QWidget *parent, quint16 current, const QList<quint16> &favourites)
{
    IconChooser chooser(current, favourites, parent);
    return chooser.exec() == QDialog::Accepted ? chooser.chosen() : -1;
}

int DialogPrompts::runDialog(QDialog *dialog)
{
    return dialog->exec();
}

bool DialogPrompts::askText(QWidget *parent, const QString &prompt, QString *text, int maxLength,
                            const std::function<bool(const QString &)> &accept)
{
    QDialog dialog(parent);
    dialog.setObjectName(QStringLiteral("textPrompt"));
    dialog.setWindowTitle(caption());
    auto *layout = new QVBoxLayout(&dialog);
    layout->addWidget(new QLabel(prompt));
    auto *edit = new QLineEdit(*text);
    edit->setMaxLength(maxLength);
    edit->selectAll();
    layout->addWidget(edit);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    layout->addWidget(buttons);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, [&] {
        if (accept(edit->text())) {
            dialog.accept();
            return;
        }
        edit->setFocus();
    });
    dialog.resize(400, dialog.sizeHint().height());
    if (dialog.exec() != QDialog::Accepted)
        return false;
    *text = edit->text();
    return true;
}

bool DialogPrompts::askWarningYesNo(QWidget *parent, const QString &text)
{
    QMessageBox box(QMessageBox::Warning, caption(), text, QMessageBox::Yes | QMessageBox::No, parent);
    box.setDefaultButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}

bool DialogPrompts::askOkCancel(QWidget *parent, const QString &text)
{
    QMessageBox box(QMessageBox::Warning, caption(), text, QMessageBox::Ok | QMessageBox::Cancel, parent);
    box.setDefaultButton(QMessageBox::Ok);
    return box.exec() == QMessageBox::Ok;
}

QString DialogPrompts::saveFileOfType(QWidget *parent, const QString &title, const QString &suggested,
                                      const QStringList &filters, const QString &defaultSuffix, int *chosenFilter)
{
    QFileDialog dialog(parent, title.isEmpty() ? caption() : title, suggested);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilters(filters);
    dialog.setDefaultSuffix(defaultSuffix);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    if (chosenFilter)
        *chosenFilter = std::max<int>(0, filters.indexOf(dialog.selectedNameFilter()));
    return dialog.selectedFiles().constFirst();
}

bool DialogPrompts::openUrl(const QUrl &url)
{
    return QDesktopServices::openUrl(url);
}

QStringList Prompts::filtersOf(const QString &pairs)
{
    // "Name|pattern|Name|pattern|": a name that already shows its pattern
    // keeps it as it is.
    if (!pairs.contains(QLatin1Char('|')))
        return {pairs};
    const QStringList parts = pairs.split(QLatin1Char('|'));
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        const QString &name = parts.at(i);
        const QString patterns = QString(parts.at(i + 1)).replace(QLatin1Char(';'), QLatin1Char(' '));
        if (name.isEmpty())
            continue;
        filters.append(name.endsWith(QLatin1Char(')')) ? name : QStringLiteral("%1 (%2)").arg(name, patterns));
    }
    return filters;
}

QString Prompts::withReason(const char *message, const QString &reason)
{
    const QString text = QString::fromLatin1(message);
    return reason.isEmpty() ? text : text + QStringLiteral("\n\n") + reason;
}

QString Prompts::withFile(const QString &message, const QString &path)
{
    return message + QStringLiteral("\n\n") + QDir::toNativeSeparators(path);
}

bool DialogPrompts::askSecret(QWidget *parent, const QString &prompt, QString *secret)
{
    bool ok = false;
    const QString text = QInputDialog::getText(parent, caption(), prompt, QLineEdit::Password, QString(), &ok);
    if (ok)
        *secret = text;
    return ok;
}
