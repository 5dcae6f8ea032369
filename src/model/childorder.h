#pragma once

#include <QtGlobal>
#include <cstddef>
#include <vector>

class Item;
class TreeNode;

/// How a node orders its children: the six keys, either direction, by a
/// stable merge sort over the children vector itself.
namespace ChildOrder {

/// The predicate "a goes before b" for a key and direction. The descending
/// rules of the two date keys count equal dates, and undated items, as
/// "before": with the stable merge this decides their order, so it is kept
/// exactly as it is.
bool goesBefore(const Item *a, const Item *b, quint16 key, bool ascending);

/// Sorts items in place by key and direction. Stable: items that the
/// comparison does not separate keep their relative order. The merge buffer
/// falls back to smaller sizes, down to an in-place merge, rather than fail.
void sortItems(std::vector<Item *> &items, quint16 key, bool ascending);

/// Stores key in node and, unless it is manual order, sorts its children.
/// Choosing manual order keeps the present order as the manual one.
void orderChildrenBy(TreeNode *node, quint16 key);
/// Stores the direction and sorts again.
void setDirection(TreeNode *node, bool ascending);
/// Sorts node's children by its own key and direction; nothing for manual
/// order.
void sortAgain(TreeNode *node);

/// Caps the merge buffer (in entries) as if no more memory could be had; 0
/// merges wholly in place. For tests of the fallback.
void setMergeBufferLimit(size_t entries);

} // namespace ChildOrder
