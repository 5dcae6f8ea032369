#pragma once

#include <QHash>
#include <QList>
#include <QSet>
#include <QObject>
#include <functional>
#include <vector>

class CommandHost;
class QAction;
class QKeySequence;

/// The commands of one feature: each a QAction with a symbolic object name,
/// its text, shortcut, enabling and checking rule, and its handler, all
/// declared in one place by add().
class CommandGroup : public QObject {
    Q_OBJECT
public:
    CommandGroup(CommandHost *host, QObject *parent);

    /// The action of that object name ("actionExportXml"), or null.
    QAction *action(const QString &name) const;
    QList<QAction *> actions() const;
    /// Greys and marks the actions for the present state.
    void update();

protected:
    using Rule = std::function<bool()>;
    /// A command. Without an enabling rule it is always enabled; with a
    /// checking rule it is checkable. A trigger runs the handler only while
    /// the rule allows it, then every command's state is brought up to date.
    QAction *add(const char *name, const QString &text, std::function<void()> run, Rule enabled = {},
                 Rule checked = {});

    /// The name an undo shows for the command's step ("Undo Set Priority");
    /// by default its text without the accelerator and the dots.
    void setStepName(QAction *action, const QString &name) { m_stepNames.insert(action, name); }
    /// The group's commands change nothing the undo follows (files, views,
    /// finding) or run other commands that record steps of their own.
    void setRecordsSteps(bool on) { m_recordsSteps = on; }
    void leaveUnrecorded(QAction *action) { m_unrecorded.insert(action); }

    CommandHost *m_host;

private:
    QString stepName(QAction *action) const;

    struct Entry {
        QAction *action;
        Rule enabled;
        Rule checked;
    };
    std::vector<Entry> m_entries;
    QHash<QAction *, QString> m_stepNames;
    QSet<QAction *> m_unrecorded;
    bool m_recordsSteps = true;
};
