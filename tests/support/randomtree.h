#pragma once

// A seeded random note tree with few distinct values per field, so that groups, ties and matches are common.

#include "model/document.h"
#include "notes/notetext.h"

#include <QRandomGenerator>
#include <QStringList>
#include <vector>

namespace RandomTree {

inline const QStringList &categories()
{
    static const QStringList list = {QString(), "Work", "work", "Home", "Économie", "Zoo"};
    return list;
}

inline const QStringList &words()
{
    static const QStringList list = {"alpha", "Beta", "GAMMA", "délta", "Ünïcode", "abc", "ABC", "x"};
    return list;
}

/// Fills root with count items in a random shape (depth up to about 8).
inline void fill(TreeNode *root, int count, quint32 seed)
{
    QRandomGenerator rng(seed);
    std::vector<TreeNode *> path{root};
    auto pick = [&](const QStringList &list) { return list[int(rng.bounded(quint32(list.size())))]; };
    static const quint16 progresses[] = {0, 0, 10, 50, 66, 100, 100};
    for (int i = 0; i < count; ++i) {
        const quint32 move = rng.bounded(10u);
        if (move < 3 && path.size() < 9 && path.back()->hasChildren())
            path.push_back(path.back()->children().back());
        else if (move >= 7)
            path.resize(std::max<size_t>(1, path.size() - rng.bounded(quint32(path.size()))));
        auto *item = new Item(pick(words()) + QLatin1Char(' ') + pick(words()));
        item->setCategory(pick(categories()));
        item->setPriority(quint16(1 + rng.bounded(5u) * 4)); // 1, 5, 9, 13, 17
        if (rng.bounded(3u) != 0)
            item->setDueDate({2024, quint16(1 + rng.bounded(2u)), 0, quint16(1 + rng.bounded(4u)),
                              quint16(rng.bounded(24u)), quint16(rng.bounded(60u)), 0, 0});
        item->storeProgress(progresses[rng.bounded(quint32(std::size(progresses)))]);
        item->setStatusType(quint16(rng.bounded(3u)));
        item->setColour(quint16(rng.bounded(3u)));
        item->setItalic(rng.bounded(4u) == 0);
        item->setShowIcon(rng.bounded(4u) != 0);
        item->setCreated({2023, quint16(1 + rng.bounded(12u)), 0, quint16(1 + rng.bounded(28u)), 0, 0, 0, 0});
        if (rng.bounded(3u) == 0)
            item->setNote(NoteText::toPlainNote(pick(words()) + QStringLiteral(" and ") + pick(words())));
        path.back()->appendChild(item);
    }
}

} // namespace RandomTree
