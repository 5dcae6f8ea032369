#pragma once

#include "model/document.h"
#include "shell/app/mainwindow.h"
#include "shell/commands/commandgroup.h"
#include "shell/document/documentview.h"
#include "shell/document/treepane.h"
#include "storage/documentfile.h"
#include "support/scriptedprompts.h"

#include <QAbstractButton>
#include <QAction>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

/// The window's command of that object name, with every command's state up to date.
inline QAction *command(MainWindow *window, const char *name)
{
    window->updateActions();
    QAction *action = window->command(QString::fromLatin1(name));
    if (!action)
        qWarning("no command named %s", name);
    return action;
}

inline bool enabled(MainWindow *window, const char *name)
{
    QAction *action = command(window, name);
    return action && action->isEnabled();
}

inline bool checked(MainWindow *window, const char *name)
{
    QAction *action = command(window, name);
    return action && action->isChecked();
}

/// Triggers a command as a menu or shortcut would; false when it is greyed.
inline bool run(MainWindow *window, const char *name)
{
    if (!enabled(window, name))
        return false;
    command(window, name)->trigger();
    return true;
}

/// Triggers a command of a window of its own (a branch view); false when it is greyed.
inline bool runIn(QWidget *scope, const char *name)
{
    const auto groups = scope->findChildren<CommandGroup *>();
    for (CommandGroup *group : groups)
        group->update();
    QAction *action = scope->findChild<QAction *>(QString::fromLatin1(name));
    if (!action || !action->isEnabled())
        return false;
    action->trigger();
    return true;
}

/// A main window on a folder and settings file of the test's own, with every question answered by ScriptedPrompts.
struct ShellFixture {
    QTemporaryDir dir;
    ScriptedPrompts prompts;
    std::unique_ptr<MainWindow> window;

    ShellFixture() { restart(); }

    /// A new window on the same folder and settings, started as the program starts with that path.
    MainWindow *restart(const QString &path = QString())
    {
        window.reset();
        ShellEnvironment environment;
        environment.documentsFolder = dir.path();
        environment.settingsFile = dir.filePath(QStringLiteral("settings.ini"));
        environment.prompts = &prompts;
        window = std::make_unique<MainWindow>(environment);
        window->start(path);
        return window.get();
    }

    /// Writes the document to the fixture's folder and opens it.
    DocumentView *open(std::unique_ptr<Document> document, const QString &name = QStringLiteral("test.qbx"))
    {
        document->path = dir.filePath(name);
        if (!DocumentFile::save(*document) || !window->openDocument(document->path))
            return nullptr;
        return window->view();
    }

    DocumentView *view() const { return window->view(); }
    Document *document() const { return window->view()->document(); }

    /// The item at a path of child indexes below the root.
    Item *at(std::initializer_list<int> path) const
    {
        TreeNode *node = document()->root();
        Item *item = nullptr;
        for (int index : path)
            node = item = node->child(index);
        return item;
    }

    /// The first item of that name, in the order of the outline.
    Item *find(const QString &name) const
    {
        Item *found = nullptr;
        document()->root()->forEachDescendant([&](Item *item) {
            if (!found && item->name() == name)
                found = item;
        });
        return found;
    }

    /// The names of a node's children (of the root when null).
    QStringList names(const TreeNode *node = nullptr) const
    {
        QStringList list;
        for (const Item *item : (node ? node : document()->root())->children())
            list.append(item->name());
        return list;
    }

    void select(TreeNode *node) const { window->view()->refresh(node); }
    TreeNode *current() const { return window->view()->treePane()->currentNode(); }
    bool run(const char *name) { return ::run(window.get(), name); }
    bool enabled(const char *name) { return ::enabled(window.get(), name); }
    QAction *command(const char *name) { return ::command(window.get(), name); }

    QStringList shownTexts() const
    {
        QStringList texts;
        for (const auto &s : prompts.shown)
            texts.append(s.text);
        return texts;
    }
};

/// Builds a small tree quickly: add(parent, "name") appends an Item.
inline Item *add(TreeNode *parent, const QString &name)
{
    auto *item = new Item(name);
    parent->appendChild(item);
    return item;
}

template <typename T> T *child(QWidget *parent, const char *name)
{
    T *widget = parent->findChild<T *>(QString::fromLatin1(name));
    if (!widget)
        qWarning("no widget named %s", name);
    return widget;
}

/// Presses OK (or another standard button) of a dialog's button box.
inline void press(QDialog *dialog, QDialogButtonBox::StandardButton which = QDialogButtonBox::Ok)
{
    const auto boxes = dialog->findChildren<QDialogButtonBox *>();
    for (QDialogButtonBox *box : boxes) {
        if (QPushButton *button = box->button(which))
            return QTest::mouseClick(button, Qt::LeftButton);
    }
    qWarning("no such button");
}

/// Clicks a check box or radio button on its indicator, where a click counts whatever the button's width.
inline void clickButton(QAbstractButton *button)
{
    QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(button->height() / 2, button->height() / 2));
}
