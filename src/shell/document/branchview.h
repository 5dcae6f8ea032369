#pragma once

#include "model/editing.h"
#include "shell/document/itemhost.h"

#include <QDialog>
#include <functional>
#include <memory>

class Document;
class Item;
class Prompts;
class QAction;
class QToolBar;
class Settings;
class TreeNode;
class TreePane;
class ViewRows;

/// "Branch View": one item's branch in a window of its own, with the item
/// menu (its own item commands), status taps, renaming and dragging of the
/// main list, and a Move and Copy mark of its own. When a change leaves nothing of the branch shown
/// (the filters hide it), it says so and closes.
class BranchView : public QDialog, public ItemHost {
    Q_OBJECT
public:
    /// otherClip is the main view's mark, which must let go of an item that
    /// is deleted here. afterChange runs after every change of the tree, so
    /// the main list can rebuild its rows.
    BranchView(Document *document, Item *top, const Settings *settings, Prompts *prompts, ItemClip *otherClip,
               QWidget *parent = nullptr);
    ~BranchView() override;

    void setAfterChange(std::function<void()> afterChange) { m_afterChange = std::move(afterChange); }
    /// The main list, told of the edits made here.
    void setMainList(ItemHost *main);
    void edited(Edit edit, Item *item) override
    {
        if (m_main)
            m_main->edited(edit, item);
    }
    /// Puts a command on the window's tool bar.
    void addToolBarAction(QAction *action);

    Document *document() const override { return m_document; }
    TreePane *treePane() const override { return m_tree; }
    ViewRows *rows() const override { return m_rows.get(); }
    ItemClip &clip() override { return m_clip; }
    UndoStack *undoStack() const override { return m_main ? m_main->undoStack() : nullptr; }
    QWidget *hostWidget() override { return this; }
    bool isBranchView() const override { return true; }
    void commitEdits() override {}
    /// Rebuilds the rows; closes the window when the top was deleted or the
    /// filters hide the whole branch.
    void changed(TreeNode *select) override;
    /// The main view's mark lets go of the branch too.
    void forgetBranch(const Item *item) override;
    /// The top item, or null once it was deleted.
    Item *top() const;

private:
    void onStatusTapped(Item *item, const QPoint &globalPos);

    Document *m_document;
    quint32 m_topHandle;
    const Settings *m_settings;
    Prompts *m_prompts;
    ItemClip *m_otherClip;
    ItemClip m_clip;
    std::unique_ptr<ViewRows> m_rows;
    TreePane *m_tree = nullptr;
    QToolBar *m_toolBar = nullptr;
    ItemHost *m_main = nullptr;
    std::function<void()> m_afterChange;
};
