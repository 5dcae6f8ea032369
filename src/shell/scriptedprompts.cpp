#include "shell/scriptedprompts.h"

#include <QAction>
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

int ScriptedPrompts::askNoteType(QWidget *)
{
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
    QList<QMenu *> pending{menu};
    while (!pending.isEmpty()) {
        QMenu *m = pending.takeLast();
        for (QAction *action : m->actions()) {
            if (action->menu())
                pending.append(action->menu());
            if (!action->objectName().isEmpty())
                states.insert(action->objectName(),
                              {action->isEnabled(), action->isCheckable(), action->isChecked(), action->text()});
        }
    }
    return states;
}

QAction *ScriptedPrompts::popupMenu(QMenu *menu, const QPoint &)
{
    lastMenu = actionStates(menu);
    lastMenuTexts.clear();
    for (QAction *action : menu->actions())
        lastMenuTexts.append(action->isSeparator() ? QStringLiteral("-") : action->text());
    if (menuChoices.isEmpty())
        return nullptr;
    const QString name = menuChoices.dequeue();
    if (name.isEmpty())
        return nullptr;
    QAction *action = menu->findChild<QAction *>(name);
    if (!action) {
        for (QAction *a : menu->actions())
            if (a->objectName() == name)
                action = a;
    }
    // A greyed entry cannot be chosen.
    return action && action->isEnabled() ? action : nullptr;
}

void ScriptedPrompts::about(QWidget *)
{
    ++aboutShown;
}
