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

// Saving the open document, and following its file on disk.

namespace {

QString conflictCopyPath(const QString &path)
{
    const QFileInfo info(path);
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HHmmss"));
    return info.dir().filePath(
        QStringLiteral("%1 (conflict %2).%3").arg(info.completeBaseName(), stamp, info.suffix()));
}

} // namespace

void MainWindow::autosave()
{
    if (!m_view || !m_view->isModified() || m_readOnly || !isAutosaveOn())
        return;
    saveInBackground();
}

void MainWindow::saveInBackground()
{
    if (m_backgroundSave->isBusy()) {
        m_autosave->start(); // this change is saved once the running write is done
        return;
    }
    if (m_conflict) {
        // The other program's version is kept first: the plain save does that.
        QString error;
        if (!writeView(QString(), &error))
            statusBar()->showMessage(QStringLiteral("Autosave failed: %1").arg(error));
        updateTitle();
        return;
    }
    m_autosave->stop();
    quint64 changes = 0;
    QByteArray bytes;
    {
        WaitCursor wait;
        bytes = m_view->snapshot(&changes);
    }
    statusBar()->showMessage(
        QStringLiteral("Saving %1...").arg(QDir::toNativeSeparators(m_view->document()->path)));
    m_backgroundSave->start(m_view->document()->path, bytes, changes);
}

void MainWindow::backgroundSaved(bool ok, const QString &error, quint64 changes)
{
    if (!m_view)
        return;
    // A failure is not shown every few seconds: the status bar says it, and
    // the next Save or the close asks what to do.
    if (ok) {
        m_view->markSaved(changes);
        rememberFingerprint();
        statusBar()->clearMessage();
    } else {
        statusBar()->showMessage(QStringLiteral("Autosave failed: %1").arg(error));
    }
    updateTitle();
    // A change made while the bytes went to disk is saved next.
    if (ok && m_view->isModified() && isAutosaveOn() && !m_readOnly)
        m_autosave->start();
}

void MainWindow::quitOnSignal()
{
    if (m_view) {
        QString error;
        if (m_view->isModified() && !m_readOnly && !writeView(QString(), &error))
            qWarning("quillbox: %s not saved: %s", qPrintable(m_view->document()->path), qPrintable(error));
        m_settings.defFile = m_view->document()->path;
    }
    saveSettings();
    qApp->quit();
}

bool MainWindow::writeView(const QString &path, QString *error)
{
    m_backgroundSave->wait(); // never two writers of one file
    const QString target = path.isEmpty() ? m_view->document()->path : path;
    if (m_conflict && path.isEmpty() && QFileInfo::exists(target)) {
        // Ours is written; theirs stays beside it, as sync tools keep both.
        if (!QFile::copy(target, conflictCopyPath(target))) {
            if (error)
                *error = QStringLiteral("the other version of %1 could not be kept").arg(target);
            return false;
        }
    }
    m_autosave->stop();
    if (!m_view->save(path, error))
        return false;
    m_conflict = false;
    if (!path.isEmpty()) {
        m_readOnly = false;
        addRecent(path);
        watch(path);
    }
    rememberFingerprint();
    return true;
}

bool MainWindow::saveView()
{
    m_backgroundSave->wait();
    if (!m_view->isModified() && QFileInfo::exists(m_view->document()->path))
        return true;
    QString reason;
    if (!m_readOnly && writeView(QString(), &reason))
        return true;
    const QString file = QDir::toNativeSeparators(m_view->document()->path);
    if (m_readOnly)
        reason = QStringLiteral("the file is read-only");
    m_prompts->message(this, Prompts::Icon::Stop,
                       Prompts::withReason(Messages::SaveFailed, QStringLiteral("%1: %2").arg(file, reason)));
    if (m_prompts->askYesNo(this, QStringLiteral("Save %1 under another name?").arg(file)) && saveDocumentAs())
        return true;
    return m_prompts->askWarningYesNo(this, QStringLiteral("Discard the changes to %1?").arg(file));
}

bool MainWindow::saveDocument()
{
    if (!m_view)
        return false;
    if (m_readOnly)
        return saveDocumentAs();
    QString reason;
    if (writeView(QString(), &reason))
        return true;
    m_prompts->message(
        this, Prompts::Icon::Stop,
        Prompts::withReason(Messages::SaveFailed,
                            QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(m_view->document()->path), reason)));
    return false;
}

bool MainWindow::saveDocumentAs()
{
    if (!m_view)
        return false;
    const QString path = m_prompts->saveFileName(this, QStringLiteral("Save As"), m_view->document()->path,
                                                 QString::fromLatin1(Messages::FileFilter));
    if (path.isEmpty())
        return false;
    QString reason;
    if (writeView(QFileInfo(path).absoluteFilePath(), &reason)) {
        updateTitle();
        return true;
    }
    m_prompts->message(this, Prompts::Icon::Stop,
                       Prompts::withReason(Messages::SaveFailed,
                                           QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(path), reason)));
    return false;
}

// ---- following the file

void MainWindow::watch(const QString &path)
{
    if (!m_watcher->files().isEmpty())
        m_watcher->removePaths(m_watcher->files());
    if (QFileInfo::exists(path))
        m_watcher->addPath(path);
    rememberFingerprint();
}

void MainWindow::rememberFingerprint()
{
    if (!m_view)
        return;
    const QFileInfo info(m_view->document()->path);
    m_fileSize = info.exists() ? info.size() : -1;
    m_fileTime = info.exists() ? info.lastModified() : QDateTime();
    // A save that replaced the file ends the watch on the old one.
    if (info.exists() && !m_watcher->files().contains(info.filePath()))
        m_watcher->addPath(info.filePath());
}

void MainWindow::onFileChanged()
{
    if (!m_view)
        return;
    const QString path = m_view->document()->path;
    const QFileInfo info(path);
    if (!info.exists()) {
        if (m_fileSize < 0)
            return;
        m_fileSize = -1;
        statusBar()->showMessage(
            QStringLiteral("%1 was deleted; the next save writes it again.").arg(QDir::toNativeSeparators(path)));
        m_view->markChanged();
        return;
    }
    if (!m_watcher->files().contains(path))
        m_watcher->addPath(path);
    if (m_backgroundSave->isBusy())
        return; // our own write, still going: its end remembers the file
    if (info.size() == m_fileSize && info.lastModified() == m_fileTime)
        return; // our own save
    if (!m_view->isModified()) {
        reloadDocument();
        return;
    }
    if (m_prompts->askYesNo(this, QStringLiteral("%1 was changed by another program. Reload it and drop your "
                                                 "changes? (No keeps yours, and the other version is kept beside "
                                                 "it when you save.)")
                                      .arg(QDir::toNativeSeparators(path)))) {
        reloadDocument();
        return;
    }
    m_conflict = true;
    m_fileSize = info.size();
    m_fileTime = info.lastModified();
}

void MainWindow::reloadDocument()
{
    auto document = std::make_unique<Document>();
    const QString path = m_view->document()->path;
    if (DocumentFile::load(path, document.get()) != DocumentFile::Loaded)
        return; // half written: the next change of the file tries again
    if (!document->passwordHash.isEmpty() && document->passwordHash != m_view->document()->passwordHash)
        return; // a new password is asked for at the next open, not now
    // The current item is found again by its place among its siblings.
    QList<int> place;
    for (const TreeNode *n = m_view->treePane()->currentNode(); n && n->parent(); n = n->parent())
        place.prepend(n->parent()->indexOf(n));
    DocumentView *old = m_view;
    m_stack->removeWidget(old);
    old->deleteLater();
    m_view = nullptr;
    TreeNode *current = document->root();
    for (int index : std::as_const(place)) {
        if (index < 0 || index >= current->childCount())
            break;
        current = current->child(index);
    }
    document->setCurrent(current);
    showView(new DocumentView(std::move(document), &m_settings, m_prompts, m_stack));
    statusBar()->showMessage(
        QStringLiteral("Reloaded: %1 was changed by another program.").arg(QDir::toNativeSeparators(path)), 10000);
}
