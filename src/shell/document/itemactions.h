#pragma once

#include <QPoint>
#include <functional>

class Item;
class Prompts;
class QWidget;

/// What the main view and the branch view share besides their item commands.
namespace ItemActions {

/// The tap on an item's status control: a check box toggles at once; a
/// progress bar offers the presets at globalPos. changed runs after every
/// change of progress, not when the tap is ignored or the menu dismissed.
void tapStatus(Item *item, const QPoint &globalPos, Prompts *prompts, QWidget *parent,
               const std::function<void()> &changed);

} // namespace ItemActions
