#include "cli/clicommand.h"
#include "cli/documentloading.h"
#include "cli/optionvalues.h"
#include "reminders/remindermanager.h"
#include "reminders/remindertimeline.h"

#include <unordered_map>

namespace {

const QString TimeFormat = QStringLiteral("yyyy-MM-dd HH:mm:ss");

bool readTime(const QCommandLineParser &parser, const QString &option, QDateTime *time)
{
    *time = QDateTime::fromString(parser.value(option), TimeFormat);
    if (!time->isValid())
        return OptionValues::fail(QStringLiteral("--%1 takes a local time \"YYYY-MM-DD HH:MM:SS\"").arg(option));
    return true;
}

QString minute(const QDateTime &time)
{
    return time.toString(QStringLiteral("yyyy-MM-dd HH:mm"));
}

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Prints the reminder list of the document as the application builds it on opening the file at --at: one "
        "line per item in list order, \"POSITION<TAB>YYYY-MM-DD HH:MM<TAB>NAME\" (position as 'qbx find' gives "
        "it). With --until, then every bubble the application would show from --at to --until if nobody touched "
        "anything, in time order, as \"bubble<TAB>YYYY-MM-DD HH:MM<TAB>POS,POS,...\": the time of the wake-up "
        "and the positions of its items in the order they fell due. Times are local.\n"
        "Exit status: 0 done, 1 the file is damaged, 2 a bad option or an unsupported version, 4 not found."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The .qbx document."));
    parser.addOptions({
        {QStringLiteral("at"), QStringLiteral("When the document is opened (default: now)."),
         QStringLiteral("\"YYYY-MM-DD HH:MM:SS\"")},
        {QStringLiteral("until"), QStringLiteral("Follow the reminders up to this time."),
         QStringLiteral("\"YYYY-MM-DD HH:MM:SS\"")},
    });
    if (const int status = DocumentLoading::parse(parser, arguments, "reminders", 1, 1); status >= 0)
        return status;
    QDateTime at = QDateTime::currentDateTime();
    QDateTime until;
    if (parser.isSet(QStringLiteral("at")) && !readTime(parser, QStringLiteral("at"), &at))
        return 2;
    if (parser.isSet(QStringLiteral("until"))) {
        if (!readTime(parser, QStringLiteral("until"), &until))
            return 2;
        if (until < at) {
            OptionValues::fail(QStringLiteral("--until is before --at"));
            return 2;
        }
    }
    Document document;
    if (const int status = DocumentLoading::load(parser.positionalArguments().at(0), &document))
        return status;

    ReminderManager manager(&document);
    manager.load();
    const std::vector<Item *> listed = manager.reminders();
    // The listed Items are the only ones a bubble can hold: one walk numbers them.
    std::unordered_map<const Item *, qint64> positions;
    for (const Item *item : listed)
        positions.emplace(item, 0);
    qint64 position = 0;
    size_t numbered = 0;
    TreeWalker walker(document.root());
    while (numbered < positions.size()) {
        const Item *item = walker.next();
        if (!item)
            break;
        ++position;
        const auto it = positions.find(item);
        if (it != positions.end()) {
            it->second = position;
            ++numbered;
        }
    }

    OptionValues::Output out;
    for (const Item *item : listed) {
        out.line(QString::number(positions[item]) + QLatin1Char('\t') + minute(item->reminderTime().toDateTime()) +
                 QLatin1Char('\t') + item->name());
    }
    if (!until.isValid())
        return 0;
    const std::vector<ReminderTimeline::Bubble> bubbles = ReminderTimeline::run(manager, at, until);
    for (const ReminderTimeline::Bubble &bubble : bubbles) {
        QStringList numbers;
        for (const Item *item : bubble.items)
            numbers.append(QString::number(positions[item]));
        out.line(QLatin1String("bubble\t") + minute(bubble.wake) + QLatin1Char('\t') + numbers.join(QLatin1Char(',')));
    }
    return 0;
}

const CliCommand command("reminders", "The reminder list and the bubbles a stretch of time would bring", run);

} // namespace
