#pragma once

#include "shell/prompts.h"

#include <QHash>
#include <QList>
#include <QQueue>
#include <QStringList>

/// Prompts answered from queues filled in advance, for tests and benchmarks.
/// Every question and message is recorded. An empty queue answers Yes,
/// cancels dialogs and dismisses menus.
class ScriptedPrompts : public Prompts {
public:
    struct Shown {
        Icon icon;
        QString text;
    };
    struct ActionState {
        bool enabled = false;
        bool checkable = false;
        bool checked = false;
        QString text;
    };

    QQueue<bool> yesNo;
    QQueue<QString> fileNames;
    QQueue<int> noteTypes;
    QQueue<QString> passwords;
    /// Object names of the actions to choose (triggered as a click would);
    /// an empty name dismisses.
    QQueue<QString> menuChoices;
    QQueue<int> icons;

    QList<Shown> shown;
    int passwordAttempts = 0;
    int aboutShown = 0;
    /// Every named action of the last popup menu and its submenus.
    QHash<QString, ActionState> lastMenu;
    /// The texts of the last popup menu's top-level entries, in order
    /// ("-" for separators).
    QStringList lastMenuTexts;

    bool askYesNo(QWidget *parent, const QString &text) override;
    void message(QWidget *parent, Icon icon, const QString &text) override;
    QString openFileName(QWidget *parent, const QString &title, const QString &folder, const QString &filter) override;
    QString saveFileName(QWidget *parent, const QString &title, const QString &suggested,
                         const QString &filter) override;
    int askNoteType(QWidget *parent) override;
    bool askPassword(QWidget *parent, const std::function<bool(const QString &)> &check) override;
    QAction *popupMenu(QMenu *menu, const QPoint &globalPos) override;
    void about(QWidget *parent) override;
    int chooseIcon(QWidget *parent, quint16 current) override;

    /// Records a menu's actions as lastMenu does, for menus the shell shows
    /// itself (the menu bar's drop-downs).
    static QHash<QString, ActionState> actionStates(QMenu *menu);
};
