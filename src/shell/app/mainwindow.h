#pragma once

#include "shell/commands/commandhost.h"
#include "storage/settings.h"

#include <QMainWindow>
#include <QPointer>
#include <functional>
#include <memory>

class CommandGroup;
class ExchangeCommands;
class ItemCommands;
class TemplateCommands;
class DocumentView;
class Prompts;
class QAction;
class QMenu;
class QSettings;
class QStackedWidget;
class QTreeWidget;
class QToolBar;
class QLabel;

/// Where the shell keeps things; tests give their own folders and files.
struct ShellEnvironment {
    /// The folder whose ".qbx" files the document list shows; empty for the
    /// user's documents folder.
    QString documentsFolder;
    /// A settings file of the test's own; empty for the user's store.
    QString settingsFile;
    /// Prompts to use; null for the real dialogs.
    Prompts *prompts = nullptr;
};

/// The frame: the document list while no document is open, and the view of
/// the one open document. It runs the document's lifecycle (create, open
/// with the password prompt, save, close, hand-over from a second start) and
/// keeps DefFile so that the next start reopens what was open at exit. Its
/// menus, tool bar and shortcuts are made of the commands' actions.
class MainWindow : public QMainWindow, public CommandHost {
    Q_OBJECT
public:
    explicit MainWindow(const ShellEnvironment &environment = ShellEnvironment(), QWidget *parent = nullptr);
    ~MainWindow() override;

    /// Loads the settings, lets a non-empty command-line path replace
    /// DefFile, and opens DefFile when it is set.
    void start(const QString &commandLinePath);

    /// Opens a document in the view: the load result's message on failure,
    /// the password prompt for a protected one (Cancel closes it again).
    bool openDocument(const QString &path) override;
    /// Asks for a path and a note type and opens an empty document there.
    bool createDocument() override;
    /// Asks for a text outline and a note type, and opens the document made
    /// from it beside the text file.
    bool importTextDocument();
    /// Saves and closes the open document, back to the list; DefFile empties.
    void closeDocument() override;
    /// A second start handed over a path: save and close, then open it.
    void handOver(const QString &path);
    /// Brings the window forward (a second start without a path).
    void bringForward();
    /// The deactivation save: commit the selection and the note, then write.
    void saveOnDeactivation();

    QWidget *frame() override { return this; }
    DocumentView *view() const override { return m_view; }
    QTreeWidget *documentList() const { return m_list; }
    QString documentsFolder() const override;
    Settings &settings() override { return m_settings; }
    Prompts *prompts() const override { return m_prompts; }
    void saveSettings() override;
    /// The command of that object name ("actionExportXml"), of the window or
    /// of the open document's items; null when there is none.
    QAction *command(const QString &name) const;
    void updateActions() override;
    void refreshDocumentList() override;

protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void clearMenus();
    QMenu *addMenu(const QString &title, const char *name, std::initializer_list<const char *> commands);
    void buildListMenus();
    void buildViewMenus();
    QMenu *buildMoveMenu(QWidget *parent);
    void showView(DocumentView *view);
    /// Saves the open document; the failure and its reason are shown.
    bool saveView();
    void onListActivated();
    void updateTitle();

    ShellEnvironment m_environment;
    std::unique_ptr<Prompts> m_ownPrompts;
    Prompts *m_prompts = nullptr;
    std::unique_ptr<QSettings> m_store;
    Settings m_settings;
    QStackedWidget *m_stack = nullptr;
    QTreeWidget *m_list = nullptr;
    QWidget *m_listPage = nullptr;
    DocumentView *m_view = nullptr;
    QToolBar *m_toolBar = nullptr;
    QLabel *m_status = nullptr;
    TemplateCommands *m_templates = nullptr;
    ExchangeCommands *m_exchange = nullptr;
    QList<CommandGroup *> m_groups;
    QPointer<ItemCommands> m_items;
};
