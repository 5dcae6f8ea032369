#include "model/document.h"

#include "platform/collation.h"

#include "model/item.h"
#include "model/lastingtext.h"
#include "model/treewalker.h"

#include <thread>
#include <vector>

Document::Document() : m_root(std::make_unique<TreeNode>()) {}

namespace {
bool g_keepTrees = false;
bool g_freeInBackground = false;
} // namespace

void Document::keepTreesUntilExit()
{
    g_keepTrees = true;
    LastingText::enable();
}

void Document::freeTreesInBackground()
{
    g_freeInBackground = true;
}

Document::~Document()
{
    if (g_keepTrees && m_root) {
        // Still reachable from here, so leak checkers see memory in use,
        // not lost.
        static auto *const kept = new std::vector<TreeNode *>;
        kept->push_back(m_root.release());
    } else if (g_freeInBackground && m_root && m_root->hasChildren()) {
        // The handle registry belongs to the model's thread: the link targets
        // leave it here. Nothing else an Item frees is shared.
        TreeWalker walker(m_root.get());
        while (Item *item = walker.next())
            item->forgetHandle();
        std::thread([root = m_root.release()] { delete root; }).detach();
    }
}

void Document::setRoot(std::unique_ptr<TreeNode> root)
{
    m_root = std::move(root);
    m_current = nullptr;
}

Item *Document::liveItem(quint32 handle) const
{
    Item *item = Item::fromHandle(handle);
    if (!item || !m_root || item->topNode() != m_root.get())
        return nullptr;
    return item;
}

Item *Document::linkTarget(const QString &link) const
{
    return liveItem(Item::handleOfLink(link));
}

quint32 Document::docFlags() const
{
    return quint32(hideCompleted) | quint32(showNoteWindow) << 1 | quint32(showDueDate) << 2 |
           quint32(showStatistics) << 3 | quint32(viewAscending) << 7;
}

void Document::setDocFlags(quint32 flags)
{
    hideCompleted = flags & 1;
    showNoteWindow = flags & 2;
    showDueDate = flags & 4;
    showStatistics = flags & 8;
    viewAscending = flags & 0x80;
}

QString Document::collectCategory(const QString &category)
{
    if (category.isEmpty())
        return category;
    const Collation &collation = Collation::instance();
    if (categories.size() != m_categoriesSeenCount) { // the list was edited elsewhere
        m_seenCategories.clear();
        m_categoryKeys.clear();
        for (const QString &known : std::as_const(categories))
            m_categoryKeys.insert(collation.sortKey(known));
        m_categoriesSeenCount = categories.size();
    }
    const auto seen = m_seenCategories.constFind(category);
    if (seen != m_seenCategories.constEnd())
        return *seen;
    m_seenCategories.insert(category);
    // Equal sort keys mean equal texts for the locale, so a new spelling
    // costs one key and a logarithmic look-up, not a pass over the list.
    if (!m_categoryKeys.insert(collation.sortKey(category)).second)
        return category;
    categories.append(category);
    m_categoriesSeenCount = categories.size();
    return category;
}
