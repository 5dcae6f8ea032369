#pragma once

#include "model/item.h"
#include "model/treewalker.h"

#include <QString>
#include <QStringList>
#include <map>
#include <vector>

/// How qbx names nodes on its command line: a position is the 1-based index
/// of an Item in depth-first order (as 'qbx dump' lists them), 0 the root.
namespace Positions {

/// Parses "3" or "3,5,8"; false on anything else.
inline bool parse(const QString &text, std::vector<qint64> *positions)
{
    positions->clear();
    const QStringList parts = text.split(QLatin1Char(','));
    for (const QString &part : parts) {
        bool ok = false;
        const qint64 value = part.trimmed().toLongLong(&ok);
        if (!ok || value < 0)
            return false;
        positions->push_back(value);
    }
    return !positions->empty();
}

/// The nodes at those positions, in the same order; false when one is past
/// the last Item.
inline bool resolve(TreeNode *root, const std::vector<qint64> &positions, std::vector<TreeNode *> *nodes)
{
    std::map<qint64, TreeNode *> wanted;
    for (qint64 position : positions)
        wanted[position] = position == 0 ? root : nullptr;
    qint64 position = 0;
    TreeWalker walker(root);
    while (Item *item = walker.next()) {
        ++position;
        const auto it = wanted.find(position);
        if (it != wanted.end())
            it->second = item;
        if (position >= wanted.rbegin()->first)
            break;
    }
    nodes->clear();
    for (qint64 p : positions) {
        if (!wanted[p])
            return false;
        nodes->push_back(wanted[p]);
    }
    return true;
}

} // namespace Positions
