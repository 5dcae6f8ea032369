#pragma once

#include "shell/commands/commandhost.h"
#include "storage/settings.h"

#include <QDateTime>
#include <QMainWindow>
#include <QPointer>
#include <functional>
#include <memory>

class BackgroundSave;
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
class QKeyEvent;
class QFileSystemWatcher;
class QTimer;

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
    /// The deactivation save: commit the selection and the note, then write
    /// when the document changed since it was last written.
    void saveOnDeactivation();
    /// SIGTERM, SIGINT, SIGHUP or the session's end: the open document is
    /// written when it changed, DefFile kept, and the application quits.
    void quitOnSignal();

    bool saveDocument() override;
    bool saveDocumentAs() override;
    QStringList recentDocuments() const override;
    /// Puts path first among the recent documents (ten are kept).
    void addRecent(const QString &path);
    bool isAutosaveOn() const override;
    void setAutosaveOn(bool on) override;
    /// The open document was opened from a file it may not write.
    bool isReadOnly() const { return m_readOnly; }
    /// The autosave's wait after the last change, in milliseconds.
    void setAutosaveDelay(int milliseconds);

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
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void clearMenus();
    QMenu *addMenu(const QString &title, const char *name, std::initializer_list<const char *> commands);
    void buildListMenus();
    void buildViewMenus();
    QMenu *buildMoveMenu(QWidget *parent);
    void showView(DocumentView *view);
    /// Writes the open document when it changed. A failure names the file
    /// and its reason and offers Save As, then Discard, so that a close
    /// always ends: true when the document may go.
    bool saveView();
    /// Writes the open document under path (its own for an empty one), first
    /// keeping another program's version beside it after a conflict.
    bool writeView(const QString &path, QString *error);
    void autosave();
    /// Starts writing the open document on the worker thread; a write
    /// already running makes this one wait for the autosave's next turn.
    void saveInBackground();
    void backgroundSaved(bool ok, const QString &error, quint64 changes);
    void fillRecentMenu(QMenu *menu);
    void buildFileMenus(bool viewOpen);
    void addTreeKeys();
    /// An outliner key pressed in the tree; false when it is not one.
    bool treeKey(QKeyEvent *key);
    void watch(const QString &path);
    void rememberFingerprint();
    void onFileChanged();
    void reloadDocument();
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
    QTimer *m_autosave = nullptr;
    BackgroundSave *m_backgroundSave = nullptr;
    QFileSystemWatcher *m_watcher = nullptr;
    QTimer *m_watchDelay = nullptr;
    /// Size and time of the file as this window last wrote or read it.
    qint64 m_fileSize = -1;
    QDateTime m_fileTime;
    /// Another program changed the file and the user kept their version.
    bool m_conflict = false;
    bool m_readOnly = false;
    /// The key press last delivered elsewhere first (it may reach the tree
    /// as its parent).
    const QEvent *m_passedKey = nullptr;
};
