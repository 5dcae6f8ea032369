#include "model/editstep.h"

#include "model/document.h"
#include "model/item.h"

#include <algorithm>

namespace EditRecording {

void fieldsChanging(TreeNode *node)
{
    step->fieldsChanging(node);
}

void childInserted(TreeNode *parent, int position, Item *child)
{
    step->childInserted(parent, position, child);
}

void childTaking(TreeNode *parent, int position, Item *child)
{
    step->childTaking(parent, position, child);
}

void childrenReordering(TreeNode *parent, const std::vector<Item *> &order)
{
    step->childrenReordering(parent, order);
}

} // namespace EditRecording

namespace {

bool sameFields(const TreeNode &a, const TreeNode &b)
{
    if (a.name() != b.name() || a.image() != b.image() || a.sort() != b.sort() || a.extraWord() != b.extraWord() ||
        a.isExpanded() != b.isExpanded() || a.isAscending() != b.isAscending())
        return false;
    const Item *x = a.asItem();
    const Item *y = b.asItem();
    if (!x || !y)
        return true;
    return x->taskTime() == y->taskTime() && x->taskTimeType() == y->taskTimeType() && x->colour() == y->colour() &&
           x->created() == y->created() && x->links() == y->links() && x->note() == y->note() &&
           x->progress() == y->progress() && x->statusType() == y->statusType() && x->flags() == y->flags() &&
           x->category() == y->category() && x->priority() == y->priority() && x->dueDate() == y->dueDate() &&
           x->reminderTime() == y->reminderTime();
}

} // namespace

EditStep::EditStep(Document &document) : m_document(document), m_categories(document.categories) {}

EditStep::~EditStep()
{
    // The items only this step holds: done, those its last move of them took
    // out; undone, those its first move of them put in.
    std::unordered_map<Item *, bool> held;
    const auto note = [&held](const Op &op, OpKind holding) {
        if (op.kind != OpKind::Reorder)
            held[op.child] = op.kind == holding;
    };
    if (m_done) {
        for (const Op &op : m_ops)
            note(op, OpKind::Take);
    } else {
        for (auto op = m_ops.rbegin(); op != m_ops.rend(); ++op)
            note(*op, OpKind::Insert);
    }
    for (const auto &[item, mine] : held) {
        if (mine && !item->parent())
            delete item;
    }
}

EditStep::Recording::Recording(EditStep &step)
{
    Q_ASSERT(!EditRecording::step);
    EditRecording::step = &step;
}

EditStep::Recording::~Recording()
{
    EditRecording::step = nullptr;
}

bool EditStep::inTree(TreeNode *node)
{
    // A lone node (an item being made) is outside and not worth remembering.
    if (!node->parent() && node != m_document.root() && !m_known.contains(node))
        return false;
    // Each node is looked up once: the path walked is remembered either way.
    std::vector<const TreeNode *> path;
    bool inside = false;
    for (const TreeNode *n = node; n; n = n->parent()) {
        if (n == m_document.root() || m_known.contains(n)) {
            inside = true;
            break;
        }
        if (m_outside.contains(n))
            break;
        path.push_back(n);
    }
    (inside ? m_known : m_outside).insert(path.begin(), path.end());
    return inside;
}

void EditStep::fieldsChanging(TreeNode *node)
{
    if (m_fields.contains(node) || !inTree(node))
        return;
    // The copy's own construction is no change to record.
    EditRecording::step = nullptr;
    std::unique_ptr<TreeNode> kept(node->isItem() ? new Item(QString(), 0, SystemTime()) : new TreeNode());
    EditRecording::step = this;
    node->copyFieldsTo(*kept);
    m_fields.emplace(node, std::move(kept));
    if (!m_first) {
        m_first = node;
        m_firstParent = node->parent();
    }
}

void EditStep::childInserted(TreeNode *parent, int position, Item *child)
{
    if (!inTree(parent))
        return;
    // What was outside may have come in with this child.
    m_outside.clear();
    if (!m_first) {
        m_first = child;
        m_firstParent = parent;
    }
    m_ops.push_back({OpKind::Insert, position, parent, child, {}});
}

void EditStep::childTaking(TreeNode *parent, int position, Item *child)
{
    if (!inTree(parent))
        return;
    if (!m_first) {
        m_first = child;
        m_firstParent = parent;
    }
    fieldsChanging(parent); // a parent left without children closes
    m_known.insert(child);
    m_ops.push_back({OpKind::Take, position, parent, child, {}});
}

void EditStep::childrenReordering(TreeNode *parent, const std::vector<Item *> &order)
{
    const std::span<Item *const> now = parent->children();
    if (std::equal(now.begin(), now.end(), order.begin(), order.end()) || !inTree(parent))
        return;
    if (!m_first) {
        m_first = parent;
        m_firstParent = parent->parent();
    }
    m_ops.push_back({OpKind::Reorder, 0, parent, nullptr, parent->copyOfChildren()});
}

bool EditStep::keeps(const Item *item)
{
    const EditStep *step = EditRecording::step;
    return step && !step->m_ops.empty() && step->m_ops.back().kind == OpKind::Take && step->m_ops.back().child == item;
}

bool EditStep::finish()
{
    for (auto kept = m_fields.begin(); kept != m_fields.end();) {
        if (sameFields(*kept->first, *kept->second))
            kept = m_fields.erase(kept);
        else
            ++kept;
    }
    m_categoriesChanged = m_categories != m_document.categories;
    if (!m_categoriesChanged)
        m_categories.clear();
    m_known = {};
    m_outside = {};
    return !isEmpty();
}

void EditStep::apply(Op &op, bool forward)
{
    switch (op.kind) {
    case OpKind::Insert:
    case OpKind::Take:
        if (forward == (op.kind == OpKind::Insert)) {
            op.parent->insertChild(op.child, op.position);
        } else {
            Q_ASSERT(op.parent->child(op.position) == op.child);
            op.parent->takeChild(op.position);
        }
        break;
    case OpKind::Reorder: {
        std::vector<Item *> other = op.parent->copyOfChildren();
        op.parent->reorderChildren(op.order);
        op.order = std::move(other);
        break;
    }
    }
}

void EditStep::tradeFields()
{
    for (auto &[node, kept] : m_fields)
        node->swapFields(*kept);
    if (m_categoriesChanged)
        std::swap(m_document.categories, m_categories);
}

void EditStep::undo()
{
    Q_ASSERT(m_done && !EditRecording::step);
    for (auto op = m_ops.rbegin(); op != m_ops.rend(); ++op)
        apply(*op, false);
    tradeFields();
    m_done = false;
    m_document.setCurrent(focus());
}

void EditStep::redo()
{
    Q_ASSERT(!m_done && !EditRecording::step);
    for (Op &op : m_ops)
        apply(op, true);
    tradeFields();
    m_done = true;
    m_document.setCurrent(focus());
}

TreeNode *EditStep::focus() const
{
    TreeNode *root = m_document.root();
    if (m_first && m_first->topNode() == root)
        return m_first;
    if (m_firstParent && m_firstParent->topNode() == root)
        return m_firstParent;
    return root;
}
