#pragma once

#include "model/childlist.h"
#include "model/systemtime.h"

#include <QByteArray>
#include <QString>
#include <vector>

class EditStep;
class Item;
class TreeNode;

/// The edit step that records the changes made on this thread to a document,
/// or null (see model/editstep.h). The tree calls these before or after each
/// change; they ignore a node outside the recorded document's tree.
namespace EditRecording {
inline thread_local EditStep *step = nullptr;
void fieldsChanging(TreeNode *node);
void childInserted(TreeNode *parent, int position, Item *child);
void childTaking(TreeNode *parent, int position, Item *child);
void childrenReordering(TreeNode *parent, const std::vector<Item *> &order);
} // namespace EditRecording

/// A node of the note tree. The root of a document is a plain TreeNode; every
/// other node is an Item. A node owns its children; destroying a node destroys
/// its branch without recursion, so a chain of any depth is safe.
class TreeNode {
public:
    enum class Kind : quint8 { Root = 0, Item = 1 };

    /// How a node orders its children.
    enum SortKey : quint16 {
        SortName = 0,
        SortPriority = 1,
        SortCategory = 2,
        SortPercentComplete = 3,
        SortDueDate = 4,
        SortCreationDate = 5,
        SortManual = 15,
    };

    explicit TreeNode(const QString &name = QStringLiteral("Root"), quint16 image = 0);
    virtual ~TreeNode();
    TreeNode(const TreeNode &) = delete;
    TreeNode &operator=(const TreeNode &) = delete;

    Kind kind() const { return m_isItem ? Kind::Item : Kind::Root; }
    bool isItem() const { return m_isItem; }
    Item *asItem();
    const Item *asItem() const;

    quint16 image() const { return m_image; }
    void setImage(quint16 image)
    {
        if (m_image != image) {
            willChange();
            m_image = image;
        }
    }
    /// Raw child order key; see ChildOrder for the operations that sort.
    quint16 sort() const { return m_sort; }
    void setSort(quint16 sort)
    {
        if (m_sort != sort) {
            willChange();
            m_sort = sort;
        }
    }
    const QString &name() const { return m_name; }
    void setName(const QString &name)
    {
        if (m_name != name) {
            willChange();
            m_name = name;
        }
    }
    /// Kept unchanged through load and save; its meaning is not ours.
    quint32 extraWord() const { return m_extraWord; }
    void setExtraWord(quint32 word)
    {
        if (m_extraWord != word) {
            willChange();
            m_extraWord = word;
        }
    }

    bool isExpanded() const { return m_expanded; }
    /// A node is only ever expanded while it has children.
    void setExpanded(bool expanded)
    {
        willChange();
        m_expanded = expanded && !m_children.empty();
    }
    bool isAscending() const { return m_ascending; }
    void setAscending(bool ascending)
    {
        if (m_ascending != ascending) {
            willChange();
            m_ascending = ascending;
        }
    }
    /// Bit 0 Expanded, bit 1 Ascending.
    quint32 stdFlags() const { return quint32(m_expanded) | quint32(m_ascending) << 1; }
    void setStdFlags(quint32 flags);

    TreeNode *parent() const { return m_parent; }
    std::span<Item *const> children() const { return m_children.view(); }
    /// The children as a list of their own, to reorder or keep.
    std::vector<Item *> copyOfChildren() const { return {m_children.view().begin(), m_children.view().end()}; }
    int childCount() const { return int(m_children.size()); }
    bool hasChildren() const { return !m_children.empty(); }
    Item *child(int index) const { return m_children[index]; }
    /// Takes ownership; position -1 (or past the end) appends.
    void insertChild(Item *child, int position = -1);
    void appendChild(Item *child) { insertChild(child, -1); }
    /// Detaches the child and hands ownership back to the caller.
    Item *takeChild(int position);
    /// Detaches the child if it is one of ours; false otherwise.
    bool removeChild(Item *child);
    /// Replaces the children by the same Items in another order.
    void reorderChildren(const std::vector<Item *> &order)
    {
        if (EditRecording::step) [[unlikely]]
            EditRecording::childrenReordering(this, order);
        m_children.assign(order);
    }
    /// Position among the children, or the child count when absent.
    int indexOf(const TreeNode *child) const;
    /// Depth below the root: 0 for the root, 1 for its children.
    int level() const;
    TreeNode *topNode();
    bool isAncestorOf(const TreeNode *node) const;


    // The attribute operations every node answers; the root answers with
    // empty or zero values and ignores the setters.
    virtual SystemTime dueDate() const { return {}; }
    virtual QString category() const { return {}; }
    virtual quint16 priority() const { return 0; }
    virtual quint16 progress() const { return 0; }
    virtual void setProgress(quint16) {}
    virtual quint16 statusType() const { return 0; }
    virtual bool isComplete() const { return false; }
    virtual QByteArray note() const { return {}; }
    virtual void setNote(const QByteArray &) {}
    /// Recomputes this node's automatic progress and climbs to the root.
    void progressChanged();

    /// Calls fn(Item *) for every node of the branch below this one (not
    /// this one) in depth-first pre-order, without recursion.
    template<typename Fn>
    void forEachDescendant(Fn &&fn) const;

    /// Every field of the node itself, an Item's attributes included, but
    /// its place in the tree and an Item's handle: what an edit keeps aside
    /// and puts back. Between an Item and the root only the node's own.
    void copyFieldsTo(TreeNode &other) const;
    void swapFields(TreeNode &other);

protected:
    TreeNode(Kind kind, const QString &name, quint16 image);
    /// Called by every setter before it changes a field.
    void willChange()
    {
        if (EditRecording::step) [[unlikely]]
            EditRecording::fieldsChanging(this);
    }

private:
    // The flags share one byte, and Item's own small fields fill the rest of
    // the last word: a million items, 16 bytes each.
    TreeNode *m_parent = nullptr;
    ChildList m_children;
    QString m_name;
    quint32 m_extraWord = 0;
    quint16 m_image = 0;
    quint16 m_sort = SortManual;
    bool m_isItem : 1 = false;
    bool m_expanded : 1 = false;
    bool m_ascending : 1 = true;
};
