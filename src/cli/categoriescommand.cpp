#include "cli/clicommand.h"
#include "cli/documentloading.h"
#include "cli/optionvalues.h"
#include "integration/calendarstore.h"

#include <QProcessEnvironment>

namespace {

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Prints the categories a category chooser offers, one a line: the document's own in order, "
                       "then, with --store, the calendar's categories that the document does not already have "
                       "(case counts). A calendar that cannot be reached adds nothing.\n"
                       "The CalDAV password comes from the environment variable QUILLBOX_CALDAV_PASSWORD.\n"
                       "Exit status: 0, or 1, 2 or 4 as for 'check'."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The .qbx document."));
    parser.addOptions({
        {QStringLiteral("store"), QStringLiteral("The calendar: a folder or a CalDAV collection URL."),
         QStringLiteral("STORE")},
        {QStringLiteral("user"), QStringLiteral("The CalDAV user name."), QStringLiteral("NAME")},
    });
    if (const int status = DocumentLoading::parse(parser, arguments, "categories", 1, 1); status >= 0)
        return status;
    Document document;
    if (const int status = DocumentLoading::load(parser.positionalArguments().at(0), &document))
        return status;
    std::unique_ptr<CalendarStore> store;
    if (parser.isSet(QStringLiteral("store"))) {
        const QString password =
            QProcessEnvironment::systemEnvironment().value(QStringLiteral("QUILLBOX_CALDAV_PASSWORD"));
        store =
            CalendarStore::open(parser.value(QStringLiteral("store")), parser.value(QStringLiteral("user")), password);
    }
    OptionValues::Output out;
    const QStringList list = CalendarStore::categoryList(document, bool(store), store.get());
    for (const QString &name : list)
        out.line(name);
    return 0;
}

const CliCommand command("categories", "The categories offered when choosing one, with a calendar's", run);

} // namespace
