#include "cli/clicommand.h"
#include "cli/exitcodes.h"
#include "storage/safesave.h"
#include "model/document.h"
#include "platform/largeheap.h"

#include <QCoreApplication>
#include <QTextStream>
#include <algorithm>
#include <cstring>
#include <new>

CliCommand::CliCommand(const char *n, const char *s, Run r) : name(n), summary(s), run(r)
{
    all().push_back(this);
}

std::vector<const CliCommand *> &CliCommand::all()
{
    static std::vector<const CliCommand *> commands;
    return commands;
}

namespace {
void printUsage(QTextStream &out)
{
    out << "Usage: qbx COMMAND [OPTIONS] ...\n\nQuillbox documents from the command line.\n\nCommands:\n";
    auto commands = CliCommand::all();
    std::sort(commands.begin(), commands.end(),
              [](const CliCommand *a, const CliCommand *b) { return std::strcmp(a->name, b->name) < 0; });
    for (const CliCommand *command : commands)
        out << "  " << QString::fromLatin1(command->name).leftJustified(16) << command->summary << "\n";
    out << "\nRun 'qbx COMMAND --help' for a command's options.\n";
}
} // namespace

int main(int argc, char **argv)
{
    LargeHeap::enable(argv);
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Quillbox"));
    QCoreApplication::setApplicationName(QStringLiteral("Quillbox"));
    QCoreApplication::setApplicationVersion(QStringLiteral(QUILLBOX_VERSION));
    // Every document lives until the command ends, and the process ends with
    // it: freeing a million items one by one would only make the user wait.
    Document::keepTreesUntilExit();
    QStringList arguments = QCoreApplication::arguments();
    QTextStream out(stdout);
    if (arguments.size() < 2 || arguments[1] == QLatin1String("--help") || arguments[1] == QLatin1String("-h")) {
        printUsage(out);
        return arguments.size() < 2 ? 2 : 0;
    }
    if (arguments[1] == QLatin1String("--version")) {
        out << "qbx " << QUILLBOX_VERSION << "\n";
        return 0;
    }
    // An interrupted save leaves no temporary file behind.
    SafeSave::removeTemporaryOnSignals();
    for (const CliCommand *command : CliCommand::all()) {
        if (arguments[1] == QLatin1String(command->name)) {
            arguments.removeAt(1); // the command sees "qbx" followed by its own arguments
            // Loads and imports turn a lack of memory into their own
            // messages; anything else that runs out ends here, not by a signal.
            try {
                return command->run(arguments);
            } catch (const std::bad_alloc &) {
                QTextStream(stderr) << "qbx: out of memory\n";
                return ExitCode::OutOfMemory;
            }
        }
    }
    QTextStream(stderr) << "qbx: unknown command '" << arguments[1] << "'\n";
    printUsage(out);
    return 2;
}
