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
                       "Exit status: 0 saved, 1, 2 or 4 as for 'check', 5 the save failed, 6 another program "
                       "held the document (QBX_LOCK_TIMEOUT seconds, 30 by default), 7 the file changed on disk "
                       "meanwhile (--force saves anyway)."));
    parser.addOption(DocumentLoading::forceOption());
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The .qbx document."));
    parser.addPositionalArgument(QStringLiteral("OUT"), QStringLiteral("Where to write (default: FILE)."),
                                 QStringLiteral("[OUT]"));
    if (const int status = DocumentLoading::parse(parser, arguments, "resave", 1, 2); status >= 0)
        return status;
    const QStringList paths = parser.positionalArguments();
    const bool force = parser.isSet(QStringLiteral("force"));
    Document document;
    if (paths.size() == 1 || SafeSave::sameFile(paths.at(0), paths.at(1))) {
        DocumentLoading::Update update(paths.at(0));
        if (const int status = DocumentLoading::loadForUpdate(&update, &document))
            return status;
        return DocumentLoading::saveUpdate(update, document, force);
    }
    if (const int status = DocumentLoading::load(paths.at(0), &document))
        return status;
    // OUT is another document: it gets its own lock for the write.
    DocumentLock lock(paths.at(1));
    QString error;
    if (!lock.lock(DocumentLoading::lockTimeoutMs(), &error)) {
        QTextStream(stderr) << "qbx: " << error << "\n";
        return ExitCode::Locked;
    }
    if (!DocumentFile::save(document, paths.at(1), &error)) {
        DocumentLoading::reportWriteFailure(Messages::SaveFailed, error);
        return ExitCode::WriteFailed;
    }
    return ExitCode::Ok;
}

const CliCommand command("resave", "Write a document again in the current format", run);

} // namespace
