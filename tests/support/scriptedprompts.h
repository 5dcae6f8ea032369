#pragma once

#include "shell/widgets/prompts.h"

#include <QHash>
#include <QList>
#include <QQueue>
#include <QStringList>
#include <QUrl>
#include <functional>

/// Prompts answered from queues filled in advance, for tests and benchmarks. Every question and message is
/// recorded. An empty queue answers Yes, cancels dialogs and dismisses menus.
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
    /// The type each note type question offered first.
    QList<int> noteTypesOffered;
    QQueue<QString> passwords;
    /// Object names of the actions to choose (triggered as a click would); an empty name dismisses.
    QQueue<QString> menuChoices;
    QQueue<int> icons;
    /// Scripts for our dialogs, in the order they open: each gets the shown dialog and works its widgets. A
    /// dialog still open when its script returns, or with no script left, is cancelled. With
    /// QUILLBOX_SCREENSHOTS set to a folder, a picture of each is saved there under its object name.
    QQueue<std::function<void(QDialog *)>> dialogs;
    /// Answers of askText, each offered to its accept check in turn; an empty queue cancels.
    QQueue<QString> texts;
    /// Answers of the OK/Cancel questions; an empty queue answers OK.
    QQueue<bool> okCancel;
    /// The file type index chosen with each saveFileOfType answer (0 when the queue is empty).
    QQueue<int> fileTypes;

    QList<Shown> shown;
    int passwordAttempts = 0;
    int aboutShown = 0;
    /// Object names of the dialogs run, in order.
    QStringList dialogsRun;
    /// The prompts of askText, in order, and the text each box opened with.
    QStringList textPrompts;
    QStringList textPrefills;
    /// Everything handed to openUrl, in order.
    QList<QUrl> opened;
    /// Called with each URL handed to openUrl: stands for the application the desktop would start.
    std::function<void(const QUrl &)> whenOpened;
    /// False plays a desktop with no browser: openUrl fails.
    bool urlsOpen = true;
    /// Every named action of the last popup menu and its submenus; an entry of a greyed submenu is greyed.
    QHash<QString, ActionState> lastMenu;
    /// Called with every menu popped up, before an entry is chosen.
    std::function<void(QMenu *)> onMenu;
    /// The texts of the last popup menu's top-level entries, in order ("-" for separators).
    QStringList lastMenuTexts;

    bool askYesNo(QWidget *parent, const QString &text) override;
    void message(QWidget *parent, Icon icon, const QString &text) override;
    QString openFileName(QWidget *parent, const QString &title, const QString &folder, const QString &filter) override;
    QString saveFileName(QWidget *parent, const QString &title, const QString &suggested,
                         const QString &filter) override;
    int askNoteType(QWidget *parent, int preselected = 0) override;
    bool askPassword(QWidget *parent, const std::function<bool(const QString &)> &check) override;
    QAction *popupMenu(QMenu *menu, const QPoint &globalPos) override;
    void about(QWidget *parent) override;
    int chooseIcon(QWidget *parent, quint16 current, const QList<quint16> &favourites) override;
    int runDialog(QDialog *dialog) override;
    bool askText(QWidget *parent, const QString &prompt, QString *text, int maxLength,
                 const std::function<bool(const QString &)> &accept) override;
    bool askWarningYesNo(QWidget *parent, const QString &text) override;
    bool askOkCancel(QWidget *parent, const QString &text) override;
    QString saveFileOfType(QWidget *parent, const QString &title, const QString &suggested, const QStringList &filters,
                           const QString &defaultSuffix, int *chosenFilter) override;
    bool openUrl(const QUrl &url) override;
    /// Cancels: no suite asks for a secret through the prompts.
    bool askSecret(QWidget *, const QString &, QString *) override { return false; }

    /// Records a menu's actions as lastMenu does.
    static QHash<QString, ActionState> actionStates(QMenu *menu);
};
