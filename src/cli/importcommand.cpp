#include "cli/clicommand.h"
#include "cli/documentloading.h"
#include "cli/notetypes.h"
#include "cli/positions.h"
#include "exchange/documentimport.h"
#include "exchange/markdownimport.h"
#include "exchange/opmlimport.h"
#include "exchange/textimport.h"
#include "platform/messages.h"
#include "storage/password.h"
#include "storage/settings.h"

#include <QFileInfo>
#include <memory>

namespace {

// The note type and icon of imported items: the options when given, else
// the settings. False, with the message printed, for a bad value.
bool readTypeAndIcon(const QCommandLineParser &parser, const QCommandLineOption &noteType,
                     const QCommandLineOption &icon, const Settings &settings, quint16 *type, quint16 *iconValue)
{
    QTextStream err(stderr);
    *type = TextImport::noteTypeOf(settings.textImport);
    if (parser.isSet(noteType) && !NoteTypes::parse(parser.value(noteType), type)) {
        err << "qbx: --note-type is 0 (plain), 1 (ink) or 2 (rich)\n";
        return false;
    }
    *iconValue = TextImport::iconOf(settings.textImport);
    if (parser.isSet(icon)) {
        bool ok = false;
        const uint value = parser.value(icon).toUInt(&ok);
        if (!ok || value > 0xffff) {
            err << "qbx: --icon is a number from 0 to 65535\n";
            return false;
        }
        *iconValue = quint16(value);
    }
    return true;
}

int importText(const QCommandLineParser &parser, const QStringList &args, const QCommandLineOption &noteType,
               const QCommandLineOption &icon, const QCommandLineOption &force, const QCommandLineOption &encoding)
{
    QTextStream err(stderr);
    Settings settings;
    settings.loadUserStore();
    quint16 type = 0;
    TextImport::Options options;
    if (!readTypeAndIcon(parser, noteType, icon, settings, &type, &options.icon))
        return 2;
    options.codePage = settings.ansiCodePage;
    if (settings.testFlag(Settings::Utf8TextImport))
        options.encoding = TextImport::Encoding::Utf8;
    if (parser.isSet(encoding)) {
        const QString name = parser.value(encoding).toLower();
        if (name == QLatin1String("utf-8") || name == QLatin1String("utf8")) {
            options.encoding = TextImport::Encoding::Utf8;
        } else if (name == QLatin1String("ansi")) {
            options.encoding = TextImport::Encoding::Ansi;
        } else {
            err << "qbx: --encoding is ansi or utf-8\n";
            return 2;
        }
    }
    const QString textPath = args.at(1);
    // An existing document is never replaced by accident.
    const QString documentPath = TextImport::documentPath(textPath);
    if (QFileInfo::exists(documentPath) && !parser.isSet(force)) {
        err << "qbx: " << documentPath << " already exists; --force replaces it\n";
        return 3;
    }
    Document document;
    int line = 0;
    const TextImport::Result result = TextImport::importDocument(textPath, type, options, &document, &line);
    if (result != TextImport::Result::Ok) {
        err << TextImport::message(result, line) << "\n";
        return result == TextImport::Result::FormatError ? ExitCode::Refused : ExitCode::Damaged;
    }
    QString error;
    if (!DocumentFile::save(document, document.path, &error, textPath)) {
        DocumentLoading::reportWriteFailure(Messages::SaveFailed, error);
        return ExitCode::WriteFailed;
    }
    QTextStream(stdout) << document.path << "\n";
    return 0;
}

int importDocument(const QCommandLineParser &parser, const QStringList &args, const QCommandLineOption &into)
{
    QTextStream err(stderr);
    if (args.size() != 3) {
        err << "qbx: import doc needs FILE and OTHER\n";
        return 2;
    }
    Document document;
    DocumentLoading::Update update(args.at(1));
    if (const int status = DocumentLoading::loadForUpdate(&update, &document))
        return status;
    TreeNode *target = document.current();
    if (parser.isSet(into)) {
        std::vector<qint64> positions;
        std::vector<TreeNode *> nodes;
        if (!Positions::parse(parser.value(into), &positions) || positions.size() != 1 ||
            !Positions::resolve(document.root(), positions, &nodes)) {
            err << "qbx: no item at position " << parser.value(into) << "\n";
            return 2;
        }
        target = nodes.front();
    }
    // A protected file's password is the first line of standard input.
    const auto askPassword = [&err](const QByteArray &hash) {
        QTextStream in(stdin);
        QString line = in.readLine();
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        if (Password::matches(hash, line))
            return true;
        err << Messages::PasswordNotCorrect << "\n";
        return false;
    };
    const DocumentFile::LoadResult result = DocumentImport::importInto(&document, target, args.at(2), askPassword);
    if (result == DocumentFile::Cancelled)
        return 3;
    if (result != DocumentFile::Loaded) {
        err << DocumentFile::importMessage(result) << "\n";
        return int(result);
    }
    return DocumentLoading::saveUpdate(update, document, parser.isSet(QStringLiteral("force")));
}

// Reads an OPML or Markdown file into document, under target when given,
// else as a new document. The exit status: 0, 3 for a file that is no
// outline, 1 for one that cannot be read; *error says why.
int readOutline(const QString &kind, const QString &path, quint16 noteType, quint16 icon, Document *document,
                 TreeNode *target, QString *error)
{
    if (kind == QLatin1String("opml")) {
        const OpmlImport::Options options{noteType, icon};
        QString detail;
        const OpmlImport::Result result =
            target ? OpmlImport::importInto(path, document, target, options, &detail)
                   : OpmlImport::importDocument(path, options, document, &detail);
        *error = OpmlImport::message(result, detail);
        return result == OpmlImport::Result::Ok ? 0 : result == OpmlImport::Result::FormatError ? 3 : 1;
    }
    const MarkdownImport::Options options{noteType, icon};
    const MarkdownImport::Result result = target ? MarkdownImport::importInto(path, document, target, options)
                                                 : MarkdownImport::importDocument(path, options, document);
    *error = MarkdownImport::message(result);
    return result == MarkdownImport::Result::Ok ? 0 : 1;
}

int importOutline(const QCommandLineParser &parser, const QStringList &args, const QCommandLineOption &noteType,
                  const QCommandLineOption &icon, const QCommandLineOption &force, const QCommandLineOption &into)
{
    QTextStream err(stderr);
    Settings settings;
    settings.loadUserStore();
    quint16 type = 0;
    quint16 iconValue = 0;
    if (!readTypeAndIcon(parser, noteType, icon, settings, &type, &iconValue))
        return 2;
    Document document;
    TreeNode *target = nullptr;
    QString savePath;
    std::unique_ptr<DocumentLoading::Update> update;
    if (args.size() == 3) {
        // Into an existing document, held from the load to the save: its
        // current item, or --into.
        savePath = args.at(1);
        update = std::make_unique<DocumentLoading::Update>(savePath);
        if (const int status = DocumentLoading::loadForUpdate(update.get(), &document))
            return status;
        target = document.current();
        if (parser.isSet(into)) {
            std::vector<qint64> positions;
            std::vector<TreeNode *> nodes;
            if (!Positions::parse(parser.value(into), &positions) || positions.size() != 1 ||
                !Positions::resolve(document.root(), positions, &nodes)) {
                err << "qbx: no item at position " << parser.value(into) << "\n";
                return 2;
            }
            target = nodes.front();
        }
    } else {
        savePath = TextImport::documentPath(args.at(1));
        if (QFileInfo::exists(savePath) && !parser.isSet(force)) {
            err << "qbx: " << savePath << " already exists; --force replaces it\n";
            return 3;
        }
    }
    const QString source = args.constLast();
    if (!QFileInfo::exists(source)) {
        err << DocumentFile::loadMessage(DocumentFile::NotFound, source) << "\n";
        return 4;
    }
    QString error;
    if (const int status = readOutline(args.at(0), source, type, iconValue, &document, target, &error)) {
        err << error << "\n";
        return status;
    }
    if (update)
        return DocumentLoading::saveUpdate(*update, document, parser.isSet(force));
    if (!DocumentFile::save(document, savePath, &error)) {
        err << Messages::SaveFailed << "\n" << error << "\n";
        return 5;
    }
    if (!target)
        QTextStream(stdout) << savePath << "\n";
    return 0;
}

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Imports into documents.\n"
        "  text TEXTFILE       an indented outline becomes a new document beside it (extension .qbx)\n"
        "  doc FILE OTHER      the items of document OTHER join FILE, under its current item or --into\n"
        "  opml OUTLINE        an OPML outline becomes a new document beside it (extension .qbx)\n"
        "  markdown OUTLINE    a Markdown list becomes a new document beside it (extension .qbx)\n"
        "  opml|markdown FILE OUTLINE   the outline's items join FILE, under its current item or --into\n"
        "A protected OTHER reads its password from the first line of standard input. Notes of OTHER are "
        "converted to FILE's note type.\n"
        "Exit status: 0 done, 1 unreadable, 2 unsupported version or bad arguments, 3 refused (format error, "
        "existing document, wrong password), 4 not found, 5 the save failed."));
    const QCommandLineOption noteType(QStringLiteral("note-type"),
                                      QStringLiteral("text, opml, markdown: note type of the new document, 0 plain, 1 ink, 2 rich "
                                                     "(default: the settings)."),
                                      QStringLiteral("T"));
    const QCommandLineOption icon(QStringLiteral("icon"),
                                  QStringLiteral("text, opml, markdown: icon of every item (default: the settings)."),
                                  QStringLiteral("N"));
    const QCommandLineOption force(QStringLiteral("force"),
                                   QStringLiteral("text, opml, markdown: replace an existing document. doc, and an "
                                                  "outline into FILE: save even when FILE changed on disk since it "
                                                  "was read."));
    const QCommandLineOption into(QStringLiteral("into"),
                                  QStringLiteral("doc, opml, markdown: the position to import under (0 the root)."),
                                  QStringLiteral("POSITION"));
    const QCommandLineOption encoding(QStringLiteral("encoding"),
                                      QStringLiteral("text: how a file without a byte-order mark is read, ansi "
                                                     "(the code page) or utf-8; the default is the settings' choice, the code page unless "
                                                     "the options say UTF-8."),
                                      QStringLiteral("NAME"));
    parser.addOptions({noteType, icon, force, into, encoding});
    parser.addPositionalArgument(QStringLiteral("KIND"), QStringLiteral("text, doc, opml or markdown."));
    parser.addPositionalArgument(QStringLiteral("FILE"),
                                 QStringLiteral("The file to import, or the .qbx document to import into."));
    parser.addPositionalArgument(QStringLiteral("OTHER"),
                                 QStringLiteral("doc, opml, markdown: the file to import into FILE."),
                                 QStringLiteral("[OTHER]"));
    if (const int status = DocumentLoading::parse(parser, arguments, "import", 2, 3); status >= 0)
        return status;
    const QStringList args = parser.positionalArguments();
    if (args.at(0) == QLatin1String("text") && args.size() == 2)
        return importText(parser, args, noteType, icon, force, encoding);
    if (args.at(0) == QLatin1String("doc"))
        return importDocument(parser, args, into);
    if (args.at(0) == QLatin1String("opml") || args.at(0) == QLatin1String("markdown"))
        return importOutline(parser, args, noteType, icon, force, into);
    QTextStream(stderr) << "qbx: use 'import text TEXTFILE', 'import doc FILE OTHER' or "
                           "'import opml|markdown [FILE] OUTLINE'\n";
    return 2;
}

const CliCommand command("import", "Import an indented text outline, an OPML or Markdown outline, or another document",
                         run);

} // namespace
