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

// The menus, the tool bar and the recent documents, made of the commands' actions.

namespace {

constexpr int MaxRecent = 10;
const QString RecentKey = QStringLiteral("Desktop/RecentDocuments");

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

void MainWindow::buildFileMenus(bool viewOpen)
{
    QMenu *file = viewOpen ? addMenu(QStringLiteral("&File"), "menuDesktopFile", {"actionNewFile", "actionOpen"})
                           : addMenu(QStringLiteral("&File"), "menuDesktopFile", {"actionNewDocument", "actionOpen"});
    auto *recent = new QMenu(QStringLiteral("Open &Recent"), file);
    recent->setObjectName(QStringLiteral("menuOpenRecent"));
    recent->menuAction()->setObjectName(QStringLiteral("actionOpenRecent"));
    connect(recent, &QMenu::aboutToShow, this, [this, recent] { fillRecentMenu(recent); });
    fillRecentMenu(recent);
    file->addMenu(recent);
    file->addSeparator();
    if (viewOpen) {
        for (const char *name : {"actionSave", "actionSaveAs", "actionFileProperties"})
            file->addAction(command(QString::fromLatin1(name)));
        file->addMenu(addMenu(QStringLiteral("&Import/Export"), "menuDesktopImportExport",
                              {"actionImportFile", "actionImportOutline", "", "actionExportView", "actionExportXml",
                               "actionExportLinks", "actionExportNotes", "", "actionExportItems", "",
                               "actionExportOpml", "actionExportMarkdown"}));
        file->addSeparator();
        file->addAction(command(QStringLiteral("actionCloseDocument")));
    } else {
        file->addAction(command(QStringLiteral("actionImportText")));
    }
    file->addAction(command(QStringLiteral("actionAutosave")));
    file->addSeparator();
    file->addAction(command(QStringLiteral("actionExit")));
    menuBar()->addMenu(file);
    if (viewOpen) {
        // Move and Copy mark the item for a later Paste: the outliner's cut
        // and copy.
        QMenu *edit = addMenu(QStringLiteral("&Edit"), "menuEdit",
                              {"actionUndo", "actionRedo", "", "actionMarkMove", "actionMarkCopy", "actionPaste",
                               "actionDeleteItem", "", "actionRename", "", "actionFindItem"});
        menuBar()->addMenu(edit);
    }
}

void MainWindow::buildListMenus()
{
    clearMenus();
    buildFileMenus(false);
    menuBar()->addAction(command(QStringLiteral("actionNewDocument")));
    menuBar()->addMenu(
        addMenu(QStringLiteral("&Tools"), "menuTools", {"actionRefresh", "", "actionImportText", "", "actionAbout"}));
    menuBar()->addMenu(addMenu(QStringLiteral("&Help"), "menuHelp", {"actionHelp", "", "actionAbout"}));
    m_toolBar->hide();
}

void MainWindow::fillRecentMenu(QMenu *menu)
{
    menu->clear();
    const QStringList recent = recentDocuments();
    int number = 0;
    for (const QString &path : recent) {
        ++number;
        const QString label = QStringLiteral("&%1 %2").arg(number % 10).arg(QFileInfo(path).fileName());
        QAction *entry = menu->addAction(label, this, [this, path] { openDocument(path); });
        entry->setToolTip(QDir::toNativeSeparators(path));
        entry->setData(path);
    }
    menu->menuAction()->setEnabled(!recent.isEmpty());
}

QStringList MainWindow::recentDocuments() const
{
    return m_store->value(RecentKey).toStringList();
}

void MainWindow::addRecent(const QString &path)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    QStringList recent = recentDocuments();
    recent.removeAll(absolute);
    recent.prepend(absolute);
    while (recent.size() > MaxRecent)
        recent.removeLast();
    m_store->setValue(RecentKey, recent);
    m_store->sync();
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
    buildFileMenus(true);
    menuBar()->addAction(command(QStringLiteral("actionNew")));

    QMenu *view = addMenu(
        QStringLiteral("&View"), "menuView",
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

    QMenu *tools = addMenu(QStringLiteral("&Tools"), "menuTools",
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
    menuBar()->addMenu(addMenu(QStringLiteral("&Help"), "menuHelp", {"actionHelp", "", "actionAbout"}));

    m_toolBar->clear();
    m_toolBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_toolBar->show();
    for (const char *name :
         {"actionCloseDocument", "actionSave", "", "actionUndo", "actionRedo", "", "actionMoveUp", "actionMoveDown",
          "actionUpALevel", "actionDownALevel", "", "actionExpandAll", "actionCollapseAll", "actionModifyItem",
          "actionModifyNote", "actionLinks", "actionBranchView"}) {
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
