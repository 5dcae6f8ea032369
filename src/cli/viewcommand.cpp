#include "cli/clicommand.h"
#include "cli/documentloading.h"
#include "cli/optionvalues.h"
#include "views/viewrows.h"

namespace {

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Prints the rows of the main list fully expanded, one a line, two spaces of indent per "
                       "level: the root's name, then headings and item names. The document's filters (hidden "
                       "completed items, hidden status types) apply. Without options the document's own view "
                       "mode and order are used.\n"
                       "Exit status: 0 printed, 1, 2 or 4 as for 'check', 2 also for a bad option."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The .qbx document."));
    parser.addOption({QStringLiteral("mode"),
                      QStringLiteral("0 default view, 1 by category, 2 by task/due date, 3 by priority, "
                                     "4 by percent complete."),
                      QStringLiteral("N")});
    parser.addOption({QStringLiteral("order"),
                      QStringLiteral("Order of the items in each group: 0 name, 1 priority, 2 category, "
                                     "3 percent complete, 4 task/due date, 5 creation date."),
                      QStringLiteral("K")});
    parser.addOption({QStringLiteral("descending"), QStringLiteral("Groups and their items in descending order.")});
    parser.addOption({QStringLiteral("ascending"), QStringLiteral("Groups and their items in ascending order.")});
    if (const int status = DocumentLoading::parse(parser, arguments, "view", 1, 1); status >= 0)
        return status;
    int mode = -1;
    int order = -1;
    if (parser.isSet(QStringLiteral("mode")) && !OptionValues::number(parser, QStringLiteral("mode"), 0, 4, &mode))
        return 2;
    if (parser.isSet(QStringLiteral("order")) && !OptionValues::number(parser, QStringLiteral("order"), 0, 5, &order))
        return 2;
    if (parser.isSet(QStringLiteral("descending")) && parser.isSet(QStringLiteral("ascending"))) {
        OptionValues::fail(QStringLiteral("--ascending and --descending exclude each other"));
        return 2;
    }

    Document document;
    if (const int status = DocumentLoading::load(parser.positionalArguments().at(0), &document))
        return status;
    if (order >= 0)
        document.viewOrder = quint16(order);
    if (parser.isSet(QStringLiteral("descending")))
        document.viewAscending = false;
    if (parser.isSet(QStringLiteral("ascending")))
        document.viewAscending = true;
    ViewRows rows(document);
    rows.setViewMode(mode >= 0 ? quint16(mode) : document.viewMode, document.current());
    rows.expandAll();
    OptionValues::Output out;
    QString line;
    for (int i = 0; i < rows.count(); ++i) {
        line.fill(QLatin1Char(' '), rows.row(i).level * 2);
        line += rows.text(i);
        out.line(line);
    }
    out.flush();
    return StandardOutput::finish(ExitCode::Ok);
}

const CliCommand command("view", "Print the rows of a view, fully expanded", run);

} // namespace
