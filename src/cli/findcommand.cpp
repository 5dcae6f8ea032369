#include "cli/clicommand.h"
#include "cli/documentloading.h"
#include "cli/optionvalues.h"
#include "platform/messages.h"
#include "views/finder.h"

#include <QDate>

namespace {

// "--due OP DATE" takes two values; the parser knows options of one, so the
// pair is joined first ("--due=OP DATE").
QStringList joinDueValues(const QStringList &arguments)
{
    QStringList joined;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        static const QStringList operators = {QStringLiteral("lt"), QStringLiteral("eq"), QStringLiteral("gt")};
        if (arguments[i] == QLatin1String("--due") && i + 2 < arguments.size() &&
            operators.contains(arguments[i + 1])) {
            joined.append(QStringLiteral("--due=") + arguments[i + 1] + QLatin1Char(' ') + arguments[i + 2]);
            i += 2;
        } else {
            joined.append(arguments[i]);
        }
    }
    return joined;
}

bool readDue(const QString &value, FindCriteria *criteria)
{
    const QStringList parts = value.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    static const QStringList operators = {QStringLiteral("lt"), QStringLiteral("eq"), QStringLiteral("gt")};
    const qsizetype op = parts.size() == 2 ? operators.indexOf(parts[0]) : -1;
    const QDate day = parts.size() == 2 ? QDate::fromString(parts[1], Qt::ISODate) : QDate();
    if (op < 0 || !day.isValid())
        return OptionValues::fail(QStringLiteral("--due takes lt, eq or gt and a date YYYY-MM-DD"));
    criteria->flags |= FindCriteria::DueDate;
    criteria->dateOperator = FindCriteria::DateOperator(op);
    criteria->date = SystemTime::fromDateTime(QDateTime(day, QTime(0, 0)));
    return true;
}

bool readCriteria(const QCommandLineParser &parser, FindCriteria *c)
{
    const auto isSet = [&parser](const char *name) { return parser.isSet(QLatin1String(name)); };
    c->caseInsensitive = isSet("case-insensitive");
    if (isSet("name")) {
        c->name = parser.value(QStringLiteral("name"));
        if (!c->name.isEmpty())
            c->flags |= FindCriteria::Name;
    }
    if (isSet("priority")) {
        int priority = 0;
        if (!OptionValues::number(parser, QStringLiteral("priority"), 1, 20, &priority))
            return false;
        c->flags |= FindCriteria::Priority;
        c->priority = quint16(priority);
    }
    if (isSet("category")) {
        c->flags |= FindCriteria::Category;
        c->category = parser.value(QStringLiteral("category"));
    }
    if (isSet("due") && !readDue(parser.value(QStringLiteral("due")), c))
        return false;
    if (isSet("note")) {
        c->notePhrase = parser.value(QStringLiteral("note"));
        if (!c->notePhrase.isEmpty())
            c->flags |= FindCriteria::NotePhrase;
    }
    if (isSet("completed") && isSet("not-started"))
        return OptionValues::fail(QStringLiteral("--completed and --not-started exclude each other"));
    if (isSet("completed") || isSet("not-started")) {
        c->flags |= FindCriteria::Progress;
        c->progress = isSet("completed") ? 100 : 0;
    }
    if (isSet("colour")) {
        int colour = 0;
        if (!OptionValues::number(parser, QStringLiteral("colour"), 0, 35, &colour))
            return false;
        c->flags |= FindCriteria::Colour;
        c->colour = quint16(colour);
    }
    if (isSet("italic")) {
        if (!OptionValues::yesNo(parser, QStringLiteral("italic"), &c->italic))
            return false;
        c->flags |= FindCriteria::Italic;
    }
    if (isSet("show-icon")) {
        if (!OptionValues::yesNo(parser, QStringLiteral("show-icon"), &c->showIcon))
            return false;
        c->flags |= FindCriteria::ShowIcon;
    }
    return true;
}

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Finds the items that meet every criterion given and prints each as its position (1 for "
                       "the first item of the file, the root not counted), a tab and its name, in the file's "
                       "order. Items the document's filters hide are left out.\n"
                       "Exit status: 0 found, 1 nothing matched (or the file is damaged), 2 a bad option or an "
                       "unsupported version, 4 not found."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The .qbx document."));
    parser.addOptions({
        {QStringLiteral("name"), QStringLiteral("Text the name contains."), QStringLiteral("TEXT")},
        {QStringLiteral("case-insensitive"), QStringLiteral("Name and note texts compare without case.")},
        {QStringLiteral("priority"), QStringLiteral("Priority 1 to 20."), QStringLiteral("N")},
        {QStringLiteral("category"), QStringLiteral("The category, exactly (case counts)."), QStringLiteral("TEXT")},
        {QStringLiteral("due"), QStringLiteral("Due before (lt), on (eq) or after (gt) a day: --due eq 2024-03-05."),
         QStringLiteral("OP DATE")},
        {QStringLiteral("note"), QStringLiteral("A phrase the note contains."), QStringLiteral("TEXT")},
        {QStringLiteral("completed"), QStringLiteral("Progress 100.")},
        {QStringLiteral("not-started"), QStringLiteral("Progress 0.")},
        {QStringLiteral("colour"), QStringLiteral("Colour index 0 to 35."), QStringLiteral("N")},
        {QStringLiteral("italic"), QStringLiteral("Italic or not."), QStringLiteral("yes|no")},
        {QStringLiteral("show-icon"), QStringLiteral("Icon shown or not."), QStringLiteral("yes|no")},
    });
    if (const int status = DocumentLoading::parse(parser, joinDueValues(arguments), "find", 1, 1); status >= 0)
        return status;
    FindCriteria criteria;
    if (!readCriteria(parser, &criteria))
        return 2;
    Document document;
    if (const int status = DocumentLoading::load(parser.positionalArguments().at(0), &document))
        return status;

    const std::vector<Item *> matches = Finder::search(document, criteria);
    if (matches.empty()) {
        QTextStream(stderr) << Messages::NoMatch << "\n";
        return 1;
    }
    // The matches are in the tree's order, so one walk numbers them all.
    OptionValues::Output out;
    size_t next = 0;
    qint64 position = 0;
    TreeWalker walker(document.root());
    while (const Item *item = walker.next()) {
        ++position;
        if (item == matches[next]) {
            out.line(QString::number(position) + QLatin1Char('\t') + item->name());
            if (++next == matches.size())
                break;
        }
    }
    out.flush();
    return StandardOutput::finish(ExitCode::Ok);
}

const CliCommand command("find", "Find the items that meet every given criterion", run);

} // namespace
