#include "cli/clicommand.h"
#include "cli/exitcodes.h"
#include "cli/documentloading.h"
#include "cli/optionvalues.h"
#include "integration/calendarstore.h"
#include "platform/messages.h"

#include <QProcessEnvironment>

namespace {

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Copies an item, or each of its direct children, into a calendar as a new task or "
                       "appointment: name, due date, category and note go over. The document is not changed.\n"
                       "STORE is a folder of .ics files or a CalDAV collection address; the CalDAV password "
                       "comes from the environment variable QUILLBOX_CALDAV_PASSWORD.\n"
                       "Exit status: 0 every object created, 1, 2 or 4 as for 'check', 2 also for a bad option "
                       "or position, 9 the calendar cannot be used or an object could not be created."));
    parser.addPositionalArgument(QStringLiteral("KIND"), QStringLiteral("task or appointment."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The .qbx document."));
    parser.addOptions({
        {QStringLiteral("to"), QStringLiteral("The item, by its position (1 for the first item of the file)."),
         QStringLiteral("POSITION")},
        {QStringLiteral("children"), QStringLiteral("One object for each direct child instead of the item.")},
        {QStringLiteral("store"), QStringLiteral("The calendar: a folder or a CalDAV collection URL."),
         QStringLiteral("STORE")},
        {QStringLiteral("user"), QStringLiteral("The CalDAV user name."), QStringLiteral("NAME")},
    });
    if (const int status = DocumentLoading::parse(parser, arguments, "create", 2, 2); status >= 0)
        return status;
    const QString kindName = parser.positionalArguments().at(0);
    if (kindName != QLatin1String("task") && kindName != QLatin1String("appointment")) {
        OptionValues::fail(QStringLiteral("KIND is task or appointment"));
        return 2;
    }
    const auto kind = kindName == QLatin1String("task") ? CalendarObject::Task : CalendarObject::Appointment;
    for (const char *required : {"to", "store"}) {
        if (!parser.isSet(QLatin1String(required))) {
            OptionValues::fail(QStringLiteral("--%1 is required").arg(QLatin1String(required)));
            return 2;
        }
    }

    const QString path = parser.positionalArguments().at(1);
    Document document;
    if (const int status = DocumentLoading::load(path, &document))
        return status;
    bool ok = false;
    const qint64 position = parser.value(QStringLiteral("to")).toLongLong(&ok);
    const Item *item = ok ? OptionValues::itemAt(document, position) : nullptr;
    if (!item) {
        OptionValues::fail(QStringLiteral("there is no item at position %1").arg(parser.value(QStringLiteral("to"))));
        return 2;
    }

    const QString password = QProcessEnvironment::systemEnvironment().value(QStringLiteral("QUILLBOX_CALDAV_PASSWORD"));
    const std::unique_ptr<CalendarStore> store =
        CalendarStore::open(parser.value(QStringLiteral("store")), parser.value(QStringLiteral("user")), password);
    QString error;
    if (!store->connect(&error)) {
        QTextStream(stderr) << QString::fromUtf8(Messages::CalendarUnreachable).arg(error) << "\n";
        return ExitCode::CalendarFailed;
    }
    const CalendarStore::CreateResult result =
        store->createFor(*item, document.noteType, kind, parser.isSet(QStringLiteral("children")));
    QTextStream out(stdout);
    if (result.allCreated()) {
        out << QString::fromUtf8(Messages::CalendarObjectsCreated).arg(result.created) << "\n";
        return 0;
    }
    out << QString::fromUtf8(Messages::CalendarObjectsFailed).arg(result.created).arg(result.failed()) << "\n";
    out.flush();
    QTextStream err(stderr);
    for (const QString &reason : result.errors)
        err << reason << "\n";
    return ExitCode::CalendarFailed;
}

const CliCommand command("create", "Copy an item or its children into a calendar as tasks or appointments", run);

} // namespace
