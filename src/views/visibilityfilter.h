#pragma once

#include <QtGlobal>

class Document;
class TreeNode;

/// Which items the lists leave out: completed items when "Hide Completed
/// Items" is on, and items of each status type whose "Hide By Status" entry
/// is on. A hidden item hides its whole branch. The filter is a snapshot of
/// the document's flags; make a new one after a toggle.
class VisibilityFilter {
public:
    /// The view menu's filter and decoration toggles.
    enum Toggle : quint8 {
        HideCompleted,   ///< "Hide Completed Items" (40087)
        HideNoStatus,    ///< "Hide By Status" > "No Status" (40088)
        HideCheckBox,    ///< "Hide By Status" > "Check Box" (40089)
        HideProgressBar, ///< "Hide By Status" > "Progress Bar" (40090)
        ShowDueDate,     ///< "Item Display Options" > "Show Due Date" (40083)
        ShowStatistics,  ///< "Item Display Options" > "Show Statistics" (40084)
    };

    VisibilityFilter() = default;
    explicit VisibilityFilter(const Document &document);
    VisibilityFilter(bool hideCompleted, quint32 hideByStatus);

    /// False when nothing is hidden, so callers can skip the checks.
    bool isActive() const { return m_hideCompleted || m_hideByStatus; }

    /// A node that is not an Item (the root, a heading) is always visible; an
    /// Item is visible unless it is completed while completed items are
    /// hidden, or its status type is hidden.
    bool isVisible(const TreeNode *node) const;
    /// Visible, and so is every ancestor up to the root.
    bool isShown(const TreeNode *node) const;

    /// Whether a toggle is on: the check mark beside its menu entry.
    static bool isOn(const Document &document, Toggle toggle);
    /// Flips the flag or bit. Returns true when the lists must collapse to
    /// their top level (the hide toggles); the display toggles only repaint.
    static bool toggle(Document &document, Toggle toggle);

private:
    quint32 m_hideByStatus = 0;
    bool m_hideCompleted = false;
};
