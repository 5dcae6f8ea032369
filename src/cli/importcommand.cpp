#include "cli/clicommand.h"
#include "cli/documentloading.h"
#include "cli/notetypes.h"
#include "cli/positions.h"
#include "exchange/documentimport.h"
#include "exchange/textimport.h"
#include "platform/messages.h"
#include "storage/password.h"
#include "storage/settings.h"

#include <QFileInfo>

namespace {

int importText(const QCommandLineParser &parser, const QStringList &args, const QCommandLineOption &noteType,
               const QCommandLineOption &icon, const QCommandLineOption &force)
{
    QTextStream err(stderr);
    Settings settings;
    settings.loadUserStore();
    quint16 type = TextImport::noteTypeOf(settings.textImport);
    if (parser.isSet(noteType) && !NoteTypes::parse(parser.value(noteType), &type)) {
        err << "qbx: --note-type is 0 (plain), 1 (ink) or 2 (rich)\n";
        return 2;
    }
    TextImport::Options options;
    options.icon = TextImport::iconOf(settings.textImport);
    options.codePage = settings.ansiCodePage;
    if (parser.isSet(icon)) {
        bool ok = false;
        const uint value = parser.value(icon).toUInt(&ok);
        if (!ok || value > 0xffff) {
            err << "qbx: --icon is a number from 0 to 65535\n";
            return 2;
        }
        options.icon = quint16(value);
    }
    const QString textPath = args.at(1);
    // An existing document is never replaced by accident.
    const QString documentPath = TextImport::documentPath(textPath);
    if (QFileInfo::exists(documentPath) && !parser.isSet(force)) {
        err << "qbx: " << documentPath << " already exists; --force replaces it\n";
        return 3;
    }
    Document document;
    const TextImport::Result result = TextImport::importDocument(textPath, type, options, &document);
    if (result != TextImport::Result::Ok) {
        err << TextImport::message(result) << "\n";
        return result == TextImport::Result::FormatError ? 3 : 1;
    }
    QString error;
    if (!DocumentFile::save(document, document.path, &error)) {
        err << Messages::SaveFailed << "\n" << error << "\n";
        return 5;
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
    if (const int status = DocumentLoading::load(args.at(1), &document))
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
    QString error;
    if (!DocumentFile::save(document, args.at(1), &error)) {
        err << Messages::SaveFailed << "\n" << error << "\n";
        return 5;
    }
    return 0;
}

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Imports into documents.\n"
        "  text TEXTFILE       an indented outline becomes a new document beside it (extension .qbx)\n"
        "  doc FILE OTHER      the items of document OTHER join FILE, under its current item or --into\n"
        "A protected OTHER reads its password from the first line of standard input. Notes of OTHER are "
        "converted to FILE's note type.\n"
        "Exit status: 0 done, 1 unreadable, 2 unsupported version or bad arguments, 3 refused (format error, "
        "existing document, wrong password), 4 not found, 5 the save failed."));
    const QCommandLineOption noteType(QStringLiteral("note-type"),
                                      QStringLiteral("text: note type of the new document, 0 plain, 1 ink, 2 rich "
                                                     "(default: the settings)."),
                                      QStringLiteral("T"));
    const QCommandLineOption icon(QStringLiteral("icon"),
                                  QStringLiteral("text: icon of every item (default: the settings)."),
                                  QStringLiteral("N"));
    const QCommandLineOption force(QStringLiteral("force"), QStringLiteral("text: replace an existing document."));
    const QCommandLineOption into(QStringLiteral("into"),
                                  QStringLiteral("doc: the position to import under (0 the root)."),
                                  QStringLiteral("POSITION"));
    parser.addOptions({noteType, icon, force, into});
    parser.addPositionalArgument(QStringLiteral("KIND"), QStringLiteral("text or doc."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The text file, or the .qbx document."));
    parser.addPositionalArgument(QStringLiteral("OTHER"), QStringLiteral("doc: the document to import."),
                                 QStringLiteral("[OTHER]"));
    if (const int status = DocumentLoading::parse(parser, arguments, "import", 2, 3); status >= 0)
        return status;
    const QStringList args = parser.positionalArguments();
    if (args.at(0) == QLatin1String("text") && args.size() == 2)
        return importText(parser, args, noteType, icon, force);
    if (args.at(0) == QLatin1String("doc"))
        return importDocument(parser, args, into);
    QTextStream(stderr) << "qbx: use 'import text TEXTFILE' or 'import doc FILE OTHER'\n";
    return 2;
}

const CliCommand command("import", "Import an indented text outline or another document", run);

} // namespace
