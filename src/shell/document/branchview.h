#pragma once

#include "model/editing.h"

#include <QDialog>
#include <functional>
#include <memory>

class Document;
class Item;
class Prompts;
class Settings;
class TreeNode;
class TreePane;
class ViewRows;

/// "Branch View": one item's branch in a window of its own, with the item
/// menu, status taps, renaming and dragging of the main list, and a Move and
/// Copy mark of its own. When a change leaves nothing of the branch shown
/// (the filters hide it), it says so and closes.
class BranchView : public QDialog {
    Q_OBJECT
public:
    /// otherClip is the main view's mark, which must let go of an item that
    /// is deleted here. afterChange runs after every change of the tree, so
    /// the main list can rebuild its rows.
    BranchView(Document *document, Item *top, const Settings *settings, Prompts *prompts, ItemClip *otherClip,
               QWidget *parent = nullptr);
    ~BranchView() override;

    void setAfterChange(std::function<void()> afterChange) { m_afterChange = std::move(afterChange); }
    /// Edits one item's attributes (the main view's properties dialog).
    void setPropertiesEditor(std::function<bool(Item *)> editor) { m_editProperties = std::move(editor); }

    TreePane *treePane() const { return m_tree; }
    ViewRows *rows() const { return m_rows.get(); }
    ItemClip &clip() { return m_clip; }
    /// The top item, or null once it was deleted.
    Item *top() const;

    /// Runs an item menu command on the selected row; false when it is not
    /// available there.
    bool runCommand(int id);
    /// Opens the item menu of a row.
    void showItemMenu(int row, const QPoint &globalPos);

private:
    Item *currentItem() const;
    void changed(TreeNode *select);
    void onStatusTapped(Item *item, const QPoint &globalPos);
    void deleteCurrent();
    void paste();
    bool isAvailable(int id) const;

    Document *m_document;
    quint32 m_topHandle;
    const Settings *m_settings;
    Prompts *m_prompts;
    ItemClip *m_otherClip;
    ItemClip m_clip;
    std::unique_ptr<ViewRows> m_rows;
    TreePane *m_tree = nullptr;
    std::function<void()> m_afterChange;
    std::function<bool(Item *)> m_editProperties;
};
