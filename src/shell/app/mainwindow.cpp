#include "shell/app/mainwindow.h"

#include "exchange/textimport.h"
#include "model/document.h"
#include "noteeditor/notepane.h"
#include "platform/messages.h"
#include "shell/commands/commandids.h"
#include "shell/commands/dialogcommands.h"
#include "shell/document/documentview.h"
#include "shell/widgets/prompts.h"
#include "shell/document/treepane.h"
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

// The shell's own value in the settings store: whether the quick entry bar
// is shown.

QIcon themeIcon(const char *name, QStyle::StandardPixmap fallback, const QStyle *style)
{
    return QIcon::fromTheme(QString::fromLatin1(name), style->standardIcon(fallback));
}

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

const char *noteTypeName(quint16 type)
{
    switch (type) {
    case Document::RichInk:
        return "Rich Ink";
    case Document::RichText:
        return "Rich Text";
    default:
        return "Plain Text";
    }
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
        m_store = std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("Quillbox"),
                                              QStringLiteral("Quillbox"));
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

    buildActions();
    m_dialogs = new DialogCommands(this);
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

QAction *MainWindow::makeAction(int id, const QString &text)
{
    auto *action = new QAction(text, this);
    action->setObjectName(QStringLiteral("action%1").arg(id));
    action->setData(id);
    connect(action, &QAction::triggered, this, [this, id] { runCommand(id); });
    addAction(action);
    m_actions.insert(id, action);
    return action;
}

void MainWindow::buildActions()
{
    using namespace CommandId;
    const QStyle *s = style();
    QAction *closeAction = makeAction(CloseDocument, QStringLiteral("Close Document"));
    closeAction->setIcon(themeIcon("go-home", QStyle::SP_DirHomeIcon, s));
    closeAction->setIconText(QStringLiteral("Documents"));
    closeAction->setToolTip(QStringLiteral("Save and close the document, back to the list of documents"));
    makeAction(Exit, QStringLiteral("Exit"))->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    makeAction(About, QStringLiteral("About..."))->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_A));
    QAction *newAction = makeAction(New, QStringLiteral("New"));
    newAction->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_N), QKeySequence(Qt::CTRL | Qt::Key_I)});
    newAction->setToolTip(QStringLiteral("New (Ctrl+N)"));
    makeAction(Refresh, QStringLiteral("Refresh"));
    makeAction(ImportText, QStringLiteral("Import..."));

    makeAction(MoveUp, QStringLiteral("Move Up"))->setIcon(themeIcon("go-up", QStyle::SP_ArrowUp, s));
    makeAction(MoveDown, QStringLiteral("Move Down"))->setIcon(themeIcon("go-down", QStyle::SP_ArrowDown, s));
    makeAction(UpALevel, QStringLiteral("Up a Level"))->setIcon(themeIcon("go-previous", QStyle::SP_ArrowLeft, s));
    makeAction(DownALevel, QStringLiteral("Down a Level"))->setIcon(themeIcon("go-next", QStyle::SP_ArrowRight, s));
    makeAction(ModifyItem, QStringLiteral("Modify Item"));
    makeAction(ModifyNote, QStringLiteral("Modify Note"));
    makeAction(CommandId::Links, QStringLiteral("Links"));
    makeAction(BranchView, QStringLiteral("Branch View"));

    auto *viewGroup = new QActionGroup(this);
    const char *modes[] = {"Default View", "By Category", "By Task/Due Date", "By Priority"};
    for (int m = 0; m < 4; ++m) {
        QAction *action = makeAction(DefaultView + m, QString::fromLatin1(modes[m]));
        action->setCheckable(true);
        viewGroup->addAction(action);
    }
    auto checkable = [this](int id, const char *text) {
        makeAction(id, QString::fromLatin1(text))->setCheckable(true);
    };
    checkable(HideCompleted, "Hide Completed Items");
    checkable(HideNoStatus, "No Status");
    checkable(HideCheckBox, "Check Box");
    checkable(HideProgressBar, "Progress Bar");
    checkable(ShowDueDate, "Show Due Date");
    checkable(ShowStatistics, "Show Statistics");
    checkable(NoteWindow, "Note Window");
    checkable(CommandId::QuickEntryBar, "Quick Entry Bar");
    checkable(RecordingToolbar, "Recording Toolbar");
    makeAction(ExpandAll, QStringLiteral("Expand All"))
        ->setIcon(themeIcon("list-add", QStyle::SP_ToolBarVerticalExtensionButton, s));
    makeAction(CollapseAll, QStringLiteral("Collapse All"))
        ->setIcon(themeIcon("list-remove", QStyle::SP_ToolBarHorizontalExtensionButton, s));

    makeAction(FindItem, QStringLiteral("Find Item..."))->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_F));
    makeAction(FindResult, QStringLiteral("Find Result..."));
    makeAction(SetPassword, QStringLiteral("Set Password..."));
    QAction *save = makeAction(Save, QStringLiteral("Save"));
    save->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_S));
    save->setIcon(themeIcon("document-save", QStyle::SP_DialogSaveButton, s));
    makeAction(FileProperties, QStringLiteral("File Properties..."));
    makeAction(ConvertNotes, QStringLiteral("Convert Notes..."));
    makeAction(SaveAs, QStringLiteral("Save As..."));
    makeAction(ImportFile, QStringLiteral("Import File..."));
    makeAction(ExportView, QStringLiteral("View..."));
    makeAction(ExportXml, QStringLiteral("XML..."));
    makeAction(ExportLinks, QStringLiteral("Links..."));
    makeAction(ExportNotes, QStringLiteral("All Notes..."));
    makeAction(ExportItems, QStringLiteral("Items..."));
    makeAction(Options, QStringLiteral("Options..."));
    makeAction(ItemTemplates, QStringLiteral("Item Templates..."));
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
    using namespace CommandId;
    clearMenus();
    menuBar()->addAction(m_actions[New]);
    auto *tools = new QMenu(QStringLiteral("Tools"), menuBar());
    menuBar()->addMenu(tools);
    tools->setObjectName(QStringLiteral("menuTools"));
    tools->addAction(m_actions[Refresh]);
    tools->addSeparator();
    tools->addAction(m_actions[ImportText]);
    tools->addSeparator();
    tools->addAction(m_actions[About]);
    connect(tools, &QMenu::aboutToShow, this, &MainWindow::updateActions);

    m_toolBar->hide();
}

QMenu *MainWindow::buildMoveMenu(QWidget *parent)
{
    using namespace CommandId;
    auto *move = new QMenu(parent);
    move->setObjectName(QStringLiteral("menuMove"));
    move->setIcon(moveMenuIcon());
    move->menuAction()->setObjectName(QStringLiteral("action%1").arg(MoveMenu));
    move->menuAction()->setToolTip(QStringLiteral("Move"));
    move->addAction(m_actions[MoveUp]);
    move->addAction(m_actions[MoveDown]);
    move->addSeparator();
    move->addAction(m_actions[UpALevel]);
    move->addAction(m_actions[DownALevel]);
    connect(move, &QMenu::aboutToShow, this, &MainWindow::updateActions);
    return move;
}

void MainWindow::buildViewMenus()
{
    using namespace CommandId;
    clearMenus();
    menuBar()->addAction(m_actions[New]);

    auto *view = new QMenu(QStringLiteral("View"), menuBar());
    menuBar()->addMenu(view);
    view->setObjectName(QStringLiteral("menuView"));
    for (int m = 0; m < 4; ++m)
        view->addAction(m_actions[DefaultView + m]);
    view->addSeparator();
    view->addAction(m_actions[HideCompleted]);
    QMenu *hide = view->addMenu(QStringLiteral("Hide By Status"));
    hide->addAction(m_actions[HideNoStatus]);
    hide->addAction(m_actions[HideCheckBox]);
    hide->addAction(m_actions[HideProgressBar]);
    QMenu *display = view->addMenu(QStringLiteral("Item Display Options"));
    display->addAction(m_actions[ShowDueDate]);
    display->addAction(m_actions[ShowStatistics]);
    view->addSeparator();
    QMenu *windows = view->addMenu(QStringLiteral("Windows && Toolbars"));
    windows->addAction(m_actions[NoteWindow]);
    windows->addAction(m_actions[CommandId::QuickEntryBar]);
    windows->addAction(m_actions[RecordingToolbar]);
    view->addSeparator();
    view->addAction(m_actions[ExpandAll]);
    view->addAction(m_actions[CollapseAll]);

    auto *tools = new QMenu(QStringLiteral("Tools"), menuBar());
    menuBar()->addMenu(tools);
    tools->setObjectName(QStringLiteral("menuTools"));
    tools->addAction(m_actions[FindItem]);
    tools->addAction(m_actions[FindResult]);
    tools->addSeparator();
    tools->addAction(m_actions[SetPassword]);
    tools->addAction(m_actions[Save]);
    QMenu *file = tools->addMenu(QStringLiteral("File"));
    file->addAction(m_actions[FileProperties]);
    file->addAction(m_actions[ConvertNotes]);
    file->addSeparator();
    file->addAction(m_actions[SaveAs]);
    tools->addSeparator();
    QMenu *exchange = tools->addMenu(QStringLiteral("Import/Export"));
    exchange->addAction(m_actions[ImportFile]);
    exchange->addSeparator();
    exchange->addAction(m_actions[ExportView]);
    exchange->addAction(m_actions[ExportXml]);
    exchange->addAction(m_actions[ExportLinks]);
    exchange->addAction(m_actions[ExportNotes]);
    exchange->addSeparator();
    exchange->addAction(m_actions[ExportItems]);
    tools->addSeparator();
    tools->addAction(m_actions[Options]);
    tools->addAction(m_actions[ItemTemplates]);
    tools->addAction(m_actions[About]);

    QMenu *move = buildMoveMenu(menuBar());
    menuBar()->addMenu(move);
    for (QMenu *menu : {view, hide, display, windows, tools, file, exchange})
        connect(menu, &QMenu::aboutToShow, this, &MainWindow::updateActions);

    m_toolBar->clear();
    m_toolBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_toolBar->show();
    m_toolBar->addAction(m_actions[CloseDocument]);
    m_toolBar->addAction(m_actions[Save]);
    m_toolBar->addSeparator();
    m_toolBar->addAction(m_actions[MoveUp]);
    m_toolBar->addAction(m_actions[MoveDown]);
    m_toolBar->addAction(m_actions[UpALevel]);
    m_toolBar->addAction(m_actions[DownALevel]);
    m_toolBar->addSeparator();
    m_toolBar->addAction(m_actions[ExpandAll]);
    m_toolBar->addAction(m_actions[CollapseAll]);
    // The property, note, links and branch buttons join when their windows
    // exist.
    for (int id : {ModifyItem, ModifyNote, CommandId::Links, BranchView}) {
        if (m_view && m_view->hasCommand(id))
            m_toolBar->addAction(m_actions[id]);
    }
}

void MainWindow::updateActions()
{
    using namespace CommandId;
    for (auto it = m_actions.cbegin(); it != m_actions.cend(); ++it) {
        const int id = it.key();
        QAction *action = it.value();
        bool enabled = false;
        bool checked = false;
        switch (id) {
        case About:
        case Exit:
            enabled = true;
            break;
        case New:
            enabled = !m_view || m_view->isCommandEnabled(id);
            break;
        case Refresh:
            enabled = !m_view;
            break;
        case CloseDocument:
            enabled = m_view != nullptr;
            break;
        case ImportText:
            enabled = !m_view;
            break;
        default:
            enabled = m_view && m_view->isCommandEnabled(id);
            checked = m_view && m_view->isCommandChecked(id);
            break;
        }
        action->setEnabled(enabled);
        if (action->isCheckable())
            action->setChecked(checked);
    }
}

void MainWindow::runCommand(int id)
{
    using namespace CommandId;
    switch (id) {
    case About:
        m_prompts->about(this);
        return;
    case Exit:
        close();
        return;
    case CloseDocument:
        closeDocument();
        return;
    case Refresh:
        refreshDocumentList();
        return;
    case ImportText:
        if (!m_view)
            importTextDocument();
        return;
    case New:
        if (!m_view) {
            createDocument();
            return;
        }
        break;
    default:
        break;
    }
    if (m_view) {
        m_view->runCommand(id);
        updateActions();
    }
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
    Q_EMIT viewOpened(view);
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
    {
        WaitCursor wait;
        saved = DocumentFile::save(*document);
    }
    if (!saved) {
        m_prompts->message(this, Prompts::Icon::Stop, QString::fromLatin1(Messages::SaveFailed));
        return false;
    }
    showView(new DocumentView(std::move(document), &m_settings, m_prompts, m_stack));
    return true;
}

bool MainWindow::importTextDocument()
{
    return m_dialogs->importText();
}

void MainWindow::closeDocument()
{
    if (!m_view)
        return;
    // Closing saves first, as switching away does: an edit is never lost.
    if (!m_view->save())
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
    m_view->save();
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
                               QString::fromLatin1(noteTypeName(m_view->document()->noteType))));
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (m_view) {
        if (!m_view->save()) {
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
