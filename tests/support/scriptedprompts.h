#pragma once

#include "shell/widgets/prompts.h"

#include <QHash>
#include <QList>
#include <QQueue>
#include <QStringList>
#include <QUrl>
#include <functional>

/// Prompts answered from queues filled in advance, for tests and benchmarks. Every question and message is
/// recorded. An empty queue answers Yes (or OK), cancels dialogs and boxes and dismisses menus.
class ScriptedPrompts : public Prompts {
public:
    struct Shown {
        Icon icon;
        QString text;
    };
    struct ActionState {
        bool enabled = false;
        bool checked = false;
    };

    QQueue<bool> yesNo;
    QQueue<bool> okCancel;
    QQueue<QString> fileNames;
    QQueue<int> noteTypes;
    QQueue<QString> passwords;
    QQueue<int> icons;
    QQueue<QString> texts;       ///< answers of askText, each offered to its accept check in turn
    QQueue<QString> menuChoices; ///< object names of the actions to choose; an empty name dismisses
    /// Scripts for our dialogs, in the order they open: each gets the shown dialog and works its widgets. A
    /// dialog still open when its script returns, or with no script left, is cancelled. With
    /// QUILLBOX_SCREENSHOTS set to a folder, a picture of each is saved there under its object name.
    QQueue<std::function<void(QDialog *)>> dialogs;

    QList<Shown> shown;
    QList<int> noteTypesOffered; ///< the type each note type question offered first
    int passwordAttempts = 0;
    int aboutShown = 0;
    QStringList dialogsRun;                       ///< object names of the dialogs run, in order
    QStringList textPrompts;                      ///< the prompts of askText, in order
    QStringList textPrefills;                     ///< the text each box of askText opened with
    QList<QUrl> opened;                           ///< everything handed to openUrl, in order
    std::function<void(const QUrl &)> whenOpened; ///< stands for the program the desktop would start
    QHash<QString, ActionState> lastMenu;         ///< the named actions of the last popup menu and its submenus

    bool askYesNo(QWidget *, const QString &text) override { return ask(Icon::Question, text, yesNo); }
    bool askWarningYesNo(QWidget *, const QString &text) override { return ask(Icon::Exclamation, text, yesNo); }
    bool askOkCancel(QWidget *, const QString &text) override { return ask(Icon::Exclamation, text, okCancel); }
    void message(QWidget *, Icon icon, const QString &text) override { shown.append({icon, text}); }
    QString openFileName(QWidget *, const QString &, const QString &, const QString &) override
    {
        return fileNames.isEmpty() ? QString() : fileNames.dequeue();
    }
    QString saveFileName(QWidget *w, const QString &, const QString &, const QString &) override
    {
        return openFileName(w, {}, {}, {});
    }
    QString saveFileOfType(QWidget *w, const QString &, const QString &, const QStringList &, const QString &,
                           int *chosenFilter) override
    {
        if (chosenFilter)
            *chosenFilter = 0;
        return openFileName(w, {}, {}, {});
    }
    int askNoteType(QWidget *, int preselected = 0) override
    {
        noteTypesOffered.append(preselected);
        return noteTypes.isEmpty() ? -1 : noteTypes.dequeue();
    }
    int chooseIcon(QWidget *, quint16, const QList<quint16> &) override
    {
        return icons.isEmpty() ? -1 : icons.dequeue();
    }
    void about(QWidget *) override { ++aboutShown; }
    bool askSecret(QWidget *, const QString &, QString *) override { return false; }
    bool openUrl(const QUrl &url) override
    {
        opened.append(url);
        if (whenOpened)
            whenOpened(url);
        return true;
    }
    bool askPassword(QWidget *parent, const std::function<bool(const QString &)> &check) override;
    QAction *popupMenu(QMenu *menu, const QPoint &globalPos) override;
    int runDialog(QDialog *dialog) override;
    bool askText(QWidget *parent, const QString &prompt, QString *text, int maxLength,
                 const std::function<bool(const QString &)> &accept) override;

private:
    bool ask(Icon icon, const QString &text, QQueue<bool> &answers)
    {
        shown.append({icon, text});
        return answers.isEmpty() || answers.dequeue();
    }
};
