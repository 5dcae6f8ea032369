#pragma once

#include <QtGlobal>

class QMenu;
class QWidget;
class TreeNode;

/// The item menu, built afresh each time it opens, with its words, command
/// numbers, marks and greying decided by the kind of row and the view.
class ItemMenu {
public:
    enum class RowKind { Title, Item, Other };

    /// What the menu depends on.
    struct State {
        RowKind kind = RowKind::Item;
        bool grouped = false;           ///< a grouped view is shown
        const TreeNode *node = nullptr; ///< the row's node (root or item); null for a heading
        quint16 viewOrder = 0;
        bool viewAscending = true;
        bool canPaste = false; ///< the marked item may be pasted onto node
    };

    /// The menu, owned by parent. Every entry is a QAction named
    /// "action<number>" carrying its number as data; the submenus are
    /// "menuPriority", "menuColour", "menuSet", "menuOrder" and "menuCreate".
    static QMenu *build(const State &state, QWidget *parent);

    /// The popup of a progress bar tap: "0%" to "100%", each action named
    /// "preset<value>" with its value as data.
    static QMenu *buildPresets(QWidget *parent);
};
