#include "shell/commands/exchangecommands.h"

#include "exchange/documentimport.h"
#include "exchange/itemexport.h"
#include "exchange/markdownexport.h"
#include "exchange/markdownimport.h"
#include "exchange/opmlexport.h"
#include "exchange/opmlimport.h"
#include "exchange/textexport.h"
#include "exchange/textimport.h"
#include "exchange/xmlexport.h"
#include "model/document.h"
#include "platform/messages.h"
#include "shell/commands/commandhost.h"
#include "shell/dialogs/itemexportdialog.h"
#include "shell/dialogs/textexportdialog.h"
#include "shell/document/documentview.h"
#include "shell/document/treepane.h"
#include "shell/widgets/nodetree.h"
#include "shell/widgets/prompts.h"
#include "shell/widgets/waitcursor.h"
#include "storage/documentfile.h"
#include "storage/password.h"
#include "storage/settings.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>

ExchangeCommands::ExchangeCommands(CommandHost *host, QObject *parent) : CommandGroup(host, parent)
{
    auto defaultView = [host] { return host->view() && host->view()->document()->viewMode == Document::DefaultView; };
    // The exports work on the default view's tree, which must hold an item.
    auto exportable = [host, defaultView] { return defaultView() && host->view()->document()->root()->hasChildren(); };
    add(
        "actionImportText", QStringLiteral("Import..."), [this] { importText(); }, [host] { return !host->view(); });
    add(
        "actionImportFile", QStringLiteral("Import File..."), [this] { importFile(); }, defaultView);
    add(
        "actionExportView", QStringLiteral("View..."), [this] { exportText(TextKind::View); }, exportable);
    add(
        "actionExportXml", QStringLiteral("XML..."), [this] { exportXml(); }, exportable);
    add(
        "actionExportLinks", QStringLiteral("Links..."), [this] { exportText(TextKind::Links); }, exportable);
    add(
        "actionExportNotes", QStringLiteral("All Notes..."), [this] { exportText(TextKind::Notes); }, exportable);
    add(
        "actionExportItems", QStringLiteral("Items..."), [this] { exportItems(); }, exportable);
    add(
        "actionImportOutline", QStringLiteral("Outline (OPML, Markdown)..."), [this] { importOutline(); }, defaultView);
    add(
        "actionExportOpml", QStringLiteral("OPML..."), [this] { exportOutline(false); }, exportable);
    add(
        "actionExportMarkdown", QStringLiteral("Markdown..."), [this] { exportOutline(true); }, exportable);
}

namespace {

bool isOpml(const QString &path)
{
    return path.endsWith(QLatin1String(".opml"), Qt::CaseInsensitive);
}

bool isMarkdown(const QString &path)
{
    return path.endsWith(QLatin1String(".md"), Qt::CaseInsensitive) ||
           path.endsWith(QLatin1String(".markdown"), Qt::CaseInsensitive);
}

QString outlineFilters()
{
    return Prompts::filtersOf(QString::fromLatin1(Messages::OpmlFileFilter) +
                              QString::fromLatin1(Messages::MarkdownFileFilter))
        .join(QStringLiteral(";;"));
}

} // namespace

void ExchangeCommands::importOutline()
{
    DocumentView *view = m_host->view();
    Prompts *prompts = m_host->prompts();
    Document *document = view->document();
    TreeNode *target = view->treePane()->currentNode() ? view->treePane()->currentNode() : document->root();
    const QString path =
        prompts->openFileName(view, QStringLiteral("Import Outline"), m_host->documentsFolder(), outlineFilters());
    if (path.isEmpty())
        return;
    view->commitEdits();
    const quint16 icon = TextImport::iconOf(m_host->settings().textImport);
    QString message;
    {
        WaitCursor wait;
        if (isMarkdown(path)) {
            message =
                MarkdownImport::message(MarkdownImport::importInto(path, document, target, {document->noteType, icon}));
        } else {
            QString detail;
            const OpmlImport::Result result =
                OpmlImport::importInto(path, document, target, {document->noteType, icon}, &detail);
            message = OpmlImport::message(result, detail);
        }
    }
    if (!message.isEmpty()) {
        prompts->message(view, Prompts::Icon::Stop, Prompts::withFile(message, path));
        return;
    }
    view->edited(ItemHost::Edit::ItemsAdded, target->asItem());
    view->refresh(target);
}

void ExchangeCommands::exportOutline(bool markdown)
{
    DocumentView *view = m_host->view();
    Prompts *prompts = m_host->prompts();
    const QString extension = markdown ? QStringLiteral("md") : QStringLiteral("opml");
    const char *filter = markdown ? Messages::MarkdownFileFilter : Messages::OpmlFileFilter;
    const QString path = prompts->saveFileOfType(view, QStringLiteral("Export"), suggestedPath(extension),
                                                 Prompts::filtersOf(QString::fromLatin1(filter)), extension, nullptr);
    if (path.isEmpty())
        return;
    view->commitEdits();
    const Document *document = view->document();
    QString message;
    QString error;
    {
        WaitCursor wait;
        if (markdown) {
            const MarkdownExport::Result result =
                MarkdownExport::exportMarkdown(path, document->root(), {document->noteType}, &error);
            if (result != MarkdownExport::Result::Ok)
                message = MarkdownExport::message(result);
        } else if (!OpmlExport::exportOpml(path, document->root(), {document->noteType}, &error)) {
            message = QString::fromLatin1(Messages::ExportFailed);
        }
    }
    if (!message.isEmpty())
        prompts->message(view, Prompts::Icon::Stop,
                         error.isEmpty() ? message : message + QStringLiteral("\n\n") + error);
}

QString ExchangeCommands::suggestedPath(const QString &extension) const
{
    const QString name = QFileInfo(m_host->view()->document()->path).completeBaseName();
    return QDir(m_host->documentsFolder()).filePath(name + QLatin1Char('.') + extension);
}

void ExchangeCommands::importFile()
{
    DocumentView *view = m_host->view();
    Prompts *prompts = m_host->prompts();
    Document *document = view->document();
    TreeNode *target = view->treePane()->currentNode() ? view->treePane()->currentNode() : document->root();
    const QString path =
        prompts->openFileName(view, QStringLiteral("Import File"), m_host->documentsFolder(),
                              Prompts::filtersOf(QString::fromLatin1(Messages::FileFilter)).join(QStringLiteral(";;")));
    if (path.isEmpty())
        return;
    view->commitEdits();
    auto askPassword = [prompts, view](const QByteArray &hash) {
        return prompts->askPassword(view,
                                    [&hash](const QString &password) { return Password::matches(hash, password); });
    };
    DocumentFile::LoadResult result = DocumentFile::Damaged;
    {
        WaitCursor wait;
        result = DocumentImport::importInto(document, target, path, askPassword);
    }
    const QString message = DocumentFile::importMessage(result);
    if (!message.isEmpty())
        prompts->message(view, Prompts::Icon::Stop, Prompts::withFile(message, path));
    if (result == DocumentFile::Loaded) {
        view->edited(ItemHost::Edit::ItemsAdded, target->asItem());
        view->refresh(target);
    }
}

void ExchangeCommands::exportText(TextKind kind)
{
    DocumentView *view = m_host->view();
    Prompts *prompts = m_host->prompts();
    Settings &s = m_host->settings();
    using DialogKind = TextExportDialog::Kind;
    const DialogKind dialogKind = kind == TextKind::View    ? DialogKind::View
                                  : kind == TextKind::Notes ? DialogKind::Notes
                                                            : DialogKind::Links;
    quint16 &kept = kind == TextKind::View ? s.expViewSep : s.expOtherSep;
    TextExportDialog options(dialogKind, kept, view);
    if (prompts->runDialog(&options) != QDialog::Accepted)
        return;
    // The choice is kept as the next export's default.
    if (kept != options.choice()) {
        kept = quint16(options.choice());
        m_host->saveSettings();
    }
    int type = 0;
    const QString path = prompts->saveFileOfType(view, QStringLiteral("Export"), suggestedPath(QStringLiteral("txt")),
                                                 Prompts::filtersOf(QString::fromLatin1(Messages::TextFileFilter)),
                                                 QStringLiteral("txt"), &type);
    if (path.isEmpty())
        return;
    view->commitEdits();
    const Document *document = view->document();
    TextExport::Options textOptions;
    textOptions.unicode = type == 1;
    textOptions.codePage = s.ansiCodePage;
    textOptions.indent = s.expViewSep;
    textOptions.separator = s.expOtherSep;
    textOptions.noteType = document->noteType;
    // An export never lands on the document it is made from.
    textOptions.source = document->path;
    bool written = false;
    QString error;
    {
        WaitCursor wait;
        switch (kind) {
        case TextKind::View:
            written = TextExport::exportView(path, document->root(), textOptions, &error);
            break;
        case TextKind::Notes:
            written = TextExport::exportNotes(path, document->root(), textOptions, &error);
            break;
        case TextKind::Links:
            written = TextExport::exportLinks(path, document->root(), textOptions, &error);
            break;
        }
    }
    if (!written)
        prompts->message(view, Prompts::Icon::Stop, Prompts::withReason(Messages::ExportFailed, error));
}

void ExchangeCommands::exportXml()
{
    DocumentView *view = m_host->view();
    Prompts *prompts = m_host->prompts();
    const QString path = prompts->saveFileOfType(
        view, QStringLiteral("XML Export"), suggestedPath(QStringLiteral("xml")),
        Prompts::filtersOf(QString::fromLatin1(Messages::XmlFileFilter)), QStringLiteral("xml"), nullptr);
    if (path.isEmpty())
        return;
    view->commitEdits();
    XmlExport::Options options;
    options.encoding = m_host->settings().xmlEncode;
    options.codePage = m_host->settings().ansiCodePage;
    options.noteType = view->document()->noteType;
    options.source = view->document()->path;
    bool written = false;
    QString error;
    {
        WaitCursor wait;
        written = XmlExport::exportXml(path, view->document()->root(), options, &error);
    }
    if (!written)
        prompts->message(view, Prompts::Icon::Stop, Prompts::withReason(Messages::ExportFailed, error));
}

void ExchangeCommands::exportItems()
{
    DocumentView *view = m_host->view();
    Prompts *prompts = m_host->prompts();
    Document *document = view->document();
    view->commitEdits();
    ItemExportDialog dialog(*document, !m_host->settings().testFlag(Settings::KeepExportedItems), view);
    dialog.tree()->selectNode(document->current());
    if (prompts->runDialog(&dialog) != QDialog::Accepted)
        return;
    const QString suggested = QDir(m_host->documentsFolder()).filePath(QStringLiteral("Exported Items.qbx"));
    const QString path = prompts->saveFileOfType(view, QStringLiteral("Export Items"), suggested,
                                                 Prompts::filtersOf(QString::fromLatin1(Messages::FileFilter)),
                                                 QStringLiteral("qbx"), nullptr);
    if (path.isEmpty())
        return;
    // The selection is the branch of "Currently selected item"; the note it
    // shows was stored above, so its pane holds nothing that a deletion could
    // lose.
    const bool deleting = dialog.deleteAfter();
    const quint32 marked = view->clip().item() ? view->clip().item()->handle() : 0;
    int result = ItemExport::Failed;
    QString error;
    ItemExport::Report report;
    {
        WaitCursor wait;
        result = ItemExport::exportItems(*document, ItemExport::Choice(dialog.choice()), deleting, dialog.selection(),
                                         path, &error, &report);
    }
    if (deleting && result > 0) {
        if (marked && !document->liveItem(marked))
            view->clip().clear();
        view->edited(ItemHost::Edit::ItemsRemoved, nullptr);
        view->refresh(document->current());
    }
    if (result == ItemExport::Failed)
        prompts->message(view, Prompts::Icon::Stop,
                         ItemExport::message(result) + (error.isEmpty() ? QString() : QStringLiteral("\n\n") + error));
    else
        prompts->message(view, Prompts::Icon::Information, ItemExport::message(result, report.kept));
}

bool ExchangeCommands::importText()
{
    Prompts *prompts = m_host->prompts();
    QWidget *frame = m_host->frame();
    Settings &settings = m_host->settings();
    const QString path = prompts->openFileName(
        frame, QStringLiteral("Import"), m_host->documentsFolder(),
        Prompts::filtersOf(QString::fromLatin1(Messages::TextFileFilter)).join(QStringLiteral(";;")) +
            QStringLiteral(";;") + outlineFilters());
    if (path.isEmpty())
        return false;
    const QString target = TextImport::documentPath(path);
    const int noteType = prompts->askNoteType(frame, TextImport::noteTypeOf(settings.textImport));
    if (noteType < 0)
        return false;
    // An existing document of that name is replaced only when the person
    // says so.
    if (QFileInfo::exists(target) &&
        !prompts->askWarningYesNo(
            frame, QString::fromLatin1(Messages::AskReplaceDocument).arg(QDir::toNativeSeparators(target))))
        return false;
    Document document;
    const quint16 icon = TextImport::iconOf(settings.textImport);
    QString failure;
    bool saved = false;
    QString error;
    {
        WaitCursor wait;
        if (isOpml(path)) {
            QString detail;
            const OpmlImport::Result result =
                OpmlImport::importDocument(path, {quint16(noteType), icon}, &document, &detail);
            failure = OpmlImport::message(result, detail);
        } else if (isMarkdown(path)) {
            failure =
                MarkdownImport::message(MarkdownImport::importDocument(path, {quint16(noteType), icon}, &document));
        } else {
            TextImport::Options options;
            options.icon = icon;
            options.codePage = settings.ansiCodePage;
            if (settings.testFlag(Settings::Utf8TextImport))
                options.encoding = TextImport::Encoding::Utf8;
            int line = 0;
            const TextImport::Result result =
                TextImport::importDocument(path, quint16(noteType), options, &document, &line);
            failure = TextImport::message(result, line);
        }
        if (failure.isEmpty())
            saved = DocumentFile::save(document, QString(), &error);
    }
    if (!failure.isEmpty()) {
        prompts->message(frame, Prompts::Icon::Stop, Prompts::withFile(failure, path));
        return false;
    }
    if (!saved) {
        prompts->message(frame, Prompts::Icon::Stop, Prompts::withReason(Messages::SaveFailed, error));
        return false;
    }
    m_host->refreshDocumentList();
    return m_host->openDocument(document.path);
}
