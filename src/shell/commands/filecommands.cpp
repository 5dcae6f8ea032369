#include "shell/commands/filecommands.h"

#include "model/document.h"
#include "notes/noteconverter.h"
#include "platform/messages.h"
#include "shell/commands/commandhost.h"
#include "shell/dialogs/convertnotesdialog.h"
#include "shell/dialogs/filepropertiesdialog.h"
#include "shell/dialogs/optionsdialog.h"
#include "shell/dialogs/passworddialog.h"
#include "shell/document/documentview.h"
#include "shell/widgets/prompts.h"
#include "shell/widgets/waitcursor.h"
#include "storage/settings.h"

#include <QAction>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStyle>
#include <QUrl>
#include <QWidget>

FileCommands::FileCommands(CommandHost *host, QObject *parent) : CommandGroup(host, parent)
{
    const QStyle *style = host->frame()->style();
    auto open = [host] { return host->view() != nullptr; };
    auto list = [host] { return host->view() == nullptr; };

    add(
        "actionNewDocument", QStringLiteral("New"), [host] { host->createDocument(); }, list)
        ->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_N));
    add("actionNewFile", QStringLiteral("&New Document..."), [host] { host->createDocument(); }, open);
    QAction *openAction = add("actionOpen", QStringLiteral("&Open..."), [this] { openFile(); });
    openAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_O));
    openAction->setIcon(
        QIcon::fromTheme(QStringLiteral("document-open"), style->standardIcon(QStyle::SP_DialogOpenButton)));
    add(
        "actionAutosave", QStringLiteral("&Autosave"), [host] { host->setAutosaveOn(!host->isAutosaveOn()); }, {},
        [host] { return host->isAutosaveOn(); });
    add(
        "actionRefresh", QStringLiteral("Refresh"), [host] { host->refreshDocumentList(); }, list);
    QAction *close = add(
        "actionCloseDocument", QStringLiteral("Close Document"), [host] { host->closeDocument(); }, open);
    close->setIcon(QIcon::fromTheme(QStringLiteral("go-home"), style->standardIcon(QStyle::SP_DirHomeIcon)));
    close->setIconText(QStringLiteral("Documents"));
    close->setToolTip(QStringLiteral("Save and close the document, back to the list of documents"));
    QAction *saveAction = add(
        "actionSave", QStringLiteral("Save"), [host] { host->saveDocument(); }, open);
    saveAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_S));
    saveAction->setIcon(
        QIcon::fromTheme(QStringLiteral("document-save"), style->standardIcon(QStyle::SP_DialogSaveButton)));
    add(
        "actionSaveAs", QStringLiteral("Save As..."), [host] { host->saveDocumentAs(); }, open);
    add(
        "actionSetPassword", QStringLiteral("Set Password..."), [this] { setPassword(); }, open);
    add(
        "actionFileProperties", QStringLiteral("File Properties..."), [this] { fileProperties(); }, open);
    add(
        "actionConvertNotes", QStringLiteral("Convert Notes..."), [this] { convertNotes(); }, open);
    add(
        "actionOptions", QStringLiteral("Options..."), [this] { options(); }, open);
    add("actionExit", QStringLiteral("Exit"), [host] {
        host->frame()->close();
    })->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    add("actionAbout", QStringLiteral("About..."), [host] {
        host->prompts()->about(host->frame());
    })->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_A));
    QAction *help = add("actionHelp", QStringLiteral("Help"), [this] { showHelp(); });
    help->setShortcut(QKeySequence::HelpContents);
    help->setShortcutContext(Qt::ApplicationShortcut);
    // Opening and closing documents are no edits of the open one.
    for (const char *name : {"actionNewDocument", "actionNewFile", "actionOpen", "actionCloseDocument", "actionExit"})
        leaveUnrecorded(action(QString::fromLatin1(name)));
}

void FileCommands::openFile()
{
    const QString path = m_host->prompts()->openFileName(m_host->frame(), QStringLiteral("Open"),
                                                         m_host->documentsFolder(),
                                                         QString::fromLatin1(Messages::FileFilter));
    if (!path.isEmpty())
        m_host->openDocument(path);
}

void FileCommands::setPassword()
{
    PasswordDialog dialog(m_host->view()->document(), m_host->prompts(), m_host->view());
    if (m_host->prompts()->runDialog(&dialog) == QDialog::Accepted)
        m_host->view()->markChanged();
}

void FileCommands::fileProperties()
{
    DocumentView *view = m_host->view();
    view->commitEdits();
    FilePropertiesDialog dialog(*view->document(), view);
    m_host->prompts()->runDialog(&dialog);
}

void FileCommands::convertNotes()
{
    DocumentView *view = m_host->view();
    Prompts *prompts = m_host->prompts();
    Document *document = view->document();
    ConvertNotesDialog dialog(document->path, document->noteType, view);
    if (prompts->runDialog(&dialog) != QDialog::Accepted)
        return;
    if (document->noteType != Document::PlainText &&
        !prompts->askWarningYesNo(view, QString::fromLatin1(Messages::AskConvertNotes)))
        return;
    view->commitEdits();
    bool converted = false;
    {
        WaitCursor wait;
        converted = NoteConverter().convertDocument(*document, dialog.target());
    }
    // The conversion is all or nothing: after a failure the document is as it
    // was, so closing it keeps the file as it was too.
    QString error;
    if (converted && !view->save(QString(), &error)) {
        prompts->message(view, Prompts::Icon::Stop, Prompts::withReason(Messages::SaveFailed, error));
        return;
    }
    m_host->closeDocument();
    if (converted)
        prompts->message(m_host->frame(), Prompts::Icon::Information,
                         QString::fromLatin1(Messages::NoteConversionDone));
    else
        prompts->message(m_host->frame(), Prompts::Icon::Stop, QString::fromLatin1(Messages::NoteConversionFailed));
}

void FileCommands::options()
{
    DocumentView *view = m_host->view();
    OptionsDialog dialog(m_host->settings(), m_host->prompts(), view);
    if (m_host->prompts()->runDialog(&dialog) != QDialog::Accepted)
        return;
    m_host->settings() = dialog.settings();
    m_host->saveSettings();
    view->applySettings();
}

QString FileCommands::helpFile()
{
    const QString appDir = QCoreApplication::applicationDirPath();
    const QString candidates[] = {
        appDir + QStringLiteral("/Quillbox.htm"),
        appDir + QStringLiteral("/../share/doc/quillbox/Quillbox.htm"),
        QStringLiteral(QUILLBOX_HELP_SOURCE),
    };
    for (const QString &candidate : candidates) {
        if (QFileInfo::exists(candidate))
            return QFileInfo(candidate).absoluteFilePath();
    }
    return {};
}

void FileCommands::showHelp()
{
    const QString file = helpFile();
    if (file.isEmpty()) {
        m_host->prompts()->message(m_host->frame(), Prompts::Icon::Information,
                                   QStringLiteral("The help page Quillbox.htm is not installed."));
        return;
    }
    QUrl url = QUrl::fromLocalFile(file);
    url.setFragment(QStringLiteral("Main_Contents"));
    if (!m_host->prompts()->openUrl(url))
        m_host->prompts()->message(
            m_host->frame(), Prompts::Icon::Information,
            QStringLiteral("No web browser could be started to show the help. Open %1 in a browser.")
                .arg(QDir::toNativeSeparators(file)));
}
