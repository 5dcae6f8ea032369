#include "shell/commands/commandgroup.h"

#include "shell/commands/commandhost.h"
#include "shell/document/documentview.h"
#include "shell/document/undostack.h"

#include <QAction>

CommandGroup::CommandGroup(CommandHost *host, QObject *parent) : QObject(parent), m_host(host) {}

QAction *CommandGroup::action(const QString &name) const
{
    for (const Entry &entry : m_entries) {
        if (entry.action->objectName() == name)
            return entry.action;
    }
    return nullptr;
}

QList<QAction *> CommandGroup::actions() const
{
    QList<QAction *> list;
    for (const Entry &entry : m_entries)
        list.append(entry.action);
    return list;
}

void CommandGroup::update()
{
    for (const Entry &entry : m_entries) {
        entry.action->setEnabled(!entry.enabled || entry.enabled());
        if (entry.checked)
            entry.action->setChecked(entry.checked());
    }
}

QAction *CommandGroup::add(const char *name, const QString &text, std::function<void()> run, Rule enabled, Rule checked)
{
    auto *action = new QAction(text, this);
    action->setObjectName(QString::fromLatin1(name));
    action->setCheckable(bool(checked));
    m_entries.push_back({action, enabled, checked});
    connect(action, &QAction::triggered, this, [this, action, run = std::move(run), enabled = std::move(enabled)] {
        if (!enabled || enabled()) {
            // Whatever the command changes in the document is one undo step.
            DocumentView *view = m_host->view();
            const bool records = view && m_recordsSteps && !m_unrecorded.contains(action);
            EditScope scope(records ? view->undoStack() : nullptr, stepName(action));
            run();
        }
        m_host->updateActions();
    });
    return action;
}

QString CommandGroup::stepName(QAction *action) const
{
    const auto named = m_stepNames.constFind(action);
    if (named != m_stepNames.constEnd())
        return *named;
    QString text = action->text().remove(QLatin1Char('&'));
    if (text.endsWith(QLatin1String("...")))
        text.chop(3);
    return text;
}
