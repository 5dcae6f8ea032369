#pragma once

#include <QString>
#include <functional>

class QAction;
class QMenu;
class QWidget;

/// The layout of the item menu and of a progress bar's presets. The menu's
/// entries stand for the item commands: each copies its command's text,
/// object name, greying and mark, and triggers the command once the menu
/// has closed.
class ItemMenu {
public:
    using CommandLookup = std::function<QAction *(const QString &objectName)>;

    /// The item menu, owned by parent; the submenus are "menuPriority",
    /// "menuColour", "menuSet", "menuOrder" and "menuCreate", each greyed
    /// when none of its entries is available.
    static QMenu *build(QWidget *parent, const CommandLookup &command);

    /// The popup of a progress bar tap: "0%" to "100%", each action named
    /// "preset<value>" with its value as data.
    static QMenu *buildPresets(QWidget *parent);
};
