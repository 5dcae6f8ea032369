#pragma once

#include "model/item.h"
#include "model/progress.h"

#include <QString>
#include <memory>
#include <vector>

/// A heading row of a grouped view: not an Item of the document, but a row
/// of its own kind that lists, by reference and in order, the items whose
/// heading text it bears. It keeps a copy of the grouping values (priority,
/// category, due date, progress) of the item that created it, so headings
/// are ordered by the same comparison as items.
class GroupHeading {
public:
    /// The icon of a heading, by the view's mode.
    enum Icon : quint16 { PriorityIcon = 9, CategoryIcon = 10, DueDateIcon = 11, PercentCompleteIcon = 12 };

    GroupHeading(const QString &text, quint16 icon, const Item *first);
    ~GroupHeading();
    GroupHeading(const GroupHeading &) = delete;
    GroupHeading &operator=(const GroupHeading &) = delete;

    const QString &text() const { return m_text; }
    quint16 icon() const { return m_icon; }
    /// The grouping values copied from the item that created the heading.
    const Item &values() const { return *m_values; }
    /// Every item of the group, shown or not, in the view's order. A group
    /// is put in order when its items are first asked for (a collapsed
    /// heading of half a million items costs nothing until it is opened).
    const std::vector<Item *> &items() const;
    /// The same items in no particular order, for what the order does not
    /// matter to.
    const std::vector<Item *> &members() const { return m_items; }
    bool isEmpty() const { return m_items.empty(); }

    bool isExpanded() const { return m_expanded; }
    void setExpanded(bool expanded) { m_expanded = expanded && !m_items.empty(); }

    /// The heading's automatic progress: the unsigned mean of its items'
    /// progress, 0 without items. Computed when asked, so it follows every
    /// change of its items' progress.
    quint16 progress() const;
    /// Counts of the group's items by progress: 0, 1 to 99, 100.
    Progress::Statistics statistics() const;

private:
    friend class GroupView;

    /// Asks for the items to be put in order again, by key and direction.
    void setOrder(quint16 key, bool ascending);

    QString m_text;
    std::unique_ptr<Item> m_values;
    mutable std::vector<Item *> m_items;
    quint16 m_icon;
    quint16 m_orderKey = 0;
    bool m_ascending = true;
    mutable bool m_ordered = false;
    bool m_expanded = false;
};
