#include "shell/app/mainwindow.h"

#include "model/document.h"
#include "model/item.h"
#include "noteeditor/notepane.h"
#include "platform/messages.h"
#include "shell/commands/exchangecommands.h"
#include "shell/commands/filecommands.h"
#include "shell/commands/findcommands.h"
#include "shell/commands/itemcommands.h"
#include "shell/commands/remindercommands.h"
#include "shell/commands/templatecommands.h"
#include "shell/commands/viewcommands.h"
#include "shell/document/backgroundsave.h"
#include "shell/document/documentview.h"
#include "shell/document/treepane.h"
#include "shell/widgets/prompts.h"
#include "shell/widgets/waitcursor.h"
#include "storage/documentfile.h"
#include "storage/password.h"

#include <QAbstractSpinBox>
#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMenuBar>
#include <QMimeData>
#include <QPainter>
#include <QPlainTextEdit>
#include <QSettings>
#include <QStackedWidget>
#include <QStandardPaths>
#include <QStatusBar>
#include <QStyle>
#include <QTextEdit>
#include <QTimer>
#include <QToolBar>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

const QString AutosaveKey = QStringLiteral("Desktop/Autosave");
const QString GeometryKey = QStringLiteral("Desktop/Geometry");

/// A widget where typing goes: its own editing keys (Ctrl+A selects all)
/// win over the window's shortcuts.
bool takesText(const QWidget *widget)
{
    if (const auto *line = qobject_cast<const QLineEdit *>(widget))
        return !line->isReadOnly();
    if (qobject_cast<const QTextEdit *>(widget) || qobject_cast<const QPlainTextEdit *>(widget))
        return true;
    if (qobject_cast<const QAbstractSpinBox *>(widget))
        return true;
    if (const auto *combo = qobject_cast<const QComboBox *>(widget))
        return combo->isEditable();
    return false;
}

/// Where another program's version of path is kept after a conflict.

} // namespace

MainWindow::MainWindow(const ShellEnvironment &environment, QWidget *parent)
    : QMainWindow(parent), m_environment(environment)
{
    setObjectName(QStringLiteral("mainWindow"));
    if (environment.prompts) {
        m_prompts = environment.prompts;
    } else {
        m_ownPrompts = std::make_unique<DialogPrompts>();
        m_prompts = m_ownPrompts.get();
    }
    if (environment.settingsFile.isEmpty())
        m_store = Settings::openUserStore();
    else
        m_store = std::make_unique<QSettings>(environment.settingsFile, QSettings::IniFormat);

    m_stack = new QStackedWidget(this);
    m_listPage = new QWidget(m_stack);
    auto *listLayout = new QVBoxLayout(m_listPage);
    listLayout->setContentsMargins(0, 0, 0, 0);
    listLayout->setSpacing(0);
    auto *heading = new QLabel(m_listPage);
    heading->setObjectName(QStringLiteral("documentListHeading"));
    heading->setContentsMargins(10, 8, 10, 8);
    QFont headingFont = heading->font();
    headingFont.setPointSizeF(headingFont.pointSizeF() * 1.15);
    headingFont.setBold(true);
    heading->setFont(headingFont);
    m_list = new QTreeWidget(m_listPage);
    m_list->setObjectName(QStringLiteral("documentList"));
    m_list->setHeaderLabels({QStringLiteral("Name"), QStringLiteral("Modified"), QStringLiteral("Size")});
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAlternatingRowColors(true);
    m_list->setIconSize(QSize(20, 20));
    m_list->header()->setStretchLastSection(false);
    m_list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_list->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    m_list->header()->setSectionResizeMode(2, QHeaderView::ResizeToContents);
    connect(m_list, &QTreeWidget::itemActivated, this, &MainWindow::onListActivated);
    listLayout->addWidget(heading);
    listLayout->addWidget(m_list, 1);
    m_stack->addWidget(m_listPage);
    setCentralWidget(m_stack);

    m_toolBar = new QToolBar(QStringLiteral("Toolbar"), this);
    m_toolBar->setObjectName(QStringLiteral("mainToolBar"));
    m_toolBar->setMovable(false);
    m_toolBar->setIconSize(QSize(20, 20));
    m_toolBar->setToolButtonStyle(Qt::ToolButtonIconOnly);
    addToolBar(m_toolBar);
    m_status = new QLabel(this);
    statusBar()->addWidget(m_status, 1);

    m_templates = new TemplateCommands(this, this);
    m_exchange = new ExchangeCommands(this, this);
    m_groups = {new FileCommands(this, this), m_templates, m_exchange, new FindCommands(this, m_templates, this),
                new ViewCommands(this, this)};
    // Every command is the window's, so that its shortcut works anywhere in
    // it.
    for (CommandGroup *group : std::as_const(m_groups))
        addActions(group->actions());
    m_autosave = new QTimer(this);
    m_autosave->setSingleShot(true);
    m_autosave->setInterval(3000);
    connect(m_autosave, &QTimer::timeout, this, &MainWindow::autosave);
    m_backgroundSave = new BackgroundSave(
        [this](bool ok, const QString &error, quint64 changes) { backgroundSaved(ok, error, changes); }, this);
    m_watcher = new QFileSystemWatcher(this);
    m_watchDelay = new QTimer(this);
    m_watchDelay->setSingleShot(true);
    // A safe save or a sync tool replaces the file in steps: look once it
    // has settled.
    m_watchDelay->setInterval(300);
    connect(m_watcher, &QFileSystemWatcher::fileChanged, m_watchDelay, qOverload<>(&QTimer::start));
    connect(m_watchDelay, &QTimer::timeout, this, &MainWindow::onFileChanged);

    // F10 opens the menu bar, as on other desktops.
    auto *menuKey = new QAction(this);
    menuKey->setObjectName(QStringLiteral("actionMenuBar"));
    menuKey->setShortcut(QKeySequence(Qt::Key_F10));
    connect(menuKey, &QAction::triggered, this, [this] {
        const auto actions = menuBar()->actions();
        for (QAction *action : actions) {
            if (action->menu() && action->isVisible()) {
                menuBar()->setFocus(Qt::ShortcutFocusReason);
                menuBar()->setActiveAction(action);
                return;
            }
        }
    });
    addAction(menuKey);

    buildListMenus();
    updateActions();
    qApp->installEventFilter(this);
    setAcceptDrops(true);
    resize(1180, 720);
    updateTitle();
}

MainWindow::~MainWindow()
{
    qApp->removeEventFilter(this);
}

QString MainWindow::documentsFolder() const
{
    if (!m_environment.documentsFolder.isEmpty())
        return m_environment.documentsFolder;
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
}

void MainWindow::saveSettings()
{
    // The window keeps its place and size for the next start.
    m_store->setValue(GeometryKey, saveGeometry());
    if (m_view)
        m_settings.setFlag(Settings::QuickEntryBar, m_view->isQuickEntryVisible());
    m_settings.save(*m_store);
    m_store->sync();
}

void MainWindow::start(const QString &commandLinePath)
{
    WaitCursor wait;
    m_settings.load(*m_store);
    restoreGeometry(m_store->value(GeometryKey).toByteArray());
    refreshDocumentList();
    updateTitle();
    if (!commandLinePath.isEmpty())
        m_settings.defFile = QFileInfo(commandLinePath).absoluteFilePath();
    if (!m_settings.defFile.isEmpty())
        openDocument(m_settings.defFile);
    bringForward();
}

bool MainWindow::isAutosaveOn() const
{
    return m_store->value(AutosaveKey, true).toBool();
}

void MainWindow::setAutosaveOn(bool on)
{
    m_store->setValue(AutosaveKey, on);
    m_store->sync();
    if (!on)
        m_autosave->stop();
}

void MainWindow::setAutosaveDelay(int milliseconds)
{
    m_autosave->setInterval(milliseconds);
}

// ---- the document list

void MainWindow::refreshDocumentList()
{
    const QString folder = documentsFolder();
    // A new account has no documents folder yet: make it, so that what is
    // created there shows in the list.
    QDir().mkpath(folder);
    if (auto *heading = m_listPage->findChild<QLabel *>(QStringLiteral("documentListHeading")))
        heading->setText(QStringLiteral("Documents in %1").arg(QDir::toNativeSeparators(folder)));
    m_list->clear();
    const QFileInfoList files = QDir(folder).entryInfoList({QStringLiteral("*.qbx")}, QDir::Files | QDir::Readable,
                                                           QDir::Name | QDir::IgnoreCase);
    const QIcon icon = windowIcon();
    const QLocale locale;
    for (const QFileInfo &info : files) {
        auto *entry = new QTreeWidgetItem(m_list);
        entry->setText(0, info.completeBaseName());
        entry->setIcon(0, icon);
        entry->setText(1, locale.toString(info.lastModified(), QLocale::ShortFormat));
        entry->setText(2, locale.formattedDataSize(info.size()));
        entry->setTextAlignment(2, Qt::AlignRight | Qt::AlignVCenter);
        entry->setData(0, Qt::UserRole, info.absoluteFilePath());
        entry->setToolTip(0, QDir::toNativeSeparators(info.absoluteFilePath()));
    }
    if (m_list->topLevelItemCount() > 0 && !m_list->currentItem())
        m_list->setCurrentItem(m_list->topLevelItem(0));
    if (!m_view)
        updateTitle();
}

void MainWindow::onListActivated()
{
    if (QTreeWidgetItem *entry = m_list->currentItem())
        openDocument(entry->data(0, Qt::UserRole).toString());
}

// ---- the lifecycle

void MainWindow::showView(DocumentView *view)
{
    m_view = view;
    m_conflict = false;
    m_stack->addWidget(view);
    m_stack->setCurrentWidget(view);
    view->setQuickEntryVisible(m_settings.testFlag(Settings::QuickEntryBar));
    connect(view, &DocumentView::stateChanged, this, &MainWindow::updateActions);
    connect(view, &DocumentView::settingsChanged, this, &MainWindow::saveSettings);
    connect(view, &DocumentView::documentChanged, this, [this] {
        if (isAutosaveOn() && !m_readOnly)
            m_autosave->start();
        updateTitle();
    });
    // The item commands live and go with the view.
    m_items = new ItemCommands(view, this, m_templates, view);
    addActions(m_items->actions());
    addActions((new ReminderCommands(view, this))->actions());
    const struct {
        const char *name;
        QKeySequence key;
    } editKeys[] = {{"actionMarkMove", QKeySequence::Cut},
                    {"actionMarkCopy", QKeySequence::Copy},
                    {"actionPaste", QKeySequence::Paste}};
    for (const auto &entry : editKeys) {
        if (QAction *action = m_items->action(QString::fromLatin1(entry.name)); action && action->shortcut().isEmpty())
            action->setShortcut(entry.key);
    }
    view->treePane()->setAccessibleName(QStringLiteral("Items"));
    view->notePane()->setAccessibleName(QStringLiteral("Note"));
    addTreeKeys();
    m_templates->viewOpened();
    buildViewMenus();
    updateActions();
    updateTitle();
    watch(view->document()->path);
    // Setting the view up is no edit.
    view->setUnmodified();
    updateTitle();
    view->treePane()->setFocus();
}

void MainWindow::addTreeKeys()
{
    // Outliner keys while the tree has the focus; a rename's editor keeps
    // its own Enter and Tab. Taken before the tree's own keys (Tab would
    // move the focus, Enter fold the row).
    // The application's event filter (see eventFilter) takes them.
}

bool MainWindow::treeKey(QKeyEvent *key)
{
    auto trigger = [this](const char *name) {
        updateActions();
        if (QAction *action = command(QString::fromLatin1(name)); action && action->isEnabled())
            action->trigger();
    };
    auto insert = [this](InsertPosition position) {
        if (m_readOnly)
            return;
        m_view->insertNewItem(new Item(QString()), position);
        m_view->treePane()->startRename();
    };
    const Qt::KeyboardModifiers mods = key->modifiers() & ~Qt::KeypadModifier;
    switch (key->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (mods != Qt::NoModifier)
            return false;
        insert(InsertPosition::Same);
        return true;
    case Qt::Key_Insert:
        if (mods != Qt::NoModifier)
            return false;
        insert(InsertPosition::Child);
        return true;
    case Qt::Key_Tab:
        if (mods != Qt::NoModifier)
            return false;
        trigger("actionDownALevel");
        return true;
    case Qt::Key_Backtab:
        trigger("actionUpALevel");
        return true;
    case Qt::Key_Up:
    case Qt::Key_Down:
        if (mods != Qt::ControlModifier)
            return false;
        trigger(key->key() == Qt::Key_Up ? "actionMoveUp" : "actionMoveDown");
        return true;
    default:
        return false;
    }
}

bool MainWindow::openDocument(const QString &path)
{
    // The other document is read first: one that fails to open leaves the
    // open one as it is.
    auto document = std::make_unique<Document>();
    DocumentFile::LoadResult result = DocumentFile::Damaged;
    {
        WaitCursor wait;
        result = DocumentFile::load(path, document.get());
    }
    if (result != DocumentFile::Loaded) {
        m_prompts->message(this, Prompts::Icon::Stop, DocumentFile::loadMessage(result, path));
        return false;
    }
    if (!document->passwordHash.isEmpty()) {
        const QByteArray hash = document->passwordHash;
        const bool accepted = m_prompts->askPassword(
            this, [&hash](const QString &password) { return Password::matches(hash, password); });
        if (!accepted)
            return false;
    }
    if (m_view) {
        closeDocument();
        if (m_view) // it could not be saved: it stays open
            return false;
    }
    m_readOnly = !QFileInfo(path).isWritable();
    addRecent(path);
    showView(new DocumentView(std::move(document), &m_settings, m_prompts, m_stack));
    return true;
}

bool MainWindow::createDocument()
{
    QDir().mkpath(documentsFolder());
    const QString suggested = QDir(documentsFolder()).filePath(QStringLiteral("Untitled.qbx"));
    QString path =
        m_prompts->saveFileName(this, QStringLiteral("New"), suggested, QString::fromLatin1(Messages::FileFilter));
    if (path.isEmpty())
        return false;
    if (!path.endsWith(QLatin1String(".qbx"), Qt::CaseInsensitive))
        path += QLatin1String(".qbx");
    const int noteType = m_prompts->askNoteType(this);
    if (noteType < 0)
        return false;
    if (m_view) {
        closeDocument();
        if (m_view)
            return false;
    }
    auto document = std::make_unique<Document>();
    document->noteType = quint16(noteType);
    document->path = QFileInfo(path).absoluteFilePath();
    // Written at once, so the new document is in the list from now on.
    bool saved = false;
    QString error;
    {
        WaitCursor wait;
        saved = DocumentFile::save(*document, QString(), &error);
    }
    if (!saved) {
        m_prompts->message(this, Prompts::Icon::Stop,
                           Prompts::withReason(Messages::SaveFailed,
                                               QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(path), error)));
        return false;
    }
    m_readOnly = false;
    addRecent(path);
    showView(new DocumentView(std::move(document), &m_settings, m_prompts, m_stack));
    return true;
}

bool MainWindow::importTextDocument()
{
    return m_exchange->importText();
}

void MainWindow::closeDocument()
{
    if (!m_view)
        return;
    // Closing saves first, as switching away does: an edit is never lost.
    if (!saveView())
        return;
    const QString path = m_view->document()->path;
    m_settings.setFlag(Settings::QuickEntryBar, m_view->isQuickEntryVisible());
    m_autosave->stop();
    if (!m_watcher->files().isEmpty())
        m_watcher->removePaths(m_watcher->files());
    DocumentView *view = m_view;
    m_view = nullptr;
    m_stack->setCurrentWidget(m_listPage);
    m_stack->removeWidget(view);
    view->deleteLater();
    m_settings.defFile.clear();
    saveSettings();
    buildListMenus();
    refreshDocumentList();
    updateTitle();
    for (int i = 0; i < m_list->topLevelItemCount(); ++i) {
        QTreeWidgetItem *entry = m_list->topLevelItem(i);
        if (QFileInfo(entry->data(0, Qt::UserRole).toString()) == QFileInfo(path))
            m_list->setCurrentItem(entry);
    }
    updateActions();
    updateTitle();
    m_list->setFocus();
}

void MainWindow::handOver(const QString &path)
{
    // Closing saves the open document first; a document that cannot be
    // saved stays open and the other path is not opened.
    if (!path.isEmpty())
        openDocument(path);
    bringForward();
}

void MainWindow::bringForward()
{
    if (isMinimized())
        showNormal();
    raise();
    activateWindow();
}

void MainWindow::saveOnDeactivation()
{
    if (!m_view || !m_view->isModified() || m_readOnly)
        return;
    // A big document is written behind the window, so switching away from it
    // never waits for the disk.
    constexpr qint64 BigFile = 8 << 20;
    if (m_fileSize > BigFile)
        saveInBackground();
    else
        saveView();
}

void MainWindow::updateTitle()
{
    const QString caption = QString::fromLatin1(Messages::Caption);
    if (!m_view) {
        setWindowTitle(caption);
        const int count = m_list->topLevelItemCount();
        m_status->setText(count == 1 ? QStringLiteral("1 document") : QStringLiteral("%1 documents").arg(count));
        return;
    }
    const QFileInfo info(m_view->document()->path);
    const QString readOnly = m_readOnly ? QStringLiteral(" (read-only)") : QString();
    // A star marks changes not yet written.
    const QString modified = m_view->isModified() ? QStringLiteral("*") : QString();
    setWindowTitle(QStringLiteral("%1%2%3 - %4").arg(modified, info.completeBaseName(), readOnly, caption));
    m_status->setText(QStringLiteral("%1    %2 notes")
                          .arg(QDir::toNativeSeparators(info.absoluteFilePath()),
                               Document::noteTypeName(m_view->document()->noteType)));
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    const auto urls = event->mimeData()->urls();
    for (const QUrl &url : urls) {
        if (url.isLocalFile() && url.toLocalFile().endsWith(QLatin1String(".qbx"), Qt::CaseInsensitive)) {
            event->acceptProposedAction();
            return;
        }
    }
}

void MainWindow::dropEvent(QDropEvent *event)
{
    // A document dropped on the window opens; the others join the recent
    // documents.
    QStringList paths;
    const auto urls = event->mimeData()->urls();
    for (const QUrl &url : urls) {
        if (url.isLocalFile() && url.toLocalFile().endsWith(QLatin1String(".qbx"), Qt::CaseInsensitive))
            paths.append(QFileInfo(url.toLocalFile()).absoluteFilePath());
    }
    if (paths.isEmpty())
        return;
    event->acceptProposedAction();
    for (qsizetype i = paths.size() - 1; i > 0; --i)
        addRecent(paths.at(i));
    // Opened once the drag has ended, not inside it.
    const QString first = paths.first();
    QTimer::singleShot(0, this, [this, first] { openDocument(first); });
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (m_view) {
        if (!saveView()) {
            event->ignore();
            return;
        }
        m_settings.defFile = m_view->document()->path;
    }
    saveSettings();
    event->accept();
}

void MainWindow::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    if (event->type() != QEvent::ActivationChange || isActiveWindow() || !m_view)
        return;
    // Only a window outside this one (another application, or none) saves:
    // the dialogs and menus of the view do not.
    for (QWidget *w = QApplication::activeWindow(); w; w = w->parentWidget()) {
        if (w == this)
            return;
    }
    saveOnDeactivation();
}

bool MainWindow::eventFilter(QObject *watched, QEvent *event)
{
    // A key typed in the tree itself, not one its rename editor passed up.
    if (event->type() == QEvent::KeyRelease) {
        m_passedKey = nullptr;
    } else if (event->type() == QEvent::KeyPress && m_view) {
        TreePane *tree = m_view->treePane();
        if (watched != tree) {
            if (auto *widget = qobject_cast<QWidget *>(watched); widget && tree->isAncestorOf(widget))
                m_passedKey = event;
        } else if (event != m_passedKey) {
            if (treeKey(static_cast<QKeyEvent *>(event)))
                return true;
        }
    }
    // Ctrl+A is About in the tree and the window; in a text field it selects
    // all, as the field itself says.
    if (event->type() == QEvent::ShortcutOverride) {
        auto *key = static_cast<QKeyEvent *>(event);
        auto *widget = qobject_cast<QWidget *>(watched);
        if (key->key() == Qt::Key_A && key->modifiers() == Qt::ControlModifier && widget && widget->window() == this &&
            !takesText(widget))
            return true;
    }
    return QMainWindow::eventFilter(watched, event);
}
