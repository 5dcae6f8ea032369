#pragma once

#include "model/editing.h"
#include "views/visibilityfilter.h"

#include <QHash>
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
class ViewRows;

/// The view of the open document: the tree pane, the note pane below or
/// beside it behind a 7-pixel splitter, and the quick entry bar. It owns the
/// Document and runs the numbered commands on it through the core's
/// operations; it only shows results and asks questions.
class DocumentView : public QWidget {
    Q_OBJECT
public:
    DocumentView(std::unique_ptr<Document> document, Settings *settings, Prompts *prompts, QWidget *parent = nullptr);
    ~DocumentView() override;

    Document *document() const { return m_document.get(); }
    TreePane *treePane() const { return m_tree; }
    NotePane *notePane() const { return m_notes; }
    QuickEntryBar *quickEntryBar() const { return m_quick; }
    QSplitter *splitter() const { return m_splitter; }
    ViewRows *rows() const { return m_rows.get(); }
    ItemClip &clip() { return m_clip; }

    /// Whether a command has a handler here.
    bool hasCommand(int id) const;
    /// The greying rules of the menu bar's commands (an unknown command is
    /// greyed).
    bool isCommandEnabled(int id) const;
    /// Check and radio marks of the menu bar's commands.
    bool isCommandChecked(int id) const;
    /// Runs a command when it is enabled; false otherwise.
    bool runCommand(int id);
    /// Registers the handler of a command (the dialogs plug in here).
    void setCommand(int id, std::function<void()> handler);
    /// The same with its own greying rule, asked instead of the built-in one.
    void setCommand(int id, std::function<void()> handler, std::function<bool()> enabled);

    /// The selected row becomes the document's current node (the root for a
    /// heading); a changed note in the pane is stored in its item.
    void commitEdits();
    /// Commits and writes the document; shows the save failure message.
    bool save();
    /// Writes the document under a new path, which it keeps from then on.
    bool saveAs(const QString &path);

    void setQuickEntryVisible(bool visible);
    bool isQuickEntryVisible() const;
    /// Shows the rows again after the settings changed (font, colours,
    /// compact mode).
    void applySettings() { applyRowStyle(); }
    /// Opens the item menu for a row at a global position.
    void showItemMenu(int row, const QPoint &globalPos);
    /// Rebuilds the rows and makes node current, revealing it; without a
    /// node (or when the filters hide it) the nearest remaining row.
    void refresh(TreeNode *select = nullptr);

Q_SIGNALS:
    /// A value of the settings changed (the split) and should be saved.
    void settingsChanged();
    /// The selection or the document changed: the menus' states may differ.
    void stateChanged();
    void frameCommand(int id);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void registerCommands();
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
    void insertNewItem(Item *item, InsertPosition position);
    void paste();
    void deleteCurrent();
    void moveCurrent(Editing::Move move);
    void setViewMode(quint16 mode);
    void toggleFilter(VisibilityFilter::Toggle toggle);
    void orderChildren(quint16 key);
    void setDirection(bool ascending);
    Item *currentItem() const;
    TreeNode *currentNode() const;

    std::unique_ptr<Document> m_document;
    Settings *m_settings;
    Prompts *m_prompts;
    std::unique_ptr<ViewRows> m_rows;
    ItemClip m_clip;
    TreePane *m_tree = nullptr;
    NotePane *m_notes = nullptr;
    QuickEntryBar *m_quick = nullptr;
    QSplitter *m_splitter = nullptr;
    Item *m_noteItem = nullptr;
    bool m_recordingToolbar = false;
    bool m_applyingSplit = false;
    QHash<int, std::function<void()>> m_commands;
    QHash<int, std::function<bool()>> m_enabledRules;
};
