#pragma once

// A note tree as text, one line per Item, walked without recursion: the depth (1 for a child of the root), a space, the
// name, then what the outline exchanges keep, each only when it differs from a new Item's: [x] checked, [-] no status,
// [N%] a progress bar, !N the priority, @category, ^due date, <link> each link that is not an item link, {note} with LF
// line ends.

#include "model/item.h"
#include "model/treewalker.h"
#include "notes/notetext.h"

#include <QStringList>

namespace TreeSummary {

struct Keep {
    bool priority = true;
    bool category = true;
    bool due = true;
    bool links = true;
    bool allLinks = true; ///< else only the first
};

inline QString line(const Item &item, quint16 noteType, const Keep &keep = {})
{
    QString out = item.name();
    if (item.statusType() == Item::NoStatus)
        out += QLatin1String("[-]");
    else if (item.statusType() == Item::ProgressBar)
        out += QStringLiteral("[%1%]").arg(item.progress());
    else if (item.isComplete())
        out += QLatin1String("[x]");
    if (keep.priority && item.priority() != 10)
        out += QStringLiteral("!%1").arg(item.priority());
    if (keep.category && !item.category().isEmpty())
        out += QLatin1Char('@') + item.category();
    if (keep.due && item.hasDueDate())
        out += QLatin1Char('^') + item.dueDate().toDate().toString(Qt::ISODate);
    if (keep.links) {
        for (const QString &link : item.links()) {
            if (Item::isItemLink(link))
                continue;
            out += QLatin1Char('<') + link + QLatin1Char('>');
            if (!keep.allLinks)
                break;
        }
    }
    if (item.noteSize() > 0) {
        QString note = NoteText::plainText(item.note(), noteType);
        note.replace(QLatin1String("\r\n"), QLatin1String("\n"));
        out += QLatin1Char('{') + note + QLatin1Char('}');
    }
    return out;
}

inline QString of(const TreeNode *root, quint16 noteType, const Keep &keep = {})
{
    QString out;
    TreeWalker walker(root);
    while (const Item *item = walker.next()) {
        out += QString::number(walker.depth()) + QLatin1Char(' ');
        out += line(*item, noteType, keep);
        out += QLatin1Char('\n');
    }
    return out;
}

} // namespace TreeSummary
