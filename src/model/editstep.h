#pragma once

#include <QStringList>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

class Document;
class Item;
class TreeNode;

/// One undoable change to a document: what the tree looked like before, kept
/// as little as possible. While a Recording of the step is alive, the tree
/// reports every change made on this thread: a node's fields are kept aside
/// the first time they change, a child put in, taken out or reordered is
/// noted with its place. A branch taken out is kept, not copied, and a node
/// outside the document's tree (a template, an item being built) is ignored.
/// The document's category list is kept when it grew. undo() and redo() then
/// trade the document between its two states.
class EditStep {
public:
    explicit EditStep(Document &document);
    /// Frees the items that only this step still holds: those it took out
    /// (when done) or put in (when undone).
    ~EditStep();
    EditStep(const EditStep &) = delete;
    EditStep &operator=(const EditStep &) = delete;

    /// Records the changes of this thread until it goes; one at a time.
    class Recording {
    public:
        explicit Recording(EditStep &step);
        ~Recording();
        Recording(const Recording &) = delete;
        Recording &operator=(const Recording &) = delete;
    };

    /// Ends the recording: what was kept aside but came out the same is let
    /// go. True when something changed.
    bool finish();
    bool isEmpty() const { return m_ops.empty() && m_fields.empty() && !m_categoriesChanged; }

    /// Puts the document back as it was before the step, and again as after.
    void undo();
    void redo();
    /// The node to show after undo() or redo(): the first one the step
    /// touched, or its parent when the undo or redo took it out.
    TreeNode *focus() const;
    /// Whether the items of the step are in the tree as after the change.
    bool isDone() const { return m_done; }
    /// How many nodes the step keeps aside and how many places it noted.
    size_t keptFields() const { return m_fields.size(); }
    size_t keptPlaces() const { return m_ops.size(); }

    /// Whether a recording step has just taken item out of the tree and keeps
    /// it; a delete then leaves the item to the step instead of freeing it.
    static bool keeps(const Item *item);

    // What the tree reports while the step records (see EditRecording).
    void fieldsChanging(TreeNode *node);
    void childInserted(TreeNode *parent, int position, Item *child);
    void childTaking(TreeNode *parent, int position, Item *child);
    void childrenReordering(TreeNode *parent, const std::vector<Item *> &order);

private:
    enum class OpKind : quint8 { Insert, Take, Reorder };
    struct Op {
        OpKind kind;
        int position;
        TreeNode *parent;
        Item *child;
        std::vector<Item *> order; ///< a reorder's other order
    };

    bool inTree(TreeNode *node);
    void apply(Op &op, bool forward);
    void tradeFields();

    Document &m_document;
    std::vector<Op> m_ops;
    std::unordered_map<TreeNode *, std::unique_ptr<TreeNode>> m_fields;
    // Nodes known to be, or to have been during the step, in the document's
    // tree, and nodes known to be outside it until the next insert.
    std::unordered_set<const TreeNode *> m_known;
    std::unordered_set<const TreeNode *> m_outside;
    QStringList m_categories;
    bool m_categoriesChanged = false;
    bool m_done = true;
    // The first node the step touched, and the parent it had then.
    TreeNode *m_first = nullptr;
    TreeNode *m_firstParent = nullptr;
};
