#include "model/editing.h"

#include "model/childorder.h"
#include "model/document.h"
#include "model/editstep.h"
#include "model/progress.h"

#include <utility>

void ItemClip::markMove(Item *item)
{
    m_item = item;
    m_mode = item ? MoveMode : Empty;
}

void ItemClip::markCopy(Item *item)
{
    m_item = item;
    m_mode = item ? CopyMode : Empty;
}

void ItemClip::clear()
{
    m_item = nullptr;
    m_mode = Empty;
}

bool ItemClip::canPaste(const TreeNode *target) const
{
    if (m_mode == Empty || !m_item || !target)
        return false;
    if (target == m_item || m_item->isAncestorOf(target))
        return false;
    return !(m_mode == MoveMode && m_item->parent() == target);
}

bool ItemClip::asksForChildren() const
{
    return m_mode == CopyMode && m_item && m_item->hasChildren();
}

Item *ItemClip::paste(TreeNode *target, bool withChildren)
{
    if (!canPaste(target))
        return nullptr;
    Item *pasted = nullptr;
    if (m_mode == MoveMode) {
        TreeNode *oldParent = m_item->parent();
        if (oldParent)
            oldParent->removeChild(m_item);
        target->appendChild(m_item);
        pasted = m_item;
        if (oldParent)
            Progress::rollUp(oldParent);
    } else {
        pasted = m_item->clone();
        if (withChildren)
            Editing::copyChildren(m_item, pasted);
        target->appendChild(pasted);
    }
    Progress::rollUp(target);
    ChildOrder::sortAgain(target);
    return pasted;
}

void ItemClip::forgetBranch(const Item *branchTop)
{
    if (m_item && (m_item == branchTop || branchTop->isAncestorOf(m_item)))
        clear();
}

namespace Editing {

TreeNode *insertItem(Document &document, Item *newItem, InsertPosition position)
{
    Item *current = document.currentItem();
    TreeNode *parent = document.root();
    int index = -1;
    if (current && position == InsertPosition::Same && current->parent()) {
        parent = current->parent();
        index = parent->indexOf(current) + 1;
    } else if (current && position == InsertPosition::Child) {
        parent = current;
        index = 0;
    }
    parent->insertChild(newItem, index);
    Progress::rollUp(parent);
    ChildOrder::sortAgain(parent);
    document.setCurrent(newItem);
    return parent;
}

Item *createCopy(Item *item)
{
    TreeNode *parent = item->parent();
    Item *copy = item->clone();
    parent->insertChild(copy, parent->indexOf(item) + 1);
    Progress::rollUp(parent);
    ChildOrder::sortAgain(parent);
    return copy;
}

void copyChildren(const Item *source, Item *copyTop)
{
    // Pairs of (original node, its copy) whose children are still to copy.
    std::vector<std::pair<const TreeNode *, TreeNode *>> pending{{source, copyTop}};
    while (!pending.empty()) {
        auto [from, to] = pending.back();
        pending.pop_back();
        for (const Item *child : from->children()) {
            Item *copy = child->clone();
            to->appendChild(copy);
            if (child->hasChildren())
                pending.emplace_back(child, copy);
        }
    }
}

TreeNode *deleteItem(Document &document, Item *item, ItemClip *clip)
{
    TreeNode *parent = item->parent();
    if (clip)
        clip->forgetBranch(item);
    if (document.current() == item || item->isAncestorOf(document.current()))
        document.setCurrent(parent);
    if (parent)
        parent->removeChild(item);
    if (!EditStep::keeps(item)) // an undo may want the branch back
        delete item;
    if (parent)
        Progress::rollUp(parent);
    return parent;
}

bool canDrop(const Item *dragged, const TreeNode *target)
{
    return dragged && target && target != dragged && !dragged->isAncestorOf(target);
}

bool drop(Item *dragged, TreeNode *target)
{
    if (!canDrop(dragged, target))
        return false;
    TreeNode *oldParent = dragged->parent();
    if (oldParent)
        oldParent->removeChild(dragged);
    target->appendChild(dragged);
    if (oldParent)
        Progress::rollUp(oldParent);
    Progress::rollUp(target);
    ChildOrder::sortAgain(target);
    return true;
}

void setPriority(Item *item, quint16 priority)
{
    item->setPriority(priority);
    if (item->parent() && item->parent()->sort() == TreeNode::SortPriority)
        ChildOrder::sortAgain(item->parent());
}

bool canMove(const Document &document, const Item *item, Move move)
{
    if (document.viewMode != Document::DefaultView || !item || !item->parent())
        return false;
    const TreeNode *parent = item->parent();
    const int index = parent->indexOf(item);
    switch (move) {
    case Move::Up:
        return index > 0;
    case Move::Down:
        return index + 1 < parent->childCount();
    case Move::UpLevel:
        return parent->parent() != nullptr;
    case Move::DownLevel:
        return index > 0;
    }
    return false;
}

bool move(Document &document, Item *item, Move move)
{
    if (!canMove(document, item, move))
        return false;
    TreeNode *parent = item->parent();
    const int index = parent->indexOf(item);
    switch (move) {
    case Move::Up:
    case Move::Down: {
        std::vector<Item *> order = parent->copyOfChildren();
        std::swap(order[size_t(index)], order[size_t(move == Move::Up ? index - 1 : index + 1)]);
        parent->reorderChildren(order);
        ChildOrder::sortAgain(parent);
        break;
    }
    case Move::UpLevel: {
        TreeNode *grandParent = parent->parent();
        parent->removeChild(item);
        grandParent->insertChild(item, grandParent->indexOf(parent) + 1);
        Progress::rollUp(parent);
        ChildOrder::sortAgain(grandParent);
        break;
    }
    case Move::DownLevel: {
        Item *newParent = parent->child(index - 1);
        parent->removeChild(item);
        newParent->appendChild(item);
        Progress::rollUp(newParent);
        ChildOrder::sortAgain(newParent);
        break;
    }
    }
    return true;
}

Item *quickEntryItem(const QString &text, quint16 icon, bool italic, const TreeNode *current)
{
    auto *item = new Item(text.left(63), icon);
    item->setItalic(italic);
    if (const Item *from = current ? current->asItem() : nullptr) {
        item->setPriority(from->priority());
        item->setStatusType(from->statusType());
        item->setColour(from->colour());
        item->setShowIcon(from->showIcon());
    }
    return item;
}

InsertPosition quickEntryPosition(const TreeNode *current, bool childToggle)
{
    if (!current || !current->isItem())
        return InsertPosition::Top;
    return childToggle ? InsertPosition::Child : InsertPosition::Same;
}

bool addToHistory(QStringList &history, const QString &text)
{
    if (history.contains(text, Qt::CaseInsensitive))
        return false;
    history.append(text);
    return true;
}

void applyProperties(Item *item, const ItemProperties &p, Document *document)
{
    item->setName(p.name);
    setPriority(item, p.priority);
    item->setCategory(document ? document->collectCategory(p.category) : p.category);
    item->setImage(p.image);
    item->setColour(p.colour);
    item->setShowIcon(p.showIcon);
    item->setItalic(p.italic);
    item->setStatusType(p.statusType);
    item->setDueDate(p.dueDate);
    item->setTaskTime(p.taskTime);
    item->setTaskTimeType(p.taskTimeType);
    item->setReminderTime(p.reminderTime);
    if (p.links)
        item->setLinks(*p.links);
    if (p.note)
        item->setNote(*p.note);
    // Progress comes last, since its roll-up climbs from here.
    if (p.autoProgress) {
        item->setAutoProgress(true);
        item->progressChanged();
    } else {
        item->setAutoProgress(false);
        if (item->progress() != p.progress)
            item->setProgress(p.progress);
    }
    if (TreeNode *parent = item->parent())
        ChildOrder::sortAgain(parent);
    Progress::resortAncestors(item);
}

} // namespace Editing
