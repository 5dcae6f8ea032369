#include "model/progress.h"

#include "model/childorder.h"
#include "model/item.h"

namespace Progress {

quint16 mean(std::span<Item *const> items)
{
    if (items.empty())
        return 0;
    quint64 sum = 0;
    for (const Item *item : items)
        sum += item->progress();
    return quint16(sum / quint64(items.size()));
}

void rollUp(TreeNode *node)
{
    for (; node; node = node->parent()) {
        Item *item = node->asItem();
        if (item && item->autoProgress())
            item->storeProgress(mean(item->children()));
    }
}

TapResult tap(Item *item)
{
    if (item->autoProgress())
        return TapResult::Ignored;
    if (item->statusType() == Item::CheckBox) {
        item->setProgress(item->isComplete() ? 0 : 100);
        return TapResult::Toggled;
    }
    return TapResult::ShowPresets;
}

void resortAncestors(Item *item)
{
    for (TreeNode *node = item->parent(); node; node = node->parent()) {
        if (node->sort() == TreeNode::SortPercentComplete)
            ChildOrder::sortAgain(node);
    }
}

Statistics statistics(const TreeNode *node)
{
    return statistics(node->children());
}

Statistics statistics(std::span<Item *const> items)
{
    Statistics stats;
    for (const Item *item : items) {
        const quint16 p = item->progress();
        if (p == 0)
            ++stats.notStarted;
        else if (p == 100)
            ++stats.completed;
        else if (p < 100)
            ++stats.started;
    }
    return stats;
}

} // namespace Progress
