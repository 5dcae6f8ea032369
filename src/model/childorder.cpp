#include "model/childorder.h"

#include "model/item.h"
#include "platform/collation.h"

#include <QCollatorSortKey>
#include <algorithm>
#include <memory>
#include <new>
#include <optional>

namespace {

// Below this many items the texts are compared directly; above it each text's
// collation key is made once and the keys are compared.
constexpr size_t SortKeyThreshold = 32;

size_t g_bufferLimit = SIZE_MAX;

struct Entry {
    Item *item;
    const QCollatorSortKey *key; // the name's or category's collation key, when made
    qint64 time;                 // the date key's file time, when made (-1: no due date)
};

qint64 fileTime(const SystemTime &time)
{
    qint64 value = 0;
    // A date the calendar cannot hold compares as the earliest time.
    return time.toFileTime(&value) ? value : 0;
}

bool fileTimeBefore(qint64 a, qint64 b, bool ascending)
{
    return ascending ? a < b : !(a < b);
}

// Undated items end last in ascending order and come first in descending
// order, where an undated item goes before anything.
bool dueDateBefore(bool aDated, qint64 a, bool bDated, qint64 b, bool ascending)
{
    if (!aDated)
        return !ascending;
    if (!bDated)
        return ascending;
    return fileTimeBefore(a, b, ascending);
}

class Comparator {
public:
    Comparator(quint16 key, bool ascending) : m_key(key), m_ascending(ascending) {}

    bool operator()(const Entry &a, const Entry &b) const
    {
        switch (m_key) {
        case TreeNode::SortDueDate:
            return dueDateBefore(a.time >= 0, a.time, b.time >= 0, b.time, m_ascending);
        case TreeNode::SortCreationDate:
            return fileTimeBefore(a.time, b.time, m_ascending);
        default:
            break;
        }
        if (a.key && b.key) {
            const int c = a.key->compare(*b.key);
            return m_ascending ? c < 0 : c > 0;
        }
        return ChildOrder::goesBefore(a.item, b.item, m_key, m_ascending);
    }

private:
    quint16 m_key;
    bool m_ascending;
};

// The merge takes from the right run only when its head goes before the left
// run's head; otherwise the left head comes first. Every merge below keeps
// that rule, so the result does not depend on the buffer size.
void mergeWithBuffer(Entry *first, Entry *middle, Entry *last, Entry *buffer, const Comparator &before)
{
    Entry *bufferEnd = std::move(first, middle, buffer);
    Entry *left = buffer;
    Entry *right = middle;
    Entry *out = first;
    while (left != bufferEnd && right != last) {
        if (before(*right, *left))
            *out++ = *right++;
        else
            *out++ = *left++;
    }
    std::move(left, bufferEnd, out);
}

// First position in [first, last) whose element e has !before(e, value).
Entry *lowerBound(Entry *first, Entry *last, const Entry &value, const Comparator &before)
{
    return std::partition_point(first, last, [&](const Entry &e) { return before(e, value); });
}

// First position in [first, last) whose element e has before(value, e).
Entry *upperBound(Entry *first, Entry *last, const Entry &value, const Comparator &before)
{
    return std::partition_point(first, last, [&](const Entry &e) { return !before(value, e); });
}

void merge(Entry *first, Entry *middle, Entry *last, Entry *buffer, size_t bufferSize, const Comparator &before)
{
    while (first != middle && middle != last) {
        const size_t leftSize = size_t(middle - first);
        const size_t rightSize = size_t(last - middle);
        if (leftSize <= bufferSize) {
            mergeWithBuffer(first, middle, last, buffer, before);
            return;
        }
        if (leftSize + rightSize == 2) {
            if (before(*middle, *first))
                std::iter_swap(first, middle);
            return;
        }
        // Split both runs at matching points, rotate the middle parts, merge
        // the smaller half by recursion (depth grows with log n) and loop on
        // the other.
        Entry *leftCut;
        Entry *rightCut;
        if (leftSize > rightSize) {
            leftCut = first + leftSize / 2;
            rightCut = lowerBound(middle, last, *leftCut, before);
        } else {
            rightCut = middle + rightSize / 2;
            leftCut = upperBound(first, middle, *rightCut, before);
        }
        Entry *newMiddle = std::rotate(leftCut, middle, rightCut);
        if (newMiddle - first < last - newMiddle) {
            merge(first, leftCut, newMiddle, buffer, bufferSize, before);
            first = newMiddle;
            middle = rightCut;
        } else {
            merge(newMiddle, rightCut, last, buffer, bufferSize, before);
            last = newMiddle;
            middle = leftCut;
        }
    }
}

void mergeSort(std::vector<Entry> &entries, const Comparator &before)
{
    const size_t n = entries.size();
    if (n < 2)
        return;
    // One buffer entry per element; when that much cannot be had, halve the
    // request until it can, and merge in place past what it holds.
    std::unique_ptr<Entry[]> buffer;
    size_t bufferSize = std::min((n + 1) / 2, g_bufferLimit);
    while (bufferSize > 0 && !buffer) {
        buffer.reset(new (std::nothrow) Entry[bufferSize]);
        if (!buffer)
            bufferSize /= 2;
    }
    Entry *data = entries.data();
    for (size_t width = 1; width < n; width *= 2) {
        for (size_t start = 0; start + width < n; start += 2 * width) {
            const size_t mid = start + width;
            const size_t end = std::min(start + 2 * width, n);
            merge(data + start, data + mid, data + end, buffer.get(), bufferSize, before);
        }
    }
}

bool usesText(quint16 key)
{
    return key == TreeNode::SortName || key == TreeNode::SortCategory;
}

} // namespace

namespace ChildOrder {

bool goesBefore(const Item *a, const Item *b, quint16 key, bool ascending)
{
    switch (key) {
    case TreeNode::SortName:
    case TreeNode::SortCategory: {
        const Collation &collation = Collation::instance();
        const int c = key == TreeNode::SortName ? collation.compare(a->name(), b->name())
                                                 : collation.compare(a->category(), b->category());
        return ascending ? c < 0 : c > 0;
    }
    case TreeNode::SortPriority:
        return ascending ? a->priority() < b->priority() : a->priority() > b->priority();
    case TreeNode::SortPercentComplete:
        return ascending ? a->progress() < b->progress() : a->progress() > b->progress();
    case TreeNode::SortDueDate:
        return dueDateBefore(a->hasDueDate(), fileTime(a->dueDate()), b->hasDueDate(), fileTime(b->dueDate()),
                             ascending);
    case TreeNode::SortCreationDate:
        return fileTimeBefore(fileTime(a->created()), fileTime(b->created()), ascending);
    default:
        return false;
    }
}

void sortItems(std::vector<Item *> &items, quint16 key, bool ascending)
{
    if (items.size() < 2 || key > TreeNode::SortCreationDate)
        return;
    std::vector<Entry> entries(items.size());
    std::vector<QCollatorSortKey> keys;
    const bool withKeys = usesText(key) && items.size() > SortKeyThreshold;
    if (withKeys) {
        const Collation &collation = Collation::instance();
        keys.reserve(items.size());
        for (const Item *item : items)
            keys.push_back(collation.sortKey(key == TreeNode::SortName ? item->name() : item->category()));
    }
    for (size_t i = 0; i < items.size(); ++i) {
        const Item *item = items[i];
        qint64 time = 0;
        if (key == TreeNode::SortDueDate)
            time = item->hasDueDate() ? fileTime(item->dueDate()) : -1;
        else if (key == TreeNode::SortCreationDate)
            time = fileTime(item->created());
        entries[i] = {items[i], withKeys ? &keys[i] : nullptr, time};
    }
    mergeSort(entries, Comparator(key, ascending));
    for (size_t i = 0; i < items.size(); ++i)
        items[i] = entries[i].item;
}

void orderChildrenBy(TreeNode *node, quint16 key)
{
    node->setSort(key);
    sortAgain(node);
}

void setDirection(TreeNode *node, bool ascending)
{
    node->setAscending(ascending);
    sortAgain(node);
}

void setMergeBufferLimit(size_t entries)
{
    g_bufferLimit = entries;
}

void sortAgain(TreeNode *node)
{
    if (node->sort() == TreeNode::SortManual || node->childCount() < 2)
        return;
    std::vector<Item *> children = node->copyOfChildren();
    sortItems(children, node->sort(), node->isAscending());
    node->reorderChildren(children);
}

} // namespace ChildOrder
