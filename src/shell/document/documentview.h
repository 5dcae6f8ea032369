#pragma once

#include "model/editing.h"
#include "shell/document/itemhost.h"
#include "views/visibilityfilter.h"

#include <QWidget>
#include <functional>
#include <memory>

class Document;
class NotePane;
class Prompts;
class QSplitter;
class QuickEntryBar;
class Settings;
class TreePane;
class UndoStack;
class ViewRows;

/// The view of the open document: the tree pane, the note pane below or
/// beside it behind a 7-pixel splitter, and the quick entry bar. It owns the
/// Document; the commands act on it from outside, through the core's
/// operations and the view changes below.
class DocumentView : public QWidget, public ItemHost {
    Q_OBJECT
public:
    DocumentView(std::unique_ptr<Document> document, Settings *settings, Prompts *prompts, QWidget *parent = nullptr);
    ~DocumentView() override;

    Document *document() const override { return m_document.get(); }
    TreePane *treePane() const override { return m_tree; }
    ViewRows *rows() const override { return m_rows.get(); }
    ItemClip &clip() override { return m_clip; }
    UndoStack *undoStack() const override { return m_undo.get(); }
    QWidget *hostWidget() override { return this; }
    bool isBranchView() const override { return false; }
    void changed(TreeNode *select) override { refresh(select); }
    /// Counts an edit of the document: the autosave and the title follow.
    void markChanged();
    /// Edits since the last save (a note being typed counts).
    bool isModified() const;
    /// Bumped by every edit; save() records the count it wrote.
    quint64 changeCount() const { return m_changes; }
    /// The document as it stands is the one on disk (just opened).
    void setUnmodified() { m_savedChanges = m_changes; }
    /// A note pane showing an item of the branch lets go of it.
    void forgetBranch(const Item *item) override;
    void edited(Edit edit, Item *item) override { Q_EMIT itemsEdited(edit, item); }
    NotePane *notePane() const { return m_notes; }
    QuickEntryBar *quickEntryBar() const { return m_quick; }
    QSplitter *splitter() const { return m_splitter; }

    /// The selected row becomes the document's current node (the root for a
    /// heading); a changed note in the pane is stored in its item.
    void commitEdits() override;
    /// Commits and writes the document under its path, or under path from
    /// then on; false with the reason in error.
    bool save(const QString &path = QString(), QString *error = nullptr);
    /// Commits and gives the bytes a save would write, with the change count
    /// they hold, for a write elsewhere (see markSaved).
    QByteArray snapshot(quint64 *changes);
    /// The bytes of snapshot() with this change count reached the disk.
    void markSaved(quint64 changes);

    void setQuickEntryVisible(bool visible);
    bool isQuickEntryVisible() const;
    void setNoteWindowVisible(bool visible);
    void setRecordingToolbarVisible(bool visible);
    bool isRecordingToolbarVisible() const { return m_recordingToolbar; }
    /// Shows the rows again after the settings changed (font, colours,
    /// compact mode).
    void applySettings() { applyRowStyle(); }
    /// Rebuilds the rows and makes node current, revealing it; without a
    /// node (or when the filters hide it) the nearest remaining row.
    void refresh(TreeNode *select = nullptr);
    /// Inserts a new item where position says and selects it.
    void insertNewItem(Item *item, InsertPosition position);

    void setViewMode(quint16 mode);
    void toggleFilter(VisibilityFilter::Toggle toggle);
    void expandAll();
    void collapseAll();

Q_SIGNALS:
    /// A value of the settings changed (the split) and should be saved.
    void settingsChanged();
    /// The selection or the document changed: the menus' states may differ.
    void stateChanged();
    /// The document was changed (markChanged).
    void documentChanged();
    /// An edit here or in a branch view that the reminders follow.
    void itemsEdited(ItemHost::Edit edit, Item *item);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void applyRowStyle();
    void applySplit();
    void onSplitterMoved();
    void onCurrentChanged(TreeNode *node);
    void storeNote();
    void loadNote(TreeNode *node);
    void onStatusTapped(Item *item, const QPoint &globalPos);
    void afterProgressChange(Item *item);
    void onDrop(Item *dragged, TreeNode *target);
    void onRename(TreeNode *node, const QString &name);
    void onQuickAdd(const QString &text, quint16 icon, bool italic, bool child);
    void afterStep(TreeNode *focus);
    Item *currentItem() const;
    TreeNode *currentNode() const;

    std::unique_ptr<Document> m_document;
    Settings *m_settings;
    Prompts *m_prompts;
    std::unique_ptr<ViewRows> m_rows;
    // Goes before the document: its steps hold items taken out of the tree.
    std::unique_ptr<UndoStack> m_undo;
    ItemClip m_clip;
    TreePane *m_tree = nullptr;
    NotePane *m_notes = nullptr;
    QuickEntryBar *m_quick = nullptr;
    QSplitter *m_splitter = nullptr;
    Item *m_noteItem = nullptr;
    bool m_recordingToolbar = false;
    bool m_applyingSplit = false;
    quint64 m_changes = 0;
    quint64 m_savedChanges = 0;
};
