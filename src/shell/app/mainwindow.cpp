#include "shell/app/mainwindow.h"

#include "model/document.h"
#include "noteeditor/notepane.h"
#include "platform/messages.h"
#include "shell/commands/exchangecommands.h"
#include "shell/commands/filecommands.h"
#include "shell/commands/findcommands.h"
#include "shell/commands/itemcommands.h"
#include "shell/commands/remindercommands.h"
#include "shell/commands/templatecommands.h"
#include "shell/commands/viewcommands.h"
#include "shell/document/documentview.h"
#include "shell/document/treepane.h"
#include "shell/widgets/prompts.h"
#include "shell/widgets/waitcursor.h"
#include "storage/documentfile.h"
#include "storage/password.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QMenuBar>
#include <QPainter>
#include <QSettings>
#include <QStackedWidget>
#include <QStandardPaths>
#include <QStatusBar>
#include <QStyle>
#include <QToolBar>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

QIcon moveMenuIcon()
{
    QPixmap pm(32, 32);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0x4a, 0x6f, 0xa5));
    p.drawPolygon(QPolygonF() << QPointF(16, 2) << QPointF(25, 13) << QPointF(7, 13));
    p.drawPolygon(QPolygonF() << QPointF(16, 30) << QPointF(25, 19) << QPointF(7, 19));
    return QIcon(pm);
}

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
    buildListMenus();
    updateActions();
    qApp->installEventFilter(this);
    resize(900, 680);
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
    if (m_view)
        m_settings.setFlag(Settings::QuickEntryBar, m_view->isQuickEntryVisible());
    m_settings.save(*m_store);
    m_store->sync();
}

void MainWindow::start(const QString &commandLinePath)
{
    WaitCursor wait;
    m_settings.load(*m_store);
    refreshDocumentList();
    updateTitle();
    if (!commandLinePath.isEmpty())
        m_settings.defFile = QFileInfo(commandLinePath).absoluteFilePath();
    if (!m_settings.defFile.isEmpty())
        openDocument(m_settings.defFile);
    bringForward();
}

// ---- actions and menus

QAction *MainWindow::command(const QString &name) const
{
    if (m_items) {
        if (QAction *action = m_items->action(name))
            return action;
    }
    for (const CommandGroup *group : m_groups) {
        if (QAction *action = group->action(name))
            return action;
    }
    return nullptr;
}

QMenu *MainWindow::addMenu(const QString &title, const char *name, std::initializer_list<const char *> commands)
{
    auto *menu = new QMenu(title, menuBar());
    menu->setObjectName(QString::fromLatin1(name));
    for (const char *commandName : commands) {
        if (*commandName)
            menu->addAction(command(QString::fromLatin1(commandName)));
        else
            menu->addSeparator();
    }
    connect(menu, &QMenu::aboutToShow, this, &MainWindow::updateActions);
    return menu;
}

void MainWindow::clearMenus()
{
    menuBar()->clear();
    // The old menus may be running the command that changed the state: they
    // go later, nameless so that nothing finds them meanwhile.
    const auto menus = menuBar()->findChildren<QMenu *>(Qt::FindDirectChildrenOnly);
    for (QMenu *menu : menus) {
        menu->setObjectName(QString());
        menu->deleteLater();
    }
}

void MainWindow::buildListMenus()
{
    clearMenus();
    menuBar()->addAction(command(QStringLiteral("actionNewDocument")));
    menuBar()->addMenu(
        addMenu(QStringLiteral("Tools"), "menuTools", {"actionRefresh", "", "actionImportText", "", "actionAbout"}));
    m_toolBar->hide();
}

QMenu *MainWindow::buildMoveMenu(QWidget *parent)
{
    auto *move = new QMenu(parent);
    move->setObjectName(QStringLiteral("menuMove"));
    move->setIcon(moveMenuIcon());
    move->menuAction()->setObjectName(QStringLiteral("actionMoveMenu"));
    move->menuAction()->setToolTip(QStringLiteral("Move"));
    for (const char *name : {"actionMoveUp", "actionMoveDown", "", "actionUpALevel", "actionDownALevel"}) {
        if (*name)
            move->addAction(command(QString::fromLatin1(name)));
        else
            move->addSeparator();
    }
    connect(move, &QMenu::aboutToShow, this, &MainWindow::updateActions);
    return move;
}

void MainWindow::buildViewMenus()
{
    clearMenus();
    menuBar()->addAction(command(QStringLiteral("actionNew")));

    QMenu *view = addMenu(
        QStringLiteral("View"), "menuView",
        {"actionDefaultView", "actionByCategory", "actionByDueDate", "actionByPriority", "", "actionHideCompleted"});
    QMenu *hide = addMenu(QStringLiteral("Hide By Status"), "menuHideByStatus",
                          {"actionHideNoStatus", "actionHideCheckBox", "actionHideProgressBar"});
    view->addMenu(hide);
    view->addMenu(addMenu(QStringLiteral("Item Display Options"), "menuItemDisplay",
                          {"actionShowDueDate", "actionShowStatistics"}));
    view->addSeparator();
    view->addMenu(addMenu(QStringLiteral("Windows && Toolbars"), "menuWindows",
                          {"actionNoteWindow", "actionQuickEntryBar", "actionRecordingToolbar"}));
    view->addSeparator();
    view->addAction(command(QStringLiteral("actionExpandAll")));
    view->addAction(command(QStringLiteral("actionCollapseAll")));
    menuBar()->addMenu(view);

    QMenu *tools = addMenu(QStringLiteral("Tools"), "menuTools",
                           {"actionFindItem", "actionFindResult", "", "actionSetPassword", "actionSave"});
    tools->addMenu(addMenu(QStringLiteral("File"), "menuFile",
                           {"actionFileProperties", "actionConvertNotes", "", "actionSaveAs"}));
    tools->addSeparator();
    tools->addMenu(addMenu(QStringLiteral("Import/Export"), "menuImportExport",
                           {"actionImportFile", "actionImportOutline", "", "actionExportView", "actionExportXml",
                            "actionExportLinks", "actionExportNotes", "", "actionExportItems", "", "actionExportOpml",
                            "actionExportMarkdown"}));
    tools->addSeparator();
    tools->addAction(command(QStringLiteral("actionOptions")));
    tools->addAction(command(QStringLiteral("actionItemTemplates")));
    tools->addAction(command(QStringLiteral("actionAbout")));
    menuBar()->addMenu(tools);
    menuBar()->addMenu(buildMoveMenu(menuBar()));

    m_toolBar->clear();
    m_toolBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_toolBar->show();
    for (const char *name : {"actionCloseDocument", "actionSave", "", "actionMoveUp", "actionMoveDown",
                             "actionUpALevel", "actionDownALevel", "", "actionExpandAll", "actionCollapseAll",
                             "actionModifyItem", "actionModifyNote", "actionLinks", "actionBranchView"}) {
        if (*name)
            m_toolBar->addAction(command(QString::fromLatin1(name)));
        else
            m_toolBar->addSeparator();
    }
}

void MainWindow::updateActions()
{
    for (CommandGroup *group : std::as_const(m_groups))
        group->update();
    if (m_items)
        m_items->update();
    updateTitle();
}

// ---- the document list

void MainWindow::refreshDocumentList()
{
    const QString folder = documentsFolder();
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
    m_stack->addWidget(view);
    m_stack->setCurrentWidget(view);
    view->setQuickEntryVisible(m_settings.testFlag(Settings::QuickEntryBar));
    connect(view, &DocumentView::stateChanged, this, &MainWindow::updateActions);
    connect(view, &DocumentView::settingsChanged, this, &MainWindow::saveSettings);
    // The item commands live and go with the view.
    m_items = new ItemCommands(view, this, m_templates, view);
    addActions(m_items->actions());
    addActions((new ReminderCommands(view, this))->actions());
    m_templates->viewOpened();
    buildViewMenus();
    updateActions();
    updateTitle();
    view->treePane()->setFocus();
}

bool MainWindow::openDocument(const QString &path)
{
    if (m_view) {
        closeDocument();
        if (m_view) // it could not be saved: it stays open
            return false;
    }
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
    showView(new DocumentView(std::move(document), &m_settings, m_prompts, m_stack));
    return true;
}

bool MainWindow::createDocument()
{
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
        m_prompts->message(this, Prompts::Icon::Stop, Prompts::withReason(Messages::SaveFailed, error));
        return false;
    }
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
    if (!m_view)
        return;
    saveView();
}

bool MainWindow::saveView()
{
    QString error;
    if (m_view->save(QString(), &error))
        return true;
    m_prompts->message(this, Prompts::Icon::Stop, Prompts::withReason(Messages::SaveFailed, error));
    return false;
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
    setWindowTitle(QStringLiteral("%1 - %2").arg(info.completeBaseName(), caption));
    m_status->setText(QStringLiteral("%1    %2 notes")
                          .arg(QDir::toNativeSeparators(info.absoluteFilePath()),
                               Document::noteTypeName(m_view->document()->noteType)));
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
    // Ctrl+A opens the about box even where a text box would select all.
    if (event->type() == QEvent::ShortcutOverride) {
        auto *key = static_cast<QKeyEvent *>(event);
        auto *widget = qobject_cast<QWidget *>(watched);
        if (key->key() == Qt::Key_A && key->modifiers() == Qt::ControlModifier && widget && widget->window() == this)
            return true;
    }
    return QMainWindow::eventFilter(watched, event);
}
