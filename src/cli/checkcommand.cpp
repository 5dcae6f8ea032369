#include "cli/clicommand.h"
#include "cli/documentloading.h"

namespace {

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Loads a document and reports the result in one line.\n"
                       "Exit status: 0 loaded, 1 unreadable or damaged, 2 unsupported version, 4 not found."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The .qbx document."));
    if (const int status = DocumentLoading::parse(parser, arguments, "check", 1, 1); status >= 0)
        return status;
    const QString path = parser.positionalArguments().at(0);
    Document document;
    if (const int status = DocumentLoading::load(path, &document))
        return status;
    int items = 0;
    document.root()->forEachDescendant([&items](const Item *) { ++items; });
    QTextStream(stdout) << path << ": loaded, version " << document.version << ", " << items
                        << (items == 1 ? " item" : " items")
                        << (document.passwordHash.isEmpty() ? "" : ", password protected") << "\n";
    return 0;
}

const CliCommand command("check", "Load a document and report whether it is sound", run);

} // namespace
