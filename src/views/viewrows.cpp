#include "views/viewrows.h"

#include "model/document.h"
#include "model/treewalker.h"

#include <QHash>
#include <algorithm>

namespace {

bool isGroupedMode(quint16 mode)
{
    return mode >= GroupView::ByCategory && mode <= GroupView::ByPercentComplete;
}

} // namespace

ViewRows::ViewRows(Document &document, TreeNode *top)
    : m_document(document), m_top(top && top->isItem() ? top : nullptr), m_filter(document)
{
    if (!m_top && isGroupedMode(document.viewMode)) {
        makeGroupView(document.viewMode);
        if (const Item *current = document.currentItem()) {
            if (GroupHeading *heading = m_group->headingOf(current))
                heading->setExpanded(true);
        }
    }
    buildRows();
}

ViewRows::~ViewRows() = default;

TreeNode *ViewRows::top() const
{
    return m_top ? m_top : m_document.root();
}

void ViewRows::makeGroupView(quint16 mode)
{
    m_group = std::make_unique<GroupView>(m_document, mode, m_filter);
}

QString ViewRows::text(int index) const
{
    const Row &r = row(index);
    return r.kind == Kind::Heading ? r.heading->text() : r.node->name();
}

bool ViewRows::isExpanded(int index) const
{
    const Row &r = row(index);
    switch (r.kind) {
    case Kind::Heading:
        return r.heading->isExpanded();
    case Kind::Root:
        return m_group ? m_groupRootExpanded : r.node->isExpanded();
    case Kind::Item:
        return !m_group && r.node->isExpanded();
    }
    return false;
}

int ViewRows::indexOf(const TreeNode *node) const
{
    for (size_t i = 0; i < m_rows.size(); ++i) {
        if (m_rows[i].node == node)
            return int(i);
    }
    return -1;
}

int ViewRows::indexOf(const GroupHeading *heading) const
{
    for (size_t i = 0; i < m_rows.size(); ++i) {
        if (m_rows[i].kind == Kind::Heading && m_rows[i].heading == heading)
            return int(i);
    }
    return -1;
}

int ViewRows::parentIndex(int index) const
{
    const int level = row(index).level;
    for (int i = index - 1; i >= 0; --i) {
        if (row(i).level < level)
            return i;
    }
    return -1;
}

bool ViewRows::hasShownChild(const TreeNode *node) const
{
    if (!m_filter.isActive())
        return node->hasChildren();
    for (const Item *child : node->children()) {
        if (m_filter.isVisible(child))
            return true;
    }
    return false;
}

ViewRows::Row ViewRows::nodeRow(TreeNode *node, int level, Kind kind) const
{
    Row r;
    r.node = node;
    r.level = level;
    r.kind = kind;
    r.expandable = (kind == Kind::Root && m_group) ? !m_group->headings().empty() : !m_group && hasShownChild(node);
    return r;
}

ViewRows::Row ViewRows::headingRow(GroupHeading *heading) const
{
    Row r;
    r.heading = heading;
    r.level = 1;
    r.kind = Kind::Heading;
    if (!m_filter.isActive()) {
        r.expandable = !heading->isEmpty();
    } else {
        for (const Item *item : heading->members()) {
            if (m_group->isShown(item)) {
                r.expandable = true;
                break;
            }
        }
    }
    return r;
}

void ViewRows::appendBranch(std::vector<Row> &out, TreeNode *node, int level) const
{
    // Only shown parents are descended into, so checking each item by itself
    // is enough: its ancestors are known to be visible.
    const bool filterActive = m_filter.isActive();
    TreeWalker walker(node);
    while (Item *item = walker.next()) {
        if (filterActive && !m_filter.isVisible(item)) {
            walker.skipChildren();
            continue;
        }
        out.push_back(nodeRow(item, level + walker.depth(), Kind::Item));
        if (!item->isExpanded())
            walker.skipChildren();
    }
}

void ViewRows::appendHeadingItems(std::vector<Row> &out, GroupHeading *heading) const
{
    for (Item *item : heading->items()) {
        if (!m_group->isShown(item))
            continue;
        Row r;
        r.node = item;
        r.level = 2;
        r.kind = Kind::Item;
        out.push_back(r);
    }
}

void ViewRows::buildRows()
{
    m_rows.clear();
    if (m_group) {
        m_rows.push_back(nodeRow(m_document.root(), 0, Kind::Root));
        if (!m_groupRootExpanded)
            return;
        for (GroupHeading *heading : m_group->headings()) {
            m_rows.push_back(headingRow(heading));
            if (heading->isExpanded())
                appendHeadingItems(m_rows, heading);
        }
        return;
    }
    TreeNode *t = top();
    if (m_top && !m_filter.isShown(m_top))
        return; // the branch view's item is hidden: nothing of the branch is shown
    m_rows.push_back(nodeRow(t, 0, t->isItem() ? Kind::Item : Kind::Root));
    if (t->isExpanded())
        appendBranch(m_rows, t, 0);
}

int ViewRows::rowsBelow(int index) const
{
    const int level = row(index).level;
    int end = index + 1;
    while (end < count() && row(end).level > level)
        ++end;
    return end - index - 1;
}

int ViewRows::rowsOnExpand(int index) const
{
    if (isExpanded(index))
        return 0;
    const Row &r = row(index);
    std::vector<Row> added;
    switch (r.kind) {
    case Kind::Heading:
        appendHeadingItems(added, r.heading);
        break;
    case Kind::Root:
        if (m_group)
            return int(m_group->headings().size()); // every heading is collapsed or expanded as it was
        appendBranch(added, r.node, r.level);
        break;
    case Kind::Item:
        if (!m_group)
            appendBranch(added, r.node, r.level);
        break;
    }
    return int(added.size());
}

int ViewRows::setExpanded(int index, bool expanded)
{
    if (isExpanded(index) == expanded)
        return 0;
    const Row r = row(index);
    if (!expanded) {
        const int removed = rowsBelow(index);
        if (r.kind == Kind::Heading)
            r.heading->setExpanded(false);
        else if (r.kind == Kind::Root && m_group)
            m_groupRootExpanded = false;
        else
            r.node->setExpanded(false);
        m_rows.erase(m_rows.begin() + index + 1, m_rows.begin() + index + 1 + removed);
        return removed;
    }
    std::vector<Row> added;
    if (r.kind == Kind::Heading) {
        r.heading->setExpanded(true);
        if (r.heading->isExpanded())
            appendHeadingItems(added, r.heading);
    } else if (r.kind == Kind::Root && m_group) {
        m_groupRootExpanded = true;
        for (GroupHeading *heading : m_group->headings()) {
            added.push_back(headingRow(heading));
            if (heading->isExpanded())
                appendHeadingItems(added, heading);
        }
    } else if (!m_group) {
        r.node->setExpanded(true);
        if (r.node->isExpanded())
            appendBranch(added, r.node, r.level);
    }
    m_rows.insert(m_rows.begin() + index + 1, added.begin(), added.end());
    return int(added.size());
}

void ViewRows::expandAll()
{
    if (m_group) {
        m_groupRootExpanded = true;
        for (GroupHeading *heading : m_group->headings())
            heading->setExpanded(true);
    } else {
        TreeNode *t = top();
        t->setExpanded(true);
        TreeWalker walker(t);
        while (Item *item = walker.next()) {
            if (!m_filter.isVisible(item))
                walker.skipChildren(); // no row, nor anything below it
            else
                item->setExpanded(true);
        }
    }
    buildRows();
}

void ViewRows::collapseAll()
{
    if (m_group) {
        m_groupRootExpanded = true;
        for (GroupHeading *heading : m_group->headings())
            heading->setExpanded(false);
    } else {
        TreeNode *t = top();
        TreeWalker walker(t);
        while (Item *item = walker.next())
            item->setExpanded(false);
        t->setExpanded(true);
    }
    buildRows();
}

int ViewRows::rebuild(int currentRow)
{
    std::vector<Row> old;
    old.swap(m_rows);
    // The old groups stay alive until the old rows are matched by heading text.
    std::unique_ptr<GroupView> oldGroup = std::move(m_group);
    m_filter = VisibilityFilter(m_document);
    if (oldGroup) {
        makeGroupView(oldGroup->mode());
        for (const GroupHeading *heading : oldGroup->headings()) {
            if (heading->isExpanded()) {
                if (GroupHeading *same = m_group->heading(heading->text()))
                    same->setExpanded(true);
            }
        }
    }
    buildRows();
    if (currentRow < 0 || size_t(currentRow) >= old.size() || m_rows.empty())
        return m_rows.empty() ? -1 : (currentRow < 0 ? -1 : 0);

    // Old rows are matched by their node, or by their heading's text; the
    // old nodes are only compared, never used, as some may be destroyed.
    QHash<const void *, int> newIndex;
    newIndex.reserve(qsizetype(m_rows.size()));
    for (size_t i = 0; i < m_rows.size(); ++i) {
        const Row &r = m_rows[i];
        newIndex.insert(r.kind == Kind::Heading ? static_cast<const void *>(r.heading) : r.node, int(i));
    }
    auto find = [&](int oldIndex) -> int {
        const Row &r = old[size_t(oldIndex)];
        if (r.kind == Kind::Heading) {
            const GroupHeading *same = m_group ? m_group->heading(r.heading->text()) : nullptr;
            return same ? newIndex.value(same, -1) : -1;
        }
        return newIndex.value(r.node, -1);
    };
    const int oldCount = int(old.size());
    for (int distance = 0; distance < oldCount; ++distance) {
        const int below = currentRow + distance;
        if (below < oldCount) {
            const int found = find(below);
            if (found >= 0)
                return found;
        }
        const int above = currentRow - distance;
        if (distance > 0 && above >= 0) {
            const int found = find(above);
            if (found >= 0)
                return found;
        }
    }
    return 0;
}

int ViewRows::setViewMode(quint16 mode, const TreeNode *current)
{
    m_document.viewMode = mode;
    if (m_top)
        return reveal(current);
    if (!isGroupedMode(mode)) {
        m_group.reset();
        if (current && current->isItem()) {
            for (TreeNode *up = current->parent(); up; up = up->parent())
                up->setExpanded(true);
        }
        buildRows();
    } else {
        makeGroupView(mode);
        m_groupRootExpanded = true;
        if (const Item *item = current ? current->asItem() : nullptr) {
            if (GroupHeading *heading = m_group->headingOf(item))
                heading->setExpanded(true);
        }
        buildRows();
    }
    const int index = current ? indexOf(current) : -1;
    return index >= 0 || m_rows.empty() ? index : 0;
}

void ViewRows::setViewOrder(quint16 key, bool ascending)
{
    m_document.viewOrder = key;
    m_document.viewAscending = ascending;
    if (m_group) {
        m_group->setOrder(key, ascending);
        buildRows();
    }
}

int ViewRows::reveal(const TreeNode *node)
{
    if (!node || !m_filter.isShown(node))
        return -1;
    if (m_group) {
        m_groupRootExpanded = true;
        if (const Item *item = node->asItem()) {
            GroupHeading *heading = m_group->headingOf(item);
            const auto lists = [item](const GroupHeading *h) {
                return h && std::find(h->members().begin(), h->members().end(), item) != h->members().end();
            };
            // The item's values may have changed since it was grouped.
            if (!lists(heading)) {
                heading = nullptr;
                for (GroupHeading *h : m_group->headings()) {
                    if (lists(h)) {
                        heading = h;
                        break;
                    }
                }
            }
            if (!heading)
                return -1;
            heading->setExpanded(true);
        }
    } else {
        TreeNode *t = top();
        if (node != t && !t->isAncestorOf(node))
            return -1;
        for (TreeNode *up = node->parent(); up && up != t->parent(); up = up->parent())
            up->setExpanded(true);
    }
    buildRows();
    return indexOf(node);
}

int ViewRows::itemInserted(Item *item)
{
    if (m_group)
        m_group->insertItem(item);
    return reveal(item);
}

bool ViewRows::toggle(VisibilityFilter::Toggle toggle)
{
    if (!VisibilityFilter::toggle(m_document, toggle))
        return false;
    m_filter = VisibilityFilter(m_document);
    if (m_group)
        makeGroupView(m_group->mode());
    collapseAll();
    return true;
}
