#pragma once

#include <QPoint>
#include <functional>

class Item;
class ItemClip;
class QMenu;
class QObject;
class Prompts;
class QWidget;
class TreeNode;

/// The parts of item commands that the main view and the branch view share.
namespace ItemActions {

/// The tap on an item's status control: a check box toggles at once; a
/// progress bar offers the presets at globalPos. changed runs after every
/// change of progress, not when the tap is ignored or the menu dismissed.
void tapStatus(Item *item, const QPoint &globalPos, Prompts *prompts, QWidget *parent,
               const std::function<void()> &changed);

/// Shows an item menu at globalPos: entries whose command is not available
/// stay greyed; a chosen entry runs once the menu has closed.
void popupItemMenu(QMenu *menu, const QPoint &globalPos, Prompts *prompts, QObject *context,
                   const std::function<bool(int)> &available, const std::function<void(int)> &run);

/// Pastes the clip's item under target, asking first whether a copied item's
/// children come too. The pasted item, or null when nothing was pasted.
Item *paste(ItemClip &clip, TreeNode *target, Prompts *prompts, QWidget *parent);

} // namespace ItemActions
