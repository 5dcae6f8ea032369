#include "cli/clicommand.h"
#include "cli/documentloading.h"
#include "platform/messages.h"

namespace {

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Loads a document of any readable version and writes it in the current format (551), "
                       "replacing the file only once the new one is complete.\n"
                       "Exit status: 0 saved, 1, 2 or 4 as for 'check', 5 the save failed."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The .qbx document."));
    parser.addPositionalArgument(QStringLiteral("OUT"), QStringLiteral("Where to write (default: FILE)."),
                                 QStringLiteral("[OUT]"));
    if (const int status = DocumentLoading::parse(parser, arguments, "resave", 1, 2); status >= 0)
        return status;
    const QStringList paths = parser.positionalArguments();
    Document document;
    if (const int status = DocumentLoading::load(paths.at(0), &document))
        return status;
    QString error;
    if (!DocumentFile::save(document, paths.value(1, paths.at(0)), &error)) {
        QTextStream(stderr) << Messages::SaveFailed << "\n" << error << "\n";
        return 5;
    }
    return 0;
}

const CliCommand command("resave", "Write a document again in the current format", run);

} // namespace
