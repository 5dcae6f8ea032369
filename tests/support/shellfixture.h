#pragma once

#include "model/document.h"
#include "shell/app/mainwindow.h"
#include "shell/commands/commandgroup.h"
#include "shell/document/documentview.h"
#include "shell/document/treepane.h"
#include "storage/documentfile.h"
#include "support/outline.h"
#include "support/scriptedprompts.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <QTreeWidget>
#include <memory>

/// Builds a small tree quickly: add(parent, "name") appends an Item.
inline Item *add(TreeNode *parent, const QString &name)
{
    auto *item = new Item(name);
    parent->appendChild(item);
    return item;
}

/// Triggers a command of a window of its own (a branch view); false when it is greyed.
inline bool runIn(QWidget *scope, const char *name)
{
    for (CommandGroup *group : scope->findChildren<CommandGroup *>())
        group->update();
    QAction *action = scope->findChild<QAction *>(QString::fromLatin1(name));
    return action && action->isEnabled() && (action->trigger(), true);
}

/// A main window on a folder and settings file of the test's own, with every question answered by ScriptedPrompts;
/// with the widgets the dialog tests work.
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
        return DocumentFile::save(*document) && window->openDocument(document->path) ? window->view() : nullptr;
    }

    /// Writes a document built from an outline (see support/outline.h) to the folder and opens it.
    DocumentView *open(const char *outline, const QString &name = QStringLiteral("test.qbx"))
    {
        auto document = std::make_unique<Document>();
        Outline::build(document->root(), outline);
        return open(std::move(document), name);
    }

    DocumentView *view() const { return window->view(); }
    Document *document() const { return window->view()->document(); }
    void select(TreeNode *node) const { window->view()->refresh(node); }
    TreeNode *current() const { return window->view()->treePane()->currentNode(); }

    /// The item at a path of child indexes below the root.
    Item *at(std::initializer_list<int> path) const
    {
        TreeNode *node = document()->root();
        for (int index : path)
            node = node->child(index);
        return node->asItem();
    }

    /// The first item of that name, in the order of the outline.
    Item *find(const QString &name) const { return Outline::find(document()->root(), name); }

    /// The names of a node's children (of the root when null).
    QStringList names(const TreeNode *node = nullptr) const
    {
        QStringList list;
        for (const Item *item : (node ? node : document()->root())->children())
            list.append(item->name());
        return list;
    }

    /// The window's command of that object name, with every command's state up to date.
    QAction *command(const char *name)
    {
        window->updateActions();
        return window->command(QString::fromLatin1(name));
    }
    bool enabled(const char *name) { return command(name) && command(name)->isEnabled(); }
    /// Triggers a command as a menu or shortcut would; false when it is greyed.
    bool run(const char *name) { return enabled(name) && (command(name)->trigger(), true); }

    QStringList shownTexts() const
    {
        QStringList texts;
        for (const auto &s : prompts.shown)
            texts.append(s.text);
        return texts;
    }
};

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
    for (QDialogButtonBox *box : dialog->findChildren<QDialogButtonBox *>()) {
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
