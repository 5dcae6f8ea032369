#pragma once

#include <QtGlobal>
#include <array>
#include <span>
#include <vector>

class Item;
class TreeNode;

/// Percent complete, its roll-up through automatic items, the tap on a row's
/// status control, and the child statistics.
namespace Progress {

/// The values of the progress bar's popup menu, in menu order.
inline constexpr std::array<quint16, 7> Presets = {0, 10, 25, 50, 75, 90, 100};

/// The automatic progress of a list of items: the unsigned mean of their
/// progress (100, 100 and 0 give 66), 0 for none.
quint16 mean(std::span<Item *const> items);

/// Recomputes node if it is automatic (the unsigned mean of its direct
/// children, 0 without children), then every ancestor the same way up to the
/// root; a manual ancestor is passed over without stopping the climb.
void rollUp(TreeNode *node);

enum class TapResult {
    Ignored,     ///< automatic items ignore taps
    Toggled,     ///< a check box went to 0 or 100
    ShowPresets, ///< the caller offers Presets and calls setProgress with the choice
};
/// The tap on an item's check box or progress bar.
TapResult tap(Item *item);

/// After a progress change made from the view: every ancestor of item that
/// orders its children by percent complete sorts them again.
void resortAncestors(Item *item);

/// Counts over the direct children: progress 0, 1 to 99, and 100.
struct Statistics {
    int notStarted = 0;
    int started = 0;
    int completed = 0;
};
Statistics statistics(const TreeNode *node);
/// The same counts over any list of items (a group heading's).
Statistics statistics(std::span<Item *const> items);

} // namespace Progress
