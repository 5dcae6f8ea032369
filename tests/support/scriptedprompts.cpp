#include "support/scriptedprompts.h"

#include <QAction>
#include <QCoreApplication>
#include <QDialog>
#include <QDir>
#include <QMenu>

bool ScriptedPrompts::askPassword(QWidget *, const std::function<bool(const QString &)> &check)
{
    while (!passwords.isEmpty()) {
        ++passwordAttempts;
        if (check(passwords.dequeue()))
            return true;
    }
    return false;
}

QAction *ScriptedPrompts::popupMenu(QMenu *menu, const QPoint &)
{
    lastMenu.clear();
    const auto actions = menu->findChildren<QAction *>();
    for (QAction *action : actions) {
        // An entry of a greyed submenu cannot be reached: it counts as greyed.
        bool enabled = action->isEnabled();
        for (QObject *o = action->parent(); o && o != menu; o = o->parent()) {
            if (auto *sub = qobject_cast<QMenu *>(o); sub && !sub->menuAction()->isEnabled())
                enabled = false;
        }
        if (!action->objectName().isEmpty())
            lastMenu.insert(action->objectName(), {enabled, action->isChecked()});
    }
    const QString name = menuChoices.isEmpty() ? QString() : menuChoices.dequeue();
    QAction *action = name.isEmpty() ? nullptr : menu->findChild<QAction *>(name);
    if (!action || !lastMenu.value(name).enabled)
        return nullptr;
    action->trigger();
    return action;
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
