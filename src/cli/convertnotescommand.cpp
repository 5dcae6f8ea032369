#include "cli/clicommand.h"
#include "cli/documentloading.h"
#include "cli/notetypes.h"
#include "notes/noteconverter.h"
#include "platform/messages.h"

namespace {

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Converts every note of a document to another note type and saves it: all notes or none, so on "
        "failure the file keeps the notes it had. Converting to plain text drops formatting, drawings and "
        "recordings.\n"
        "Exit status: 0 converted, 1, 2 or 4 as for 'check', 3 the conversion failed, 5 the save failed, 6 another "
        "program held the document, 7 the file changed on disk meanwhile (--force saves anyway)."));
    const QCommandLineOption to(QStringLiteral("to"), QStringLiteral("0 plain, 1 ink, 2 rich."), QStringLiteral("T"));
    parser.addOption(to);
    parser.addOption(DocumentLoading::forceOption());
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The .qbx document."));
    if (const int status = DocumentLoading::parse(parser, arguments, "convert-notes", 1, 1); status >= 0)
        return status;
    QTextStream err(stderr);
    quint16 target = 0;
    if (!parser.isSet(to) || !NoteTypes::parse(parser.value(to), &target)) {
        err << "qbx: --to is 0 (plain), 1 (ink) or 2 (rich)\n";
        return 2;
    }
    const QString path = parser.positionalArguments().at(0);
    Document document;
    DocumentLoading::Update update(path);
    if (const int status = DocumentLoading::loadForUpdate(&update, &document))
        return status;
    NoteConverter converter;
    if (!converter.convertDocument(document, target)) {
        err << Messages::NoteConversionFailed << "\n";
        return 3;
    }
    if (const int status = DocumentLoading::saveUpdate(update, document, parser.isSet(QStringLiteral("force")),
                                                       Messages::NoteConversionFailed))
        return status;
    QTextStream(stdout) << Messages::NoteConversionDone << "\n";
    return 0;
}

const CliCommand command("convert-notes", "Convert every note of a document to another note type", run);

} // namespace
