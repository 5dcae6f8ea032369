#include "support/scriptedprompts.h"

#include <QAction>
#include <QCoreApplication>
#include <QDialog>
#include <QDir>
#include <QMenu>

bool ScriptedPrompts::askYesNo(QWidget *, const QString &text)
{
    shown.append({Icon::Question, text});
    return yesNo.isEmpty() ? true : yesNo.dequeue();
}

void ScriptedPrompts::message(QWidget *, Icon icon, const QString &text)
{
    shown.append({icon, text});
}

QString ScriptedPrompts::openFileName(QWidget *, const QString &, const QString &, const QString &)
{
    return fileNames.isEmpty() ? QString() : fileNames.dequeue();
}

QString ScriptedPrompts::saveFileName(QWidget *, const QString &, const QString &, const QString &)
{
    return fileNames.isEmpty() ? QString() : fileNames.dequeue();
}

int ScriptedPrompts::askNoteType(QWidget *, int preselected)
{
    noteTypesOffered.append(preselected);
    return noteTypes.isEmpty() ? -1 : noteTypes.dequeue();
}

bool ScriptedPrompts::askPassword(QWidget *, const std::function<bool(const QString &)> &check)
{
    while (!passwords.isEmpty()) {
        ++passwordAttempts;
        if (check(passwords.dequeue()))
            return true;
    }
    return false;
}

QHash<QString, ScriptedPrompts::ActionState> ScriptedPrompts::actionStates(QMenu *menu)
{
    QHash<QString, ActionState> states;
    const auto actions = menu->findChildren<QAction *>();
    for (QAction *action : actions) {
        if (action->objectName().isEmpty())
            continue;
        // An entry of a greyed submenu cannot be reached: it counts as greyed.
        bool enabled = action->isEnabled();
        for (QObject *o = action->parent(); o && o != menu; o = o->parent()) {
            if (auto *sub = qobject_cast<QMenu *>(o); sub && !sub->menuAction()->isEnabled())
                enabled = false;
        }
        states.insert(action->objectName(), {enabled, action->isCheckable(), action->isChecked(), action->text()});
    }
    return states;
}

QAction *ScriptedPrompts::popupMenu(QMenu *menu, const QPoint &)
{
    if (onMenu)
        onMenu(menu);
    lastMenu = actionStates(menu);
    lastMenuTexts.clear();
    for (QAction *action : menu->actions())
        lastMenuTexts.append(action->isSeparator() ? QStringLiteral("-") : action->text());
    if (menuChoices.isEmpty())
        return nullptr;
    const QString name = menuChoices.dequeue();
    QAction *action = name.isEmpty() ? nullptr : menu->findChild<QAction *>(name);
    // A greyed entry, or one in a greyed submenu, cannot be chosen.
    if (!action || !lastMenu.value(name).enabled)
        return nullptr;
    action->trigger();
    return action;
}

void ScriptedPrompts::about(QWidget *)
{
    ++aboutShown;
}

int ScriptedPrompts::chooseIcon(QWidget *, quint16, const QList<quint16> &)
{
    return icons.isEmpty() ? -1 : icons.dequeue();
}

int ScriptedPrompts::runDialog(QDialog *dialog)
{
    dialogsRun.append(dialog->objectName());
    if (dialogs.isEmpty())
        return QDialog::Rejected;
    const auto script = dialogs.dequeue();
    dialog->setResult(QDialog::Rejected);
    dialog->show();
    QCoreApplication::processEvents();
    if (const QString folder = qEnvironmentVariable("QUILLBOX_SCREENSHOTS"); !folder.isEmpty() && QDir().mkpath(folder))
        dialog->grab().save(QDir(folder).filePath(dialog->objectName() + QStringLiteral(".png")));
    script(dialog);
    if (dialog->isVisible())
        dialog->reject();
    return dialog->result();
}

bool ScriptedPrompts::askText(QWidget *, const QString &prompt, QString *text, int maxLength,
                              const std::function<bool(const QString &)> &accept)
{
    textPrompts.append(prompt);
    textPrefills.append(*text);
    while (!texts.isEmpty()) {
        // What a box of that length would have let through.
        const QString answer = texts.dequeue().left(maxLength);
        if (accept(answer)) {
            *text = answer;
            return true;
        }
    }
    return false;
}

bool ScriptedPrompts::askWarningYesNo(QWidget *, const QString &text)
{
    shown.append({Icon::Exclamation, text});
    return yesNo.isEmpty() ? true : yesNo.dequeue();
}

bool ScriptedPrompts::askOkCancel(QWidget *, const QString &text)
{
    shown.append({Icon::Exclamation, text});
    return okCancel.isEmpty() ? true : okCancel.dequeue();
}

QString ScriptedPrompts::saveFileOfType(QWidget *, const QString &, const QString &, const QStringList &,
                                        const QString &, int *chosenFilter)
{
    if (chosenFilter)
        *chosenFilter = fileTypes.isEmpty() ? 0 : fileTypes.dequeue();
    return fileNames.isEmpty() ? QString() : fileNames.dequeue();
}

bool ScriptedPrompts::openUrl(const QUrl &url)
{
    opened.append(url);
    if (whenOpened)
        whenOpened(url);
    return urlsOpen;
}
