#include "model/linktargets.h"

#include "model/item.h"
#include "model/treewalker.h"

LinkTargets::LinkTargets(const TreeNode *root)
{
    const TreeNode *top = root;
    while (top->parent())
        top = top->parent();

    // The Items that links name and that still exist somewhere...
    std::unordered_set<const Item *> named;
    TreeWalker walker(top);
    while (const Item *item = walker.next()) {
        const QStringList links = item->links();
        for (const QString &link : links) {
            if (const Item *target = Item::fromHandle(Item::handleOfLink(link)))
                named.insert(target);
        }
    }
    if (named.empty())
        return;
    // ...and of those, the ones in this tree.
    TreeWalker again(top);
    while (const Item *item = again.next()) {
        if (named.count(item))
            m_live.insert(item);
    }
}

const Item *LinkTargets::target(const QString &link) const
{
    const Item *item = Item::fromHandle(Item::handleOfLink(link));
    return item && m_live.count(item) ? item : nullptr;
}
