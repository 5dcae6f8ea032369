#pragma once

#include "model/editing.h"
#include "model/systemtime.h"

#include <QDialog>
#include <QList>
#include <QStringList>

class Document;
class IconButton;
class ColourCombo;
class Item;
class LinksPage;
class NotePane;
class Prompts;
class Template;
class QButtonGroup;
class QCheckBox;
class QComboBox;
class QDateEdit;
class QDateTimeEdit;
class QLabel;
class QLineEdit;
class QRadioButton;
class QSpinBox;
class QTabWidget;

/// An item's properties on four pages: "General" (name, priority, category,
/// icon, colour, status, "Manual"/"Automatic", progress), "Note", "Links" and
/// "Details" (due date, task time with its unit, reminder, creation date).
/// The same dialog makes a new item, with the place it goes and a template
/// to start from.
///
/// The dialog edits its controls only: the item changes when store() is
/// called after OK, so Cancel leaves everything as it was.
class ItemPropertiesDialog : public QDialog {
    Q_OBJECT
public:
    enum Page { GeneralPage = 0, NotePage = 1, LinkPage = 2, DetailsPage = 3 };

    /// A template offered in the "Template:" list.
    struct TemplateChoice {
        QString name;
        const Template *entry = nullptr;
    };

    struct Context {
        Document *document = nullptr;
        Prompts *prompts = nullptr;
        QString documentsFolder;
        /// The categories to offer (the document's, and the calendar's when
        /// in use).
        QStringList categories;
        /// Templates of the document's note type, in list order.
        QList<TemplateChoice> templates;
        /// Whether "Edit in Word" is offered on the note page.
        bool externalEditor = true;
        /// Editing a template: no links page, no creation date, and its
        /// category joins no document.
        bool forTemplate = false;
        /// The note type of the note page; -1 for the document's.
        int noteType = -1;
        /// The icons the icon chooser offers first.
        QList<quint16> favouriteIcons;
    };

    /// Edits item. With isNew the item is not yet in the tree: the dialog
    /// also asks where it goes.
    ItemPropertiesDialog(const Context &context, Item *item, bool isNew, QWidget *parent = nullptr);
    ~ItemPropertiesDialog() override;

    /// Shows a page (filling the links page when it is first shown).
    void setPage(int page);
    /// Fills every control from a template, as choosing it in the
    /// "Template:" list does.
    void applyTemplate(const Template &templ);
    /// Writes the controls into the item through the model's operations: a
    /// changed priority, name, category or date sorts the parent again when
    /// it orders by that key, and progress rolls up; switching to
    /// "Automatic" computes the item's progress at once.
    void store();

    /// New items: where the item goes ("Same", "Child" or "Top").
    InsertPosition position() const;
    /// An item link followed from the links page closes the dialog with OK;
    /// this is its target, for the caller to select.
    Item *followedLink() const { return m_followed; }

    QTabWidget *pages() const { return m_pages; }
    LinksPage *linksPage() const { return m_links; }
    NotePane *notePane() const { return m_note; }

private:
    QWidget *buildGeneral(bool isNew);
    QWidget *buildNote();
    QWidget *buildDetails();
    void load(const Item &item);
    quint16 noteType() const;
    void updateProgressControls();
    void editInWord();

    Context m_context;
    Item *m_item;
    bool m_isNew;
    Item *m_followed = nullptr;
    SystemTime m_dueDate;
    SystemTime m_reminder;

    QTabWidget *m_pages = nullptr;
    QComboBox *m_template = nullptr;
    QLineEdit *m_name = nullptr;
    QComboBox *m_priority = nullptr;
    QComboBox *m_category = nullptr;
    IconButton *m_icon = nullptr;
    ColourCombo *m_colour = nullptr;
    QComboBox *m_status = nullptr;
    QRadioButton *m_manual = nullptr;
    QRadioButton *m_automatic = nullptr;
    QSpinBox *m_progress = nullptr;
    QCheckBox *m_showIcon = nullptr;
    QCheckBox *m_italic = nullptr;
    QButtonGroup *m_position = nullptr;
    NotePane *m_note = nullptr;
    LinksPage *m_links = nullptr;
    QCheckBox *m_hasDueDate = nullptr;
    QDateEdit *m_dueDateEdit = nullptr;
    QLineEdit *m_taskTime = nullptr;
    QComboBox *m_taskUnit = nullptr;
    QCheckBox *m_hasReminder = nullptr;
    QDateTimeEdit *m_reminderEdit = nullptr;
    QLabel *m_created = nullptr;
};
