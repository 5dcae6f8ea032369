#pragma once

#include "model/systemtime.h"

#include <QDateTime>
#include <vector>

class Document;
class Item;
class TreeNode;

/// The rules of an open document's reminders: which Items have one, which
/// have already been shown, when to wake up next and what is due then.
///
/// An Item's reminder lives in its ReminderTime; the seconds field doubles as
/// its state: 1 means pending, anything else none or dismissed, so a
/// reminder is kept to the minute. The lists name Items by handle and resolve
/// them through the document on every use, so an Item deleted from the tree
/// drops out at once and is never touched again.
///
/// Everything here runs on one thread; the caller passes in "now".
class ReminderManager {
public:
    /// How far ahead a wake-up is arranged; the ten-day timer of the caller
    /// moves the horizon on.
    static constexpr qint64 HorizonSeconds = 10 * 24 * 3600;

    /// What Reschedule asks for.
    struct Wake {
        enum Kind : quint8 {
            None, ///< nothing to wait for within the horizon
            Now,  ///< a candidate is not after now: check at once
            At,   ///< wake at time
        };
        Kind kind = None;
        QDateTime time;
    };

    explicit ReminderManager(const Document *document);

    /// Whether a ReminderTime is a pending reminder: seconds field 1 (and a date).
    static bool isPending(const SystemTime &reminder);
    /// The ReminderTime of a pending reminder at time's minute.
    static SystemTime pendingAt(const QDateTime &time);

    /// The list afresh from the document: every Item with a pending reminder,
    /// in the tree's order; the shown list empty.
    void load();
    /// An edit set, changed or cleared item's reminder: it leaves both lists
    /// and, when pending, joins the reminder list at the end. An unchanged
    /// reminder keeps its place. Returns whether the lists changed.
    bool itemChanged(Item *item);
    /// Items that arrived by an edit (paste, import, template): each pending
    /// one of the branch, top first, joins at the end.
    bool branchAdded(Item *top);
    /// Drops every entry whose Item is no longer in the document.
    bool purge();
    /// Ends one reminder (seconds field 0) and drops it from both lists.
    void dismiss(Item *item);

    /// The next wake-up, from the reminder list in its stored order: each
    /// pending Item not yet shown whose ReminderTime is before the horizon
    /// and before 3999-12-31 23:59 becomes the candidate in turn, so the last
    /// qualifying Item in list order wins, not the earliest.
    Wake reschedule(const QDateTime &now);
    /// The pending Items not yet shown whose ReminderTime is before now with
    /// its seconds set to 59, in list order; they join the shown list and are
    /// never due again until dismissAll().
    std::vector<Item *> checkDue(const QDateTime &now);
    /// Every shown Item's reminder ends (seconds field 0), the shown list
    /// empties and Items without a pending reminder leave the reminder list.
    void dismissAll();

    /// The live Items of the reminder list, in list order.
    std::vector<Item *> reminders() const;
    /// The live Items already shown, in the order they were shown.
    std::vector<Item *> shown() const;
    /// The now of the last reschedule(); invalid before the first.
    QDateTime lastScheduled() const { return m_lastScheduled; }

private:
    struct Entry {
        quint32 handle;
        SystemTime reminder; // as it was when the Item joined
    };
    Item *resolve(quint32 handle) const;
    bool isShown(quint32 handle) const;
    bool forget(quint32 handle);

    const Document *m_document;
    std::vector<Entry> m_list;
    std::vector<quint32> m_shown;
    QDateTime m_lastScheduled;
};
