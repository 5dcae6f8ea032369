#pragma once

#include <QString>
#include <vector>

class Item;

/// The texts of the reminder bubble.
namespace BubbleContent {

/// The 0x00BBGGRR value of an item colour index; the caller's colour table.
using ColourRef = quint32 (*)(int index);

/// The bubble's HTML for the due Items, in due order: one reminder gets its
/// entry and the "Dismiss All" button, two a table of entries with the
/// button, three or more only the count and the "View Reminders" link. An
/// entry is the name (in the item's colour when it has one, italic when the
/// item is) over its due date, or its reminder date when it has none, in the
/// user's short date format. Names go in as they are.
QString body(const std::vector<Item *> &due, ColourRef colourRef);

/// The same news for a desktop notification, in the little markup such
/// notifications take (bold only, names escaped): one line of name and date
/// per reminder, or the count for three or more.
QString notificationBody(const std::vector<Item *> &due);

/// The command a bubble link or button names ("cmd:1991" gives 1991), or 0.
int commandOf(const QString &target);

} // namespace BubbleContent
