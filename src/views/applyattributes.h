#pragma once

#include "views/attributeset.h"

class TreeNode;

/// "Apply Attributes...": sets the chosen attributes on the direct children
/// of a node and, with allSubItems, on every item below it. The node itself
/// keeps its own attributes.
namespace ApplyAttributes {

/// The command is offered for an item with children, never in a grouped view.
bool isAvailable(const TreeNode *node, quint16 viewMode);

/// Applies set below target. Each item gets, in this order: priority,
/// category, icon, colour, status type, show icon, italic, progress (rolled
/// up through automatic ancestors), then the automatic flag (with bit
/// 0x010 or 0x100). The automatic flag comes after the progress, so an item
/// switched to automatic keeps the given progress until something below it
/// changes. Parents that order their children by a changed key sort them
/// again afterwards.
void apply(TreeNode *target, const AttributeSet &set);

} // namespace ApplyAttributes
