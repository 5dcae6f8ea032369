#pragma once

class Document;
class Item;
class ItemClip;
class QWidget;
class TreeNode;
class TreePane;
class UndoStack;
class ViewRows;

/// What the item commands work on: a tree pane over the rows of one
/// document, in the main view or in a branch view.
class ItemHost {
public:
    virtual ~ItemHost() = default;

    virtual Document *document() const = 0;
    virtual TreePane *treePane() const = 0;
    virtual ViewRows *rows() const = 0;
    /// The Move and Copy mark of this list.
    virtual ItemClip &clip() = 0;
    /// The undo stack of the document, shared by every list of it.
    virtual UndoStack *undoStack() const = 0;
    virtual QWidget *hostWidget() = 0;
    /// A branch view offers the item commands that stay inside the branch.
    virtual bool isBranchView() const = 0;
    /// The selection and a changed note go into the document.
    virtual void commitEdits() = 0;
    /// The tree changed: the rows are built again and select, when shown,
    /// becomes current.
    virtual void changed(TreeNode *select) = 0;
    /// Before item's branch is deleted: whatever refers into it lets go.
    virtual void forgetBranch(const Item *item) = 0;

    /// What an edit did that the reminders follow.
    enum class Edit { ReminderChanged, ItemsAdded, ItemsRemoved };
    /// Called after such an edit; item is the edited item or the top of the
    /// added branch.
    virtual void edited(Edit edit, Item *item) = 0;
};
