#pragma once

#include "model/childlist.h"
#include "model/systemtime.h"

#include <QByteArray>
#include <QString>
#include <vector>

class Item;

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
    void setImage(quint16 image) { m_image = image; }
    /// Raw child order key; see ChildOrder for the operations that sort.
    quint16 sort() const { return m_sort; }
    void setSort(quint16 sort) { m_sort = sort; }
    const QString &name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }
    /// Kept unchanged through load and save; its meaning is not ours.
    quint32 extraWord() const { return m_extraWord; }
    void setExtraWord(quint32 word) { m_extraWord = word; }

    bool isExpanded() const { return m_expanded; }
    /// A node is only ever expanded while it has children.
    void setExpanded(bool expanded) { m_expanded = expanded && !m_children.empty(); }
    bool isAscending() const { return m_ascending; }
    void setAscending(bool ascending) { m_ascending = ascending; }
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
    void reorderChildren(const std::vector<Item *> &order) { m_children.assign(order); }
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

protected:
    TreeNode(Kind kind, const QString &name, quint16 image);
    void copyNodeFieldsTo(TreeNode *other) const;

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
