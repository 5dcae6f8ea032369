#include "shell/dialogs/itempropertiesdialog.h"

#include "model/childorder.h"
#include "model/document.h"
#include "model/item.h"
#include "model/progress.h"
#include "noteeditor/notepane.h"
#include "platform/collation.h"
#include "platform/messages.h"
#include "reminders/remindermanager.h"
#include "shell/dialogs/externalnoteeditor.h"
#include "shell/dialogs/linkspage.h"
#include "shell/widgets/colourcombo.h"
#include "shell/widgets/iconbutton.h"
#include "shell/widgets/prompts.h"
#include "storage/template.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDateTimeEdit>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>
#include <algorithm>

namespace {

// The longest name the rename box and this box take.
constexpr int MaxNameLength = 95;
constexpr int MaxCategoryLength = 63;
// The task time field holds seven characters.
constexpr int MaxTaskTimeLength = 7;

SystemTime dateOnly(const QDate &date)
{
    return SystemTime::fromDateTime(QDateTime(date, QTime(0, 0)));
}

QDateTime withoutSeconds(const QDateTime &time)
{
    return QDateTime(time.date(), QTime(time.time().hour(), time.time().minute()));
}

/// A form label whose mnemonic goes to a field that sits in a row layout.
QLabel *labelFor(const QString &text, QWidget *buddy)
{
    auto *label = new QLabel(text, buddy->parentWidget());
    label->setBuddy(buddy);
    return label;
}

} // namespace

ItemPropertiesDialog::ItemPropertiesDialog(const Context &context, Item *item, bool isNew, QWidget *parent)
    : QDialog(parent), m_context(context), m_item(item), m_isNew(isNew)
{
    setObjectName(QStringLiteral("itemProperties"));
    setWindowTitle(isNew ? QStringLiteral("New Item") : QStringLiteral("Item Properties"));
    auto *layout = new QVBoxLayout(this);
    m_pages = new QTabWidget(this);
    m_pages->setObjectName(QStringLiteral("pages"));
    m_pages->addTab(buildGeneral(isNew), QStringLiteral("General"));
    m_pages->addTab(buildNote(), QStringLiteral("Note"));
    m_links = new LinksPage(context.document, context.prompts, context.documentsFolder, m_pages);
    m_pages->addTab(m_links, QStringLiteral("Links"));
    m_pages->addTab(buildDetails(), QStringLiteral("Details"));
    // A template never holds links.
    m_pages->setTabVisible(LinkPage, !context.forTemplate);
    layout->addWidget(m_pages, 1);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->setObjectName(QStringLiteral("buttons"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);

    connect(m_pages, &QTabWidget::currentChanged, this, [this](int page) {
        // The links page is filled when first shown, so that a dead link is
        // reported where it can be seen.
        if (page == LinkPage && !m_links->isFilled())
            m_links->fill(*m_item);
    });
    connect(m_links, &LinksPage::itemLinkFollowed, this, [this](Item *target) {
        m_followed = target;
        accept();
    });

    load(*item);
    m_note->load(item->note());
    m_name->setFocus();
    m_name->selectAll();
    resize(460, 500);
}

ItemPropertiesDialog::~ItemPropertiesDialog() = default;

QWidget *ItemPropertiesDialog::buildGeneral(bool isNew)
{
    auto *page = new QWidget;
    auto *form = new QFormLayout(page);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);

    m_template = new QComboBox(page);
    m_template->setObjectName(QStringLiteral("template"));
    m_template->addItem(QStringLiteral("[None]"));
    for (const TemplateChoice &choice : std::as_const(m_context.templates))
        m_template->addItem(choice.name);
    connect(m_template, &QComboBox::activated, this, [this](int index) {
        if (index > 0 && index <= m_context.templates.size())
            applyTemplate(*m_context.templates.at(index - 1).entry);
    });
    if (!m_context.templates.isEmpty())
        form->addRow(QStringLiteral("&Template:"), m_template);
    else
        m_template->hide();

    m_name = new QLineEdit(page);
    m_name->setObjectName(QStringLiteral("name"));
    m_name->setMaxLength(MaxNameLength);
    form->addRow(QStringLiteral("&Name:"), m_name);

    m_priority = new QComboBox(page);
    m_priority->setObjectName(QStringLiteral("priority"));
    for (int p = 1; p <= 20; ++p)
        m_priority->addItem(QString::number(p));
    form->addRow(QStringLiteral("&Priority:"), m_priority);

    m_category = new QComboBox(page);
    m_category->setObjectName(QStringLiteral("category"));
    m_category->setEditable(true);
    m_category->setInsertPolicy(QComboBox::NoInsert);
    m_category->lineEdit()->setMaxLength(MaxCategoryLength);
    m_category->lineEdit()->setPlaceholderText(QStringLiteral("[No Category]"));
    QStringList categories = m_context.categories;
    const Collation &collation = Collation::instance();
    std::stable_sort(categories.begin(), categories.end(),
                     [&](const QString &a, const QString &b) { return collation.compare(a, b) < 0; });
    m_category->addItems(categories);
    form->addRow(QStringLiteral("C&ategory:"), m_category);

    auto *looks = new QHBoxLayout;
    m_icon = new IconButton(m_context.prompts, page);
    m_icon->setObjectName(QStringLiteral("icon"));
    m_icon->setFavourites(m_context.favouriteIcons);
    m_colour = new ColourCombo(false, page);
    m_colour->setObjectName(QStringLiteral("colour"));
    looks->addWidget(m_icon);
    looks->addWidget(labelFor(QStringLiteral("C&olour:"), m_colour));
    looks->addWidget(m_colour, 1);
    form->addRow(labelFor(QStringLiteral("&Icon:"), m_icon), looks);

    auto *style = new QHBoxLayout;
    m_showIcon = new QCheckBox(QStringLiteral("&Show icon"), page);
    m_showIcon->setObjectName(QStringLiteral("showIcon"));
    m_italic = new QCheckBox(QStringLiteral("Itali&c style"), page);
    m_italic->setObjectName(QStringLiteral("italic"));
    style->addWidget(m_showIcon);
    style->addWidget(m_italic);
    style->addStretch(1);
    form->addRow(QString(), style);

    auto *statusBox = new QGroupBox(QStringLiteral("Status"), page);
    auto *statusForm = new QFormLayout(statusBox);
    m_status = new QComboBox(statusBox);
    m_status->setObjectName(QStringLiteral("statusType"));
    m_status->addItems({QStringLiteral("No Status"), QStringLiteral("Check Box"), QStringLiteral("Progress Bar")});
    statusForm->addRow(QStringLiteral("T&ype:"), m_status);
    auto *mode = new QHBoxLayout;
    m_manual = new QRadioButton(QStringLiteral("&Manual"), statusBox);
    m_manual->setObjectName(QStringLiteral("manual"));
    m_automatic = new QRadioButton(QStringLiteral("A&utomatic"), statusBox);
    m_automatic->setObjectName(QStringLiteral("automatic"));
    mode->addWidget(m_manual);
    mode->addWidget(m_automatic);
    mode->addStretch(1);
    statusForm->addRow(QString(), mode);
    m_progress = new QSpinBox(statusBox);
    m_progress->setObjectName(QStringLiteral("progress"));
    m_progress->setRange(0, 100);
    m_progress->setSuffix(QStringLiteral("%"));
    m_progress->setSingleStep(5);
    statusForm->addRow(QStringLiteral("P&rogress:"), m_progress);
    connect(m_automatic, &QRadioButton::toggled, this, &ItemPropertiesDialog::updateProgressControls);
    form->addRow(statusBox);

    if (isNew) {
        auto *placeBox = new QGroupBox(QStringLiteral("Add as"), page);
        auto *place = new QHBoxLayout(placeBox);
        m_position = new QButtonGroup(this);
        const char *words[] = {"Same", "Child", "Top"};
        const char *names[] = {"insertSame", "insertChild", "insertTop"};
        for (int i = 0; i < 3; ++i) {
            auto *button = new QRadioButton(QString::fromLatin1(words[i]), placeBox);
            button->setObjectName(QString::fromLatin1(names[i]));
            m_position->addButton(button, i);
            place->addWidget(button);
        }
        place->addStretch(1);
        m_position->button(int(InsertPosition::Same))->setChecked(true);
        form->addRow(placeBox);
    }
    return page;
}

QWidget *ItemPropertiesDialog::buildNote()
{
    auto *page = new QWidget;
    auto *layout = new QVBoxLayout(page);
    m_note = new NotePane(page);
    m_note->setNoteType(noteType());
    layout->addWidget(m_note, 1);
    if (m_context.externalEditor) {
        auto *row = new QHBoxLayout;
        auto *word = new QPushButton(QStringLiteral("&Edit in Word"), page);
        word->setObjectName(QStringLiteral("editInWord"));
        word->setToolTip(QStringLiteral("Edit the note in the desktop's word processor"));
        connect(word, &QPushButton::clicked, this, &ItemPropertiesDialog::editInWord);
        row->addStretch(1);
        row->addWidget(word);
        layout->addLayout(row);
    }
    return page;
}

QWidget *ItemPropertiesDialog::buildDetails()
{
    auto *page = new QWidget;
    auto *form = new QFormLayout(page);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);

    auto *due = new QHBoxLayout;
    m_hasDueDate = new QCheckBox(page);
    m_hasDueDate->setObjectName(QStringLiteral("hasDueDate"));
    m_dueDateEdit = new QDateEdit(page);
    m_dueDateEdit->setObjectName(QStringLiteral("dueDate"));
    m_dueDateEdit->setCalendarPopup(true);
    m_dueDateEdit->setDisplayFormat(QLocale().dateFormat(QLocale::ShortFormat));
    connect(m_hasDueDate, &QCheckBox::toggled, m_dueDateEdit, &QWidget::setEnabled);
    due->addWidget(m_hasDueDate);
    due->addWidget(m_dueDateEdit, 1);
    form->addRow(labelFor(QStringLiteral("Task/&Due date:"), m_hasDueDate), due);

    auto *task = new QHBoxLayout;
    m_taskTime = new QLineEdit(page);
    m_taskTime->setObjectName(QStringLiteral("taskTime"));
    m_taskTime->setMaxLength(MaxTaskTimeLength);
    m_taskTime->setMaximumWidth(90);
    m_taskUnit = new QComboBox(page);
    m_taskUnit->setObjectName(QStringLiteral("taskTimeUnit"));
    m_taskUnit->addItems({QStringLiteral("(None)"), QStringLiteral("Minute(s)"), QStringLiteral("Hour(s)"),
                          QStringLiteral("Day(s)"), QStringLiteral("Week(s)"), QStringLiteral("Month(s)")});
    task->addWidget(m_taskTime);
    task->addWidget(m_taskUnit, 1);
    form->addRow(labelFor(QStringLiteral("&Task time:"), m_taskTime), task);

    auto *reminder = new QHBoxLayout;
    m_hasReminder = new QCheckBox(page);
    m_hasReminder->setObjectName(QStringLiteral("hasReminder"));
    m_reminderEdit = new QDateTimeEdit(page);
    m_reminderEdit->setObjectName(QStringLiteral("reminder"));
    m_reminderEdit->setCalendarPopup(true);
    m_reminderEdit->setDisplayFormat(QLocale().dateTimeFormat(QLocale::ShortFormat));
    connect(m_hasReminder, &QCheckBox::toggled, m_reminderEdit, &QWidget::setEnabled);
    reminder->addWidget(m_hasReminder);
    reminder->addWidget(m_reminderEdit, 1);
    form->addRow(labelFor(QStringLiteral("&Reminder:"), m_hasReminder), reminder);

    m_created = new QLabel(page);
    m_created->setObjectName(QStringLiteral("created"));
    if (!m_context.forTemplate)
        form->addRow(QStringLiteral("Created:"), m_created);
    else
        m_created->hide();
    return page;
}

quint16 ItemPropertiesDialog::noteType() const
{
    return m_context.noteType >= 0 ? quint16(m_context.noteType) : m_context.document->noteType;
}

void ItemPropertiesDialog::load(const Item &item)
{
    m_name->setText(item.name());
    m_priority->setCurrentIndex(std::clamp<int>(item.priority(), 1, 20) - 1);
    m_category->setEditText(item.category());
    m_icon->setImage(item.image());
    m_colour->setColour(item.colour());
    m_showIcon->setChecked(item.showIcon());
    m_italic->setChecked(item.isItalic());
    m_status->setCurrentIndex(std::min<int>(item.statusType(), 2));
    m_progress->setValue(item.progress());
    (item.autoProgress() ? m_automatic : m_manual)->setChecked(true);
    updateProgressControls();

    m_dueDate = item.dueDate();
    m_hasDueDate->setChecked(m_dueDate.hasDate() && m_dueDate.toDate().isValid());
    m_dueDateEdit->setDate(m_hasDueDate->isChecked() ? m_dueDate.toDate() : QDate::currentDate());
    m_dueDateEdit->setEnabled(m_hasDueDate->isChecked());
    m_taskTime->setText(item.taskTime());
    m_taskUnit->setCurrentIndex(item.taskTimeType() < 6 ? item.taskTimeType() : 0);
    m_reminder = item.reminderTime();
    const QDateTime reminder = m_reminder.toDateTime();
    m_hasReminder->setChecked(m_reminder.hasDate() && reminder.isValid());
    m_reminderEdit->setDateTime(m_hasReminder->isChecked() ? reminder : withoutSeconds(QDateTime::currentDateTime()));
    m_reminderEdit->setEnabled(m_hasReminder->isChecked());
    const QDateTime created = item.created().toDateTime();
    m_created->setText(created.isValid() ? QLocale().toString(created, QLocale::LongFormat) : QString());
}

void ItemPropertiesDialog::updateProgressControls()
{
    // An automatic item's progress follows its children.
    m_progress->setEnabled(!m_automatic->isChecked());
}

void ItemPropertiesDialog::setPage(int page)
{
    m_pages->setCurrentIndex(page);
    if (page == LinkPage && !m_links->isFilled())
        m_links->fill(*m_item);
}

void ItemPropertiesDialog::applyTemplate(const Template &templ)
{
    // The template's rule decides what it gives; the controls then show the
    // result. The item itself changes only on OK.
    std::unique_ptr<Item> preview(m_item->clone());
    templ.applyTo(preview.get());
    load(*preview);
    m_note->load(preview->note());
    m_note->setModified(true);
    for (int i = 0; i < m_context.templates.size(); ++i) {
        if (m_context.templates.at(i).entry == &templ)
            m_template->setCurrentIndex(i + 1);
    }
}

void ItemPropertiesDialog::editInWord()
{
    QByteArray note = m_note->noteBytes();
    if (ExternalNoteEditor::edit(this, m_context.prompts, &note, noteType()) != ExternalNoteEditor::Result::Updated)
        return;
    m_note->load(note);
    m_note->setModified(true);
}

InsertPosition ItemPropertiesDialog::position() const
{
    return m_position ? InsertPosition(m_position->checkedId()) : InsertPosition::Same;
}

void ItemPropertiesDialog::store()
{
    ItemProperties p;
    p.name = m_name->text();
    p.priority = quint16(m_priority->currentIndex() + 1);
    p.category = m_category->currentText();
    p.image = m_icon->image();
    p.colour = quint16(m_colour->colour());
    p.showIcon = m_showIcon->isChecked();
    p.italic = m_italic->isChecked();
    p.statusType = quint16(m_status->currentIndex());
    // A date the person left alone keeps its stored time of day.
    if (!m_hasDueDate->isChecked())
        p.dueDate = {};
    else if (!m_dueDate.hasDate() || m_dueDate.toDate() != m_dueDateEdit->date())
        p.dueDate = dateOnly(m_dueDateEdit->date());
    else
        p.dueDate = m_dueDate;
    p.taskTime = m_taskTime->text();
    p.taskTimeType = quint16(m_taskUnit->currentIndex());
    if (!m_hasReminder->isChecked())
        p.reminderTime = {};
    else if (!m_reminder.hasDate() || withoutSeconds(m_reminder.toDateTime()) != m_reminderEdit->dateTime())
        p.reminderTime = ReminderManager::pendingAt(m_reminderEdit->dateTime()); // a new reminder is pending
    else
        p.reminderTime = m_reminder;
    if (m_links->isFilled() && !m_context.forTemplate)
        p.links = m_links->links();
    if (m_note->isModified())
        p.note = m_note->noteBytes();
    p.autoProgress = m_automatic->isChecked();
    p.progress = quint16(m_progress->value());
    Editing::applyProperties(m_item, p, m_context.forTemplate ? nullptr : m_context.document);
}
