#include "reminders/bubblecontent.h"

#include "model/item.h"
#include "platform/messages.h"

#include <QLocale>

namespace BubbleContent {

namespace {

// Puts args in place of {0}, {1}, ... in one pass, so that a name holding
// "{1}" stays as typed.
QString fill(const QString &pattern, const QStringList &args)
{
    QString out;
    out.reserve(pattern.size() + 64);
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        if (pattern[i] == QLatin1Char('{') && i + 2 < pattern.size() && pattern[i + 2] == QLatin1Char('}') &&
            pattern[i + 1].isDigit()) {
            const int n = pattern[i + 1].digitValue();
            if (n < args.size()) {
                out += args[n];
                i += 2;
                continue;
            }
        }
        out += pattern[i];
    }
    return out;
}

QString shownName(const Item *item, ColourRef colourRef)
{
    QString name = item->name();
    if (item->colour() > 0) {
        const quint32 c = colourRef ? colourRef(item->colour()) : 0;
        name = QString::asprintf("<font color=\"#%02X%02X%02X\">", c & 0xFF, (c >> 8) & 0xFF, (c >> 16) & 0xFF) + name +
               QLatin1String("</font>");
    }
    if (item->isItalic())
        name = QLatin1String("<i>") + name + QLatin1String("</i>");
    return name;
}

QString shownDate(const Item *item)
{
    const SystemTime date = item->hasDueDate() ? item->dueDate() : item->reminderTime();
    return QLocale().toString(date.toDate(), QLocale::ShortFormat);
}

} // namespace

QString body(const std::vector<Item *> &due, ColourRef colourRef)
{
    const size_t k = due.size();
    if (k >= 3)
        return QString::fromLatin1(Messages::ReminderCountPage).replace(QLatin1String("%d"), QString::number(k));
    if (k == 1) {
        const QString entry =
            fill(QString::fromLatin1(Messages::ReminderSingleEntry), {shownName(due[0], colourRef), shownDate(due[0])});
        return fill(QString::fromLatin1(Messages::ReminderPageSingle), {entry});
    }
    QString entries;
    for (size_t i = 0; i < k; ++i) {
        const QString separator = i + 1 < k ? QString::fromLatin1(Messages::ReminderSeparator) : QString();
        entries += fill(QString::fromLatin1(Messages::ReminderTableEntry),
                        {shownName(due[i], colourRef), shownDate(due[i]), separator});
    }
    return fill(QString::fromLatin1(Messages::ReminderPageTable), {entries});
}

QString notificationBody(const std::vector<Item *> &due)
{
    if (due.size() >= 3)
        return QStringLiteral("There are %1 reminders.").arg(due.size());
    QStringList lines;
    for (const Item *item : due)
        lines.append(QLatin1String("<b>") + item->name().toHtmlEscaped() + QLatin1String("</b> ") + shownDate(item));
    return lines.join(QLatin1Char('\n'));
}

int commandOf(const QString &target)
{
    if (!target.startsWith(QLatin1String("cmd:")))
        return 0;
    bool ok = false;
    const int id = QStringView(target).mid(4).toInt(&ok);
    return ok ? id : 0;
}

} // namespace BubbleContent
