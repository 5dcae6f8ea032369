#pragma once

#include "model/treenode.h"
#include "model/treewalker.h"

#include <QStringList>
#include <memory>

/// An ordinary node of the note tree: a task or note with its attributes.
class Item : public TreeNode {
public:
    enum StatusType : quint16 { NoStatus = 0, CheckBox = 1, ProgressBar = 2 };

    /// Defaults: priority 10, check box, show icon on, manual order
    /// ascending, created now.
    explicit Item(const QString &name = QString(), quint16 image = 0);
    /// The same defaults with a given creation date, without asking the clock
    /// (loading builds a million Items).
    Item(const QString &name, quint16 image, const SystemTime &created);
    ~Item() override;

    /// Task time as typed, at most 7 UTF-16 units.
    QString taskTime() const;
    void setTaskTime(const QString &text);
    /// Unit of the task time (0 none, 1 minutes ... 5 months); the file does
    /// not keep it.
    quint16 taskTimeType() const { return m_taskTimeType; }
    void setTaskTimeType(quint16 type)
    {
        if (m_taskTimeType != type) {
            willChange();
            m_taskTimeType = type;
        }
    }
    /// Index into the 36-colour table; 0 is the default colour.
    quint16 colour() const { return m_colour; }
    void setColour(quint16 colour)
    {
        if (m_colour != colour) {
            willChange();
            m_colour = colour;
        }
    }
    SystemTime created() const { return m_createdWhole ? m_extras->rare->wide->created : m_created.unpack(); }
    void setCreated(const SystemTime &time);

    QStringList links() const;
    void setLinks(const QStringList &links);

    int noteSize() const;
    QByteArray note() const override;
    /// Keeps a copy; an empty buffer leaves no note.
    void setNote(const QByteArray &note) override;

    quint16 progress() const override { return m_progress; }
    /// Stores the value, then rolls the change up through every automatic
    /// ancestor to the root.
    void setProgress(quint16 progress) override;
    /// Stores the value without the roll-up (loading, cloning).
    void storeProgress(quint16 progress)
    {
        if (m_progress != progress) {
            willChange();
            m_progress = progress;
        }
    }
    quint16 statusType() const override { return m_statusType; }
    void setStatusType(quint16 type)
    {
        if (m_statusType != type) {
            willChange();
            m_statusType = type;
        }
    }
    bool isComplete() const override { return m_progress == 100; }

    bool showIcon() const { return m_showIcon; }
    void setShowIcon(bool on)
    {
        if (m_showIcon != on) {
            willChange();
            m_showIcon = on;
        }
    }
    bool autoProgress() const { return m_autoProgress; }
    void setAutoProgress(bool on)
    {
        if (m_autoProgress != on) {
            willChange();
            m_autoProgress = on;
        }
    }
    bool isItalic() const { return m_italic; }
    void setItalic(bool on)
    {
        if (m_italic != on) {
            willChange();
            m_italic = on;
        }
    }
    /// Bit 0 ShowIcon, bit 1 AutoProgress, bit 2 Italic.
    quint32 flags() const { return quint32(m_showIcon) | quint32(m_autoProgress) << 1 | quint32(m_italic) << 2; }
    void setFlags(quint32 flags);

    QString category() const override;
    void setCategory(const QString &category);
    quint16 priority() const override { return m_priority; }
    void setPriority(quint16 priority)
    {
        if (m_priority != priority) {
            willChange();
            m_priority = priority;
        }
    }
    SystemTime dueDate() const override { return m_dueWhole ? m_extras->rare->wide->dueDate : m_dueDate.unpack(); }
    void setDueDate(const SystemTime &date);
    bool hasDueDate() const { return m_dueWhole ? m_extras->rare->wide->dueDate.hasDate() : m_dueDate.hasDate(); }
    SystemTime reminderTime() const;
    void setReminderTime(const SystemTime &time);

    /// Every attribute, links and note included, childless and collapsed,
    /// with a creation date of now.
    virtual Item *clone() const;

    /// The identity that item links carry ("!" + decimal handle). Given on
    /// first use and never reused, so a link to a destroyed Item stays dead.
    quint32 handle() const;
    /// Whether a handle was ever given, i.e. whether any link can name this
    /// Item; asks nothing of the registry.
    bool hasHandle() const { return m_handle != 0; }
    /// Leaves the registry now, as destruction would: links to it are dead.
    void forgetHandle();
    /// "!" followed by the handle.
    QString linkText() const;
    /// The live Item with this handle, or null.
    static Item *fromHandle(quint32 handle);
    /// The handle of an item link text ("!123"), or 0 when it is none.
    static quint32 handleOfLink(const QString &link);
    static bool isItemLink(const QString &link) { return link.startsWith(QLatin1Char('!')); }

private:
    friend class TreeNode;
    void copyItemFieldsTo(Item &other) const;
    void swapItemFields(Item &other);

    struct WideDates {
        SystemTime created;
        SystemTime dueDate;
    };
    // What most items lack lives apart, to keep a million items small; of
    // that, a note is common and the rest rare, one step further away.
    struct Rare {
        Rare() = default;
        Rare(const Rare &other);
        QString taskTime;
        QStringList links;
        SystemTime reminderTime;
        // The dates whose fields are too wide to pack (m_createdWhole, m_dueWhole).
        std::unique_ptr<WideDates> wide;
        bool isEmpty() const { return taskTime.isEmpty() && links.isEmpty() && reminderTime.isZero() && !wide; }
    };
    struct Extras {
        Extras() = default;
        Extras(const Extras &other);
        QByteArray note;
        std::unique_ptr<Rare> rare;
    };
    Extras &extras();
    Rare &rare();
    const Rare *rareOrNull() const { return m_extras ? m_extras->rare.get() : nullptr; }
    void dropEmptyExtras();
    /// Keeps a date too wide to pack, or lets go of it (a zero time).
    void storeWide(SystemTime WideDates::*field, const SystemTime &time);

    // The small fields first: they fill the end of TreeNode's last word.
    bool m_showIcon : 1 = true;
    bool m_autoProgress : 1 = false;
    bool m_italic : 1 = false;
    bool m_createdWhole : 1 = false;
    bool m_dueWhole : 1 = false;
    quint16 m_progress = 0;
    quint16 m_statusType = CheckBox;
    quint16 m_priority = 10;
    std::unique_ptr<Extras> m_extras;
    /// The category's number in the process's pool of category texts.
    quint32 m_category = 0;
    mutable quint32 m_handle = 0;
    PackedTime m_created;
    PackedTime m_dueDate;
    quint16 m_taskTimeType = 0;
    quint16 m_colour = 0;
};

template<typename Fn>
void TreeNode::forEachDescendant(Fn &&fn) const
{
    TreeWalker walker(this);
    while (Item *item = walker.next())
        fn(item);
}
