#pragma once

#include "model/item.h"

#include <QCollatorSortKey>
#include <QSet>
#include <QStringList>
#include <memory>
#include <set>

/// The open document: the note tree and the document-wide settings that the
/// file keeps with it.
class Document {
public:
    enum ViewMode : quint16 { DefaultView = 0, ByCategory = 1, ByDueDate = 2, ByPriority = 3 };
    enum NoteType : quint16 { PlainText = 0, RichInk = 1, RichText = 2 };
    /// The names of the note types, in the order of their numbers.
    static constexpr const char *NoteTypeNames[] = {"Plain Text", "Rich Ink", "Rich Text"};
    /// The name of a note type; an unknown one is named as plain text.
    static QString noteTypeName(quint16 type)
    {
        if (type > RichText)
            type = PlainText;
        return QString::fromLatin1(NoteTypeNames[type]);
    }
    /// HideByStatus bits: hide items whose StatusType is "No Status",
    /// "Check Box" or "Progress Bar".
    enum HideBits : quint32 { HideNoStatus = 1u << 4, HideCheckBox = 1u << 5, HideProgressBar = 1u << 6 };

    Document();
    ~Document();
    Document(const Document &) = delete;
    Document &operator=(const Document &) = delete;

    /// For a process about to end (qbx): from now on a destroyed Document
    /// leaves its tree to the operating system, which takes the memory back
    /// at once, instead of freeing a million nodes one by one.
    static void keepTreesUntilExit();
    /// For the desktop application: from now on a destroyed Document's tree
    /// is freed on a thread of its own, so closing a million items never
    /// keeps the window waiting.
    static void freeTreesInBackground();

    TreeNode *root() const { return m_root.get(); }
    /// Replaces the tree; the current node becomes the new root.
    void setRoot(std::unique_ptr<TreeNode> root);

    /// The selected node; the root when nothing else is.
    TreeNode *current() const { return m_current ? m_current : m_root.get(); }
    void setCurrent(TreeNode *node) { m_current = node; }
    Item *currentItem() const { return m_current ? m_current->asItem() : nullptr; }

    /// The live Item of this tree that an item link names, or null.
    Item *linkTarget(const QString &link) const;
    Item *liveItem(quint32 handle) const;

    /// Bit 0 HideCompleted, 1 ShowNoteWindow, 2 ShowDueDate, 3 ShowStatistics,
    /// 7 ViewAscending.
    quint32 docFlags() const;
    void setDocFlags(quint32 flags);

    /// Adds a category unless it is empty or an equal text (case counts) is
    /// already listed; keeps the order of first appearance. Returns the text
    /// sharing its storage with earlier equal texts, for the Item to keep.
    QString collectCategory(const QString &category);

    QString path;
    quint32 version = 551; // as read; the writer always writes 551
    quint16 viewMode = DefaultView;
    quint16 viewOrder = 0;
    bool viewAscending = true;
    bool showDueDate = false;
    bool hideCompleted = false;
    bool showNoteWindow = true;
    bool showStatistics = false;
    quint32 hideByStatus = 0;
    quint16 noteType = PlainText;
    QByteArray passwordHash;
    QStringList categories;

private:
    std::unique_ptr<TreeNode> m_root;
    TreeNode *m_current = nullptr;
    // Texts already met, exactly as spelled: most items repeat a category, and
    // the locale comparison is only needed for a spelling not seen before.
    QSet<QString> m_seenCategories;
    // The sort keys of the listed categories, to find a locale-equal one.
    struct KeyOrder {
        bool operator()(const QCollatorSortKey &a, const QCollatorSortKey &b) const { return a.compare(b) < 0; }
    };
    std::set<QCollatorSortKey, KeyOrder> m_categoryKeys;
    qsizetype m_categoriesSeenCount = 0;
};
