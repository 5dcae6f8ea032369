#pragma once

// Test helpers: a note tree as an indented outline, two spaces a level, each line "name" or "name | field=value ...".
// Fields: cat, pri, due and made (creation; YYYY-MM-DD[THH:MM]), prog, st (status type), col, sort, desc, auto, italic,
// noicon, exp (expanded), note ('_' for spaces), rem and rem0 (a reminder, pending or dismissed: seconds field 1 or 0).

#include "model/document.h"
#include "model/treewalker.h"
#include "notes/notetext.h"
#include "views/viewrows.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QStringList>
#include <map>
#include <span>
#include <vector>

namespace Outline {

inline SystemTime date(const QString &text, int seconds = 0)
{
    QDateTime time = QDateTime::fromString(text, Qt::ISODate);
    if (!time.isValid())
        time = QDateTime(QDate::fromString(text, Qt::ISODate), QTime(0, 0));
    return SystemTime::fromDateTime(time.addSecs(seconds));
}

/// A time written "YYYY-MM-DD HH:MM:SS", with ".ZZZ" milliseconds or not.
inline QDateTime at(const char *text)
{
    const QString time = QString::fromLatin1(text);
    return QDateTime::fromString(time, time.size() > 19 ? QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz")
                                                        : QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

inline void setFields(Item *item, const QString &fields)
{
    using Set = void (*)(Item *, const QString &);
    static const std::map<QString, Set> setters = {
        {"cat", [](Item *i, const QString &v) { i->setCategory(v); }},
        {"pri", [](Item *i, const QString &v) { i->setPriority(v.toUShort()); }},
        {"due", [](Item *i, const QString &v) { i->setDueDate(date(v)); }},
        {"made", [](Item *i, const QString &v) { i->setCreated(date(v)); }},
        {"prog", [](Item *i, const QString &v) { i->storeProgress(v.toUShort()); }},
        {"st", [](Item *i, const QString &v) { i->setStatusType(v.toUShort()); }},
        {"col", [](Item *i, const QString &v) { i->setColour(v.toUShort()); }},
        {"sort", [](Item *i, const QString &v) { i->setSort(v.toUShort()); }},
        {"desc", [](Item *i, const QString &) { i->setAscending(false); }},
        {"auto", [](Item *i, const QString &) { i->setAutoProgress(true); }},
        {"italic", [](Item *i, const QString &) { i->setItalic(true); }},
        {"noicon", [](Item *i, const QString &) { i->setShowIcon(false); }},
        {"exp", [](Item *, const QString &) {}}, // set by build once the children are in
        {"rem", [](Item *i, const QString &v) { i->setReminderTime(date(v, 1)); }},
        {"rem0", [](Item *i, const QString &v) { i->setReminderTime(date(v)); }},
        {"note", [](Item *i, const QString &v) { i->setNote(NoteText::toPlainNote(QString(v).replace('_', ' '))); }}};
    for (const QString &part : fields.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const auto setter = setters.find(part.section(QLatin1Char('='), 0, 0));
        if (setter == setters.end())
            qFatal("unknown outline field %s", qPrintable(part));
        setter->second(item, part.section(QLatin1Char('='), 1));
    }
}

/// Appends the outline's items under root, in order.
inline void build(TreeNode *root, const char *outline)
{
    std::vector<TreeNode *> parents{root};
    std::vector<Item *> expand;
    const QStringList lines = QString::fromUtf8(outline).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        const qsizetype spaces = line.indexOf(QRegularExpression(QStringLiteral("[^ ]")));
        const size_t level = size_t(spaces / 2) + 1;
        if (level > parents.size())
            qFatal("outline skips a level: %s", qPrintable(line));
        parents.resize(level);
        const QString body = line.mid(spaces);
        auto *item = new Item(body.section(QLatin1Char('|'), 0, 0).trimmed());
        setFields(item, body.section(QLatin1Char('|'), 1));
        if (body.section(QLatin1Char('|'), 1).contains(QLatin1String("exp")))
            expand.push_back(item);
        parents.back()->appendChild(item);
        parents.push_back(item);
    }
    for (Item *item : expand)
        item->setExpanded(true);
}

/// The first item of that name, in pre-order.
inline Item *find(const TreeNode *root, const QString &name)
{
    TreeWalker walker(root);
    while (Item *item = walker.next()) {
        if (item->name() == name)
            return item;
    }
    qFatal("no item named %s", qPrintable(name));
    return nullptr;
}

/// Every field an Item stores but its children and creation date, on one
/// line, for comparing two items or an item with a hand-written line.
inline QString fields(const Item &item)
{
    const auto n = [](auto value) { return QString::number(value); };
    const auto time = [&](const SystemTime &t) {
        QStringList parts;
        for (quint16 field : t.fields())
            parts.append(n(field));
        return parts.join(QLatin1Char('.'));
    };
    return item.name() + " pri=" + n(item.priority()) + " cat=" + item.category() + " img=" + n(item.image()) +
           " col=" + n(item.colour()) + " st=" + n(item.statusType()) + " prog=" + n(item.progress()) +
           " flags=" + n(item.flags()) + " sort=" + n(item.sort()) + " asc=" + n(item.isAscending()) +
           " exp=" + n(item.isExpanded()) + " due=" + time(item.dueDate()) + " rem=" + time(item.reminderTime()) +
           " time=" + item.taskTime() + '/' + n(item.taskTimeType()) +
           " extra=" + QString::number(item.extraWord(), 16) + " links=" + item.links().join(',') +
           " note=" + QString::fromLatin1(item.note().toHex());
}

/// A document holding the outline's items, which it finds by name.
struct Doc : Document {
    explicit Doc(const char *outline) { build(root(), outline); }
    Item *operator[](const char *name) const { return find(root(), QString::fromUtf8(name)); }
};

/// The rows of a view, each indented two spaces a level.
inline QStringList rowTexts(const ViewRows &rows)
{
    QStringList out;
    for (int i = 0; i < rows.count(); ++i)
        out.append(QString(rows.row(i).level * 2, QLatin1Char(' ')) + rows.text(i));
    return out;
}

inline QStringList names(std::span<Item *const> items)
{
    QStringList out;
    for (const Item *item : items)
        out.append(item->name());
    return out;
}

} // namespace Outline
