#include "cli/clicommand.h"
#include "cli/documentloading.h"
#include "cli/optionvalues.h"
#include "platform/messages.h"
#include "views/applyattributes.h"

namespace {

bool readStatus(const QString &text, quint16 *status)
{
    static const QStringList names = {QStringLiteral("none"), QStringLiteral("checkbox"),
                                      QStringLiteral("progressbar")};
    const qsizetype index = names.indexOf(text);
    if (index < 0)
        return OptionValues::fail(QStringLiteral("--status takes none, checkbox or progressbar"));
    *status = quint16(index);
    return true;
}

bool readSet(const QCommandLineParser &parser, AttributeSet *set)
{
    const auto isSet = [&parser](const char *name) { return parser.isSet(QLatin1String(name)); };
    int n = 0;
    if (isSet("priority")) {
        if (!OptionValues::number(parser, QStringLiteral("priority"), 1, 20, &n))
            return false;
        set->flags |= AttributeSet::Priority;
        set->priority = quint16(n);
    }
    if (isSet("category")) {
        set->flags |= AttributeSet::Category;
        set->category = parser.value(QStringLiteral("category"));
    }
    if (isSet("icon")) {
        if (!OptionValues::number(parser, QStringLiteral("icon"), 0, 65535, &n))
            return false;
        set->flags |= AttributeSet::Icon;
        set->icon = quint16(n);
    }
    if (isSet("colour")) {
        if (!OptionValues::number(parser, QStringLiteral("colour"), 0, 35, &n))
            return false;
        set->flags |= AttributeSet::Colour;
        set->colour = quint16(n);
    }
    if (isSet("automatic")) {
        if (!OptionValues::yesNo(parser, QStringLiteral("automatic"), &set->automatic))
            return false;
        set->flags |= AttributeSet::Automatic;
    }
    if (isSet("progress")) {
        if (!OptionValues::number(parser, QStringLiteral("progress"), 0, 100, &n))
            return false;
        set->flags |= AttributeSet::Progress;
        set->progress = quint16(n);
    }
    if (isSet("status")) {
        if (!readStatus(parser.value(QStringLiteral("status")), &set->statusType))
            return false;
        set->flags |= AttributeSet::StatusType;
    }
    if (isSet("show-icon")) {
        if (!OptionValues::yesNo(parser, QStringLiteral("show-icon"), &set->showIcon))
            return false;
        set->flags |= AttributeSet::ShowIcon;
    }
    if (isSet("italic")) {
        if (!OptionValues::yesNo(parser, QStringLiteral("italic"), &set->italic))
            return false;
        set->flags |= AttributeSet::Italic;
    }
    set->allSubItems = isSet("all-subitems");
    return true;
}

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Sets the given attributes on every child of an item (with --all-subitems, on every item "
                       "below it) and writes the document back; the item itself is not changed. Progress rolls "
                       "up through automatic items; --progress also stores the automatic flag (manual unless "
                       "--automatic yes).\n"
                       "Exit status: 0 written, 1, 2 or 4 as for 'check', 2 also for a bad option or position, "
                       "5 the save failed."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The .qbx document."));
    parser.addOption(DocumentLoading::forceOption());
    parser.addOptions({
        {QStringLiteral("to"), QStringLiteral("The item, by its position (1 for the first item of the file)."),
         QStringLiteral("POSITION")},
        {QStringLiteral("priority"), QStringLiteral("Priority 1 to 20."), QStringLiteral("N")},
        {QStringLiteral("category"), QStringLiteral("Category text."), QStringLiteral("TEXT")},
        {QStringLiteral("icon"), QStringLiteral("Icon number."), QStringLiteral("N")},
        {QStringLiteral("colour"), QStringLiteral("Colour index 0 to 35."), QStringLiteral("N")},
        {QStringLiteral("progress"), QStringLiteral("Percent complete 0 to 100."), QStringLiteral("N")},
        {QStringLiteral("automatic"), QStringLiteral("Automatic progress or manual."), QStringLiteral("yes|no")},
        {QStringLiteral("status"), QStringLiteral("Status type."), QStringLiteral("none|checkbox|progressbar")},
        {QStringLiteral("show-icon"), QStringLiteral("Show the icon or hide it."), QStringLiteral("yes|no")},
        {QStringLiteral("italic"), QStringLiteral("Italic style or normal."), QStringLiteral("yes|no")},
        {QStringLiteral("all-subitems"), QStringLiteral("Apply to every item below, not only the children.")},
    });
    if (const int status = DocumentLoading::parse(parser, arguments, "apply", 1, 1); status >= 0)
        return status;
    if (!parser.isSet(QStringLiteral("to"))) {
        OptionValues::fail(QStringLiteral("--to POSITION is required"));
        return 2;
    }
    bool ok = false;
    const qint64 position = parser.value(QStringLiteral("to")).toLongLong(&ok);
    AttributeSet set;
    if (!readSet(parser, &set))
        return 2;

    const QString path = parser.positionalArguments().at(0);
    Document document;
    DocumentLoading::Update update(path);
    if (const int status = DocumentLoading::loadForUpdate(&update, &document))
        return status;
    Item *target = ok ? OptionValues::itemAt(document, position) : nullptr;
    if (!target) {
        OptionValues::fail(QStringLiteral("there is no item at position %1").arg(parser.value(QStringLiteral("to"))));
        return 2;
    }
    if (!target->hasChildren()) {
        OptionValues::fail(QStringLiteral("the item at position %1 has no sub-items").arg(position));
        return 2;
    }
    ApplyAttributes::apply(target, set);
    if (set.has(AttributeSet::Category))
        document.collectCategory(set.category);
    return DocumentLoading::saveUpdate(update, document, parser.isSet(QStringLiteral("force")));
}

const CliCommand command("apply", "Set attributes on the children or the whole branch of an item", run);

} // namespace
