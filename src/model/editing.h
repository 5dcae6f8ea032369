#pragma once

#include "model/systemtime.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QtGlobal>
#include <optional>

class Document;
class Item;
class TreeNode;

/// Where a newly created item goes, relative to the current item.
enum class InsertPosition : quint8 {
    Same = 0,  ///< into the current item's parent, right after it
    Child = 1, ///< into the current item, as its first child
    Top = 2,   ///< into the root, as its last child
};

/// What "Move" or "Copy" marked for a later "Paste". A reference, not a copy:
/// a copy is made only when pasting, so it reflects the item at that moment.
class ItemClip {
public:
    enum Mode : quint8 { Empty = 0, MoveMode = 1, CopyMode = 2 };

    Item *item() const { return m_item; }
    Mode mode() const { return m_mode; }
    bool isEmpty() const { return m_mode == Empty; }

    void markMove(Item *item);
    void markCopy(Item *item);
    void clear();

    /// Paste is offered only when something is marked, the target is neither
    /// the marked item nor inside its branch, and a move would not put the
    /// item back under its present parent.
    bool canPaste(const TreeNode *target) const;
    /// A copy of an item with children asks whether the children come too.
    bool asksForChildren() const;
    /// Moves the marked item, or appends a duplicate of it (with its children
    /// when withChildren), as the last child of target; a sorted target sorts
    /// again. Returns the pasted item, or null when paste is not allowed.
    Item *paste(TreeNode *target, bool withChildren);
    /// Called before a branch is destroyed: a mark inside it is dropped.
    void forgetBranch(const Item *branchTop);

private:
    Item *m_item = nullptr;
    Mode m_mode = Empty;
};

/// Every attribute that the item properties dialog edits, as it is to be
/// stored. Links and the note are stored only when given.
struct ItemProperties {
    QString name;
    quint16 priority = 1;
    QString category;
    quint16 image = 0;
    quint16 colour = 0;
    bool showIcon = false;
    bool italic = false;
    quint16 statusType = 0;
    SystemTime dueDate;
    QString taskTime;
    quint16 taskTimeType = 0;
    SystemTime reminderTime;
    std::optional<QStringList> links;
    std::optional<QByteArray> note;
    bool autoProgress = false;
    quint16 progress = 0;
};

/// The operations by which the user changes the shape of the note tree. Each
/// sorts a parent again when it orders its children by a key.
namespace Editing {

/// Places newItem (taking ownership) relative to the document's current item
/// in the tree, sorts the receiving parent and makes newItem current. With no
/// Item current, "Same" and "Child" act as "Top".
TreeNode *insertItem(Document &document, Item *newItem, InsertPosition position);

/// "Create" > "Copy": a duplicate of item alone, inserted right after it.
Item *createCopy(Item *item);

/// A duplicate of the whole branch below source (source's own fields are not
/// copied here), appended under copyTop in order; used by paste with children.
void copyChildren(const Item *source, Item *copyTop);

/// Deletes item and its branch (a recording edit step keeps the branch
/// instead, for its undo): drops a clip mark inside it, recomputes the
/// parent's automatic progress and makes the parent current. Returns the
/// parent.
TreeNode *deleteItem(Document &document, Item *item, ItemClip *clip);

/// A drop is ignored when there is no target, when the target is the dragged
/// item, or when it lies inside the dragged item's branch.
bool canDrop(const Item *dragged, const TreeNode *target);
/// Makes dragged the last child of target; false when the drop is ignored.
bool drop(Item *dragged, TreeNode *target);

/// Stores properties in item. With a document the category joins the
/// document's list (a template's item has none). The parent sorts again by
/// its key and progress rolls up: switching to automatic progress computes
/// the item's own progress at once.
void applyProperties(Item *item, const ItemProperties &properties, Document *document);

/// Sets the priority (1 to 20); a parent ordered by priority sorts again.
void setPriority(Item *item, quint16 priority);

enum class Move : quint8 { Up, Down, UpLevel, DownLevel };
/// The move menu's enabling: an Item in the default view; not up when first,
/// not down when last, not up a level when a child of the root, not down a
/// level when first (nothing to go under).
bool canMove(const Document &document, const Item *item, Move move);
/// Moves the item one place or one level; false when not allowed.
bool move(Document &document, Item *item, Move move);

/// The quick entry bar: the new item for the bar's text (cut to 63 units),
/// icon and italic toggle, taking priority, status type, colour and show-icon
/// from the current item when that is an Item.
Item *quickEntryItem(const QString &text, quint16 icon, bool italic, const TreeNode *current);
/// "Child" or "Same" by the bar's child toggle when an Item is current,
/// otherwise "Top".
InsertPosition quickEntryPosition(const TreeNode *current, bool childToggle);
/// Adds text to the bar's history unless an entry equal but for case is
/// there; returns whether it was added.
bool addToHistory(QStringList &history, const QString &text);

} // namespace Editing
