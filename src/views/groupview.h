#pragma once

#include "views/groupheading.h"
#include "views/visibilityfilter.h"

#include <QHash>
#include <QString>
#include <memory>
#include <unordered_set>
#include <vector>

class Document;

/// A grouped view of the note tree: every item of the document, gathered
/// under one heading per distinct heading text (its category, due day,
/// priority or percent complete). The tree itself is not touched; the view
/// holds the items by reference, so it must be built again after a change
/// that can move items between groups or remove them (a delete).
///
/// The items inside each heading are ordered by the document's ViewOrder and
/// ViewAscending; the headings by the mode's own key in the same direction.
class GroupView {
public:
    enum Mode : quint16 { ByCategory = 1, ByDueDate = 2, ByPriority = 3, ByPercentComplete = 4 };

    /// Builds the view of the document for a mode from 1 to 4. The filter
    /// decides isShown(); it does not change which items are grouped.
    GroupView(const Document &document, quint16 mode, const VisibilityFilter &filter = VisibilityFilter());
    ~GroupView();
    GroupView(const GroupView &) = delete;
    GroupView &operator=(const GroupView &) = delete;

    /// The heading text that item falls under in a mode: "[No Category]",
    /// "[No Task/Due Date]", the long date in the user's locale, "Priority
    /// %d" or "%d%%".
    static QString headingText(const Item *item, quint16 mode);
    /// The child order key that orders the headings of a mode.
    static quint16 headingKey(quint16 mode);
    static quint16 headingIcon(quint16 mode);

    quint16 mode() const { return m_mode; }
    quint16 orderKey() const { return m_orderKey; }
    bool isAscending() const { return m_ascending; }
    /// The text of the view's top row: the document root's name.
    const QString &rootName() const { return m_rootName; }

    /// The headings in display order.
    const std::vector<GroupHeading *> &headings() const { return m_headings; }
    GroupHeading *heading(const QString &text) const { return m_byText.value(text); }
    /// The heading whose text the item's values give now.
    GroupHeading *headingOf(const Item *item) const { return heading(headingText(item, m_mode)); }
    /// Whether the filter given at build time (or since) shows the item.
    bool isShown(const Item *item) const { return !m_filter.isActive() || !m_hidden.contains(item); }

    struct Insertion {
        GroupHeading *heading = nullptr;
        bool isNew = false; ///< the heading was made for this item
    };
    /// Places a new item of the tree into the view: under the heading of its
    /// text, made when missing (expanded, and the headings sorted again), and
    /// sorts that heading's items again.
    Insertion insertItem(Item *item);

    /// A new order for the items of every heading (the heading's "Order
    /// Children By" menu); every group and the headings are sorted again.
    void setOrder(quint16 key, bool ascending);

private:
    /// The heading of that text, made when there is none yet (then isNew, if
    /// given, is set).
    GroupHeading *findOrMake(const Item *item, const QString &text, bool *isNew = nullptr);
    void sortHeadings();

    VisibilityFilter m_filter;
    QString m_rootName;
    std::vector<GroupHeading *> m_headings;
    std::vector<std::unique_ptr<GroupHeading>> m_owned;
    QHash<QString, GroupHeading *> m_byText;
    std::unordered_set<const Item *> m_hidden;
    quint16 m_mode;
    quint16 m_orderKey;
    bool m_ascending;
};
