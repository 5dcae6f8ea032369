#include "cli/clicommand.h"
#include "cli/documentloading.h"
#include "cli/positions.h"
#include "exchange/itemexport.h"
#include "exchange/markdownexport.h"
#include "exchange/opmlexport.h"
#include "exchange/textexport.h"
#include "exchange/xmlexport.h"
#include "platform/messages.h"
#include "storage/settings.h"

namespace {

// Reads an index option, checking its range; the setting's value when absent.
bool indexOption(const QCommandLineParser &parser, const QCommandLineOption &option, int max, quint16 fallback,
                 quint16 *value)
{
    if (!parser.isSet(option)) {
        *value = fallback;
        return true;
    }
    bool ok = false;
    const int n = parser.value(option).toInt(&ok);
    if (!ok || n < 0 || n > max) {
        QTextStream(stderr) << "qbx: --" << option.names().constFirst() << " is a number from 0 to " << max << "\n";
        return false;
    }
    *value = quint16(n);
    return true;
}

int failed(const char *message, const QString &error)
{
    DocumentLoading::reportWriteFailure(message, error);
    return ExitCode::WriteFailed;
}

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Exports a document.\n"
        "  xml FILE OUT        the whole tree as XML\n"
        "  opml FILE OUT       the whole tree as an OPML 2.0 outline\n"
        "  markdown FILE OUT   the whole tree as a Markdown list\n"
        "  view FILE OUT       the document's view as an indented outline\n"
        "  notes FILE OUT      every item's path and note\n"
        "  links FILE OUT      every item's path and links\n"
        "  items FILE OUT      chosen items as a new document (--choice, --select, --delete)\n"
        "  branch FILE POSITION OUT   the branch at POSITION as a new document\n"
        "A POSITION is an item's 1-based index in depth-first order (as 'qbx dump' counts), 0 the root.\n"
        "Options left out take the values of the settings. Text is ANSI in the settings' code page unless "
        "--unicode.\n"
        "OUT is never FILE itself (through any link); a failed export leaves no file.\n"
        "Exit status: 0 done, 1, 2 or 4 as for 'check', 3 nothing matched, 5 the export failed, 6 another "
        "program held FILE (items --delete), 7 FILE changed on disk meanwhile (--force saves anyway)."));
    const QCommandLineOption encoding(QStringLiteral("encoding"),
                                      QStringLiteral("XML encoding: 0 (Default), 1 UTF-8, 2 UTF-16, 3 ISO-8859-1, "
                                                     "4 Big-5, 5 Shift-JIS, 6 GB2312."),
                                      QStringLiteral("N"));
    const QCommandLineOption indent(QStringLiteral("indent"),
                                    QStringLiteral("View indent: 0 none, 1 tab, 2 to 6 one to five spaces."),
                                    QStringLiteral("N"));
    const QCommandLineOption separator(QStringLiteral("separator"),
                                       QStringLiteral("Level separator: 0 ':', 1 '\\', 2 '/', 3 ',', 4 '|', 5 '-'."),
                                       QStringLiteral("N"));
    const QCommandLineOption unicode(QStringLiteral("unicode"), QStringLiteral("Write FF FE and UTF-16LE text."));
    const QCommandLineOption choice(QStringLiteral("choice"),
                                    QStringLiteral("items: 0 completed items only, 1 completed items with their "
                                                   "hierarchy, 2 the current item with its children, 3 the items "
                                                   "of --select."),
                                    QStringLiteral("N"));
    const QCommandLineOption select(QStringLiteral("select"),
                                    QStringLiteral("items: the positions chosen, e.g. 3,5,8."),
                                    QStringLiteral("POSITIONS"));
    const QCommandLineOption remove(QStringLiteral("delete"),
                                    QStringLiteral("items: delete the exported items from FILE afterwards."));
    parser.addOptions({encoding, indent, separator, unicode, choice, select, remove, DocumentLoading::forceOption()});
    parser.addPositionalArgument(QStringLiteral("KIND"),
                                 QStringLiteral("xml, opml, markdown, view, notes, links, items or branch."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The .qbx document."));
    parser.addPositionalArgument(QStringLiteral("OUT"), QStringLiteral("The file to write."));
    if (const int status = DocumentLoading::parse(parser, arguments, "export", 3, 4); status >= 0)
        return status;

    QTextStream err(stderr);
    const QStringList args = parser.positionalArguments();
    const QString kind = args.at(0);
    static const QStringList kinds = {QStringLiteral("xml"),      QStringLiteral("opml"),  QStringLiteral("markdown"),
                                      QStringLiteral("view"),     QStringLiteral("notes"), QStringLiteral("links"),
                                      QStringLiteral("items"),    QStringLiteral("branch")};
    if (!kinds.contains(kind)) {
        err << "qbx: unknown export '" << kind << "'\n";
        return 2;
    }
    if (args.size() != (kind == QLatin1String("branch") ? 4 : 3)) {
        err << "qbx: wrong number of arguments\n";
        return 2;
    }

    Settings settings;
    settings.loadUserStore();
    Document document;
    // An export with delete changes FILE: it holds the lock from the load on.
    DocumentLoading::Update update(args.at(1));
    if (kind == QLatin1String("items") && parser.isSet(remove)) {
        if (const int status = DocumentLoading::loadForUpdate(&update, &document))
            return status;
    } else if (const int status = DocumentLoading::load(args.at(1), &document)) {
        return status;
    }
    QString error;

    if (kind == QLatin1String("xml")) {
        XmlExport::Options options;
        if (!indexOption(parser, encoding, 6, settings.xmlEncode, &options.encoding))
            return 2;
        options.codePage = settings.ansiCodePage;
        options.noteType = document.noteType;
        options.source = args.at(1);
        if (!XmlExport::exportXml(args.at(2), document.root(), options, &error))
            return failed(Messages::ExportFailed, error);
        return 0;
    }

    if (kind == QLatin1String("opml")) {
        QString error;
        if (!OpmlExport::exportOpml(args.at(2), document.root(), {document.noteType}, &error)) {
            err << Messages::ExportFailed << "\n" << error << "\n";
            return 5;
        }
        return 0;
    }

    if (kind == QLatin1String("markdown")) {
        QString error;
        const MarkdownExport::Result result =
            MarkdownExport::exportMarkdown(args.at(2), document.root(), {document.noteType}, &error);
        if (result != MarkdownExport::Result::Ok) {
            err << MarkdownExport::message(result) << "\n";
            if (!error.isEmpty())
                err << error << "\n";
            return 5;
        }
        return 0;
    }

    if (kind == QLatin1String("view") || kind == QLatin1String("notes") || kind == QLatin1String("links")) {
        TextExport::Options options;
        if (!indexOption(parser, indent, 6, settings.expViewSep, &options.indent) ||
            !indexOption(parser, separator, 5, settings.expOtherSep, &options.separator))
            return 2;
        options.unicode = parser.isSet(unicode);
        options.codePage = settings.ansiCodePage;
        options.noteType = document.noteType;
        options.source = args.at(1);
        bool ok = false;
        if (kind == QLatin1String("view"))
            ok = TextExport::exportView(args.at(2), document, options, &error);
        else if (kind == QLatin1String("notes"))
            ok = TextExport::exportNotes(args.at(2), document.root(), options, &error);
        else
            ok = TextExport::exportLinks(args.at(2), document.root(), options, &error);
        return ok ? 0 : failed(Messages::ExportFailed, error);
    }

    if (kind == QLatin1String("branch")) {
        std::vector<qint64> positions;
        std::vector<TreeNode *> nodes;
        if (!Positions::parse(args.at(2), &positions) || positions.size() != 1 ||
            !Positions::resolve(document.root(), positions, &nodes)) {
            err << "qbx: no item at position " << args.at(2) << "\n";
            return 2;
        }
        if (!DocumentFile::saveBranch(document, nodes.front(), args.at(3), &error))
            return failed(Messages::ItemExportFailed, error);
        return 0;
    }

    // items
    quint16 choiceValue = 0;
    if (!parser.isSet(choice)) {
        err << "qbx: export items needs --choice\n";
        return 2;
    }
    if (!indexOption(parser, choice, 3, 0, &choiceValue))
        return 2;
    std::vector<Item *> selection;
    if (parser.isSet(select)) {
        std::vector<qint64> positions;
        std::vector<TreeNode *> nodes;
        if (!Positions::parse(parser.value(select), &positions) ||
            !Positions::resolve(document.root(), positions, &nodes)) {
            err << "qbx: --select names a position that holds no item\n";
            return 2;
        }
        for (TreeNode *node : nodes) {
            if (Item *item = node->asItem())
                selection.push_back(item);
        }
    }
    ItemExport::Report report;
    const int result = ItemExport::exportItems(document, ItemExport::Choice(choiceValue), parser.isSet(remove),
                                               selection, args.at(2), &error, &report);
    if (result == ItemExport::Failed)
        return failed(Messages::ItemExportFailed, error);
    if (result == 0) {
        err << ItemExport::message(result) << "\n";
        return ExitCode::Refused;
    }
    if (parser.isSet(remove)) {
        if (const int status =
                DocumentLoading::saveUpdate(update, document, parser.isSet(QStringLiteral("force"))))
            return status;
    }
    QTextStream(stdout) << ItemExport::message(result, report.kept) << "\n";
    return 0;
}

const CliCommand command("export", "Export a document as XML, OPML, Markdown, text, or chosen items as a new document",
                         run);

} // namespace
