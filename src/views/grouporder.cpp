#include "views/grouporder.h"

#include "model/childorder.h"
#include "model/item.h"

#include <algorithm>
#include <limits>

namespace {

struct Keyed {
    qint64 key;
    Item *item;
};

qint64 fileTimeOf(const SystemTime &time)
{
    qint64 fileTime = 0;
    // A date the calendar cannot hold counts as the earliest time.
    return time.toFileTime(&fileTime) ? fileTime : 0;
}

qint64 keyOf(const Item *item, quint16 key)
{
    switch (key) {
    case TreeNode::SortPriority:
        return item->priority();
    case TreeNode::SortPercentComplete:
        return item->progress();
    case TreeNode::SortDueDate:
        // Undated items go after every dated one.
        return item->hasDueDate() ? fileTimeOf(item->dueDate()) : std::numeric_limits<qint64>::max();
    default:
        return fileTimeOf(item->created());
    }
}

} // namespace

namespace GroupOrder {

void sort(std::vector<Item *> &items, quint16 key, bool ascending)
{
    if (key != TreeNode::SortPriority && key != TreeNode::SortPercentComplete && key != TreeNode::SortDueDate &&
        key != TreeNode::SortCreationDate) {
        ChildOrder::sortItems(items, key, ascending);
        return;
    }
    if (items.size() < 2)
        return;
    std::vector<Keyed> keyed(items.size());
    for (size_t i = 0; i < items.size(); ++i)
        keyed[i] = {keyOf(items[i], key), items[i]};
    // The descending rules of the two date keys count equal dates, and
    // undated items, as "before", so the stable merge puts such ties in the
    // reverse of their order: the result is the ascending order reversed.
    const bool dateKey = key == TreeNode::SortDueDate || key == TreeNode::SortCreationDate;
    if (ascending || dateKey) {
        std::stable_sort(keyed.begin(), keyed.end(), [](const Keyed &a, const Keyed &b) { return a.key < b.key; });
        if (!ascending)
            std::reverse(keyed.begin(), keyed.end());
    } else {
        std::stable_sort(keyed.begin(), keyed.end(), [](const Keyed &a, const Keyed &b) { return a.key > b.key; });
    }
    for (size_t i = 0; i < items.size(); ++i)
        items[i] = keyed[i].item;
}

} // namespace GroupOrder
