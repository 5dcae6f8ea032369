#include "views/applyattributes.h"

#include "model/childorder.h"
#include "model/item.h"
#include "model/progress.h"

#include <vector>

namespace {

// The automatic recomputation of one item, without the climb.
void recomputeAutomatic(Item *item)
{
    if (item->autoProgress())
        item->storeProgress(Progress::mean(item->children()));
}

// Everything but the climb of the progress roll-up, in the order the fields
// are applied.
void setOn(Item *item, const AttributeSet &set)
{
    if (set.has(AttributeSet::Priority))
        item->setPriority(set.priority);
    if (set.has(AttributeSet::Category))
        item->setCategory(set.category);
    if (set.has(AttributeSet::Icon))
        item->setImage(set.icon);
    if (set.has(AttributeSet::Colour))
        item->setColour(set.colour);
    if (set.has(AttributeSet::StatusType))
        item->setStatusType(set.statusType);
    if (set.has(AttributeSet::ShowIcon))
        item->setShowIcon(set.showIcon);
    if (set.has(AttributeSet::Italic))
        item->setItalic(set.italic);
    if (set.has(AttributeSet::Progress)) {
        item->storeProgress(set.progress);
        recomputeAutomatic(item);
    }
    if (set.has(AttributeSet::Progress) || set.has(AttributeSet::Automatic))
        item->setAutoProgress(set.automatic);
}

bool sortKeyChanged(const TreeNode *parent, const AttributeSet &set)
{
    switch (parent->sort()) {
    case TreeNode::SortPriority:
        return set.has(AttributeSet::Priority);
    case TreeNode::SortCategory:
        return set.has(AttributeSet::Category);
    case TreeNode::SortPercentComplete:
        return set.has(AttributeSet::Progress);
    default:
        return false;
    }
}

} // namespace

namespace ApplyAttributes {

bool isAvailable(const TreeNode *node, quint16 viewMode)
{
    return viewMode == 0 && node && node->isItem() && node->hasChildren();
}

void apply(TreeNode *target, const AttributeSet &set)
{
    if (!target || set.flags == 0)
        return;
    // Parents whose children are still to be set, the next on top: each
    // parent's children are done before any grandchild, and the branch of
    // one child is finished before the next child's branch, without
    // recursion.
    std::vector<TreeNode *> pending{target};
    std::vector<TreeNode *> parents;
    while (!pending.empty()) {
        TreeNode *parent = pending.back();
        pending.pop_back();
        if (!parent->hasChildren())
            continue;
        parents.push_back(parent);
        for (Item *child : parent->children())
            setOn(child, set);
        if (set.allSubItems) {
            const std::span<Item *const> children = parent->children();
            for (auto it = children.rbegin(); it != children.rend(); ++it) {
                if ((*it)->hasChildren())
                    pending.push_back(*it);
            }
        }
    }
    // Setting a child's progress climbs to the root, recomputing every
    // automatic ancestor on the way. Of all those climbs only the last one
    // through a node leaves its value, and that one comes after the node's
    // whole branch is done and its flag is final. So the same tree results
    // from recomputing the parents once, each after everything below it,
    // then climbing once from the target: linear work even on a long chain.
    if (set.has(AttributeSet::Progress)) {
        for (auto it = parents.rbegin(); it != parents.rend(); ++it) {
            if (Item *item = (*it)->asItem())
                recomputeAutomatic(item);
        }
        Progress::rollUp(target);
    }
    for (TreeNode *parent : parents) {
        if (sortKeyChanged(parent, set))
            ChildOrder::sortAgain(parent);
    }
    if (set.has(AttributeSet::Progress)) {
        for (TreeNode *up = target->parent(); up; up = up->parent()) {
            if (up->sort() == TreeNode::SortPercentComplete)
                ChildOrder::sortAgain(up);
        }
    }
}

} // namespace ApplyAttributes
