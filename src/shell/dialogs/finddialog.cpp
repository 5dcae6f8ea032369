#include "shell/dialogs/finddialog.h"

#include "platform/collation.h"
#include "shell/widgets/colourcombo.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

namespace {

constexpr int MaxTextLength = 95;
constexpr int MaxCategoryLength = 63;
const QString Any = QStringLiteral("[Any]");

QCheckBox *threeState(const QString &text, const char *name, QWidget *parent)
{
    auto *box = new QCheckBox(text, parent);
    box->setObjectName(QString::fromLatin1(name));
    box->setTristate(true);
    box->setCheckState(Qt::PartiallyChecked);
    box->setToolTip(QStringLiteral("Checked or cleared to search by it; half-checked for any"));
    return box;
}

void setThreeState(QCheckBox *box, bool used, bool on)
{
    box->setCheckState(!used ? Qt::PartiallyChecked : on ? Qt::Checked : Qt::Unchecked);
}

} // namespace

FindDialog::FindDialog(const FindCriteria &preset, const QStringList &categories, QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("findDialog"));
    setWindowTitle(QStringLiteral("Find Item"));
    auto *layout = new QVBoxLayout(this);

    auto *itemBox = new QGroupBox(QStringLiteral("Item"), this);
    auto *itemForm = new QFormLayout(itemBox);
    m_name = new QLineEdit(itemBox);
    m_name->setObjectName(QStringLiteral("findName"));
    m_name->setMaxLength(MaxTextLength);
    m_name->setPlaceholderText(Any);
    itemForm->addRow(QStringLiteral("&Name:"), m_name);
    m_priority = new QComboBox(itemBox);
    m_priority->setObjectName(QStringLiteral("findPriority"));
    m_priority->addItem(Any);
    for (int p = 1; p <= 20; ++p)
        m_priority->addItem(QString::number(p));
    itemForm->addRow(QStringLiteral("&Priority:"), m_priority);
    m_category = new QComboBox(itemBox);
    m_category->setObjectName(QStringLiteral("findCategory"));
    m_category->setEditable(true);
    m_category->setInsertPolicy(QComboBox::NoInsert);
    m_category->lineEdit()->setMaxLength(MaxCategoryLength);
    QStringList sorted = categories;
    const Collation &collation = Collation::instance();
    std::stable_sort(sorted.begin(), sorted.end(),
                     [&](const QString &a, const QString &b) { return collation.compare(a, b) < 0; });
    m_category->addItem(Any);
    m_category->addItems(sorted);
    itemForm->addRow(QStringLiteral("C&ategory:"), m_category);
    layout->addWidget(itemBox);

    auto *dateBox = new QGroupBox(QStringLiteral("Date"), this);
    auto *dateLayout = new QHBoxLayout(dateBox);
    m_hasDate = new QCheckBox(QStringLiteral("&Task/Due date:"), dateBox);
    m_hasDate->setObjectName(QStringLiteral("findHasDate"));
    m_dateOperator = new QComboBox(dateBox);
    m_dateOperator->setObjectName(QStringLiteral("findDateOperator"));
    m_dateOperator->addItems({QStringLiteral("Less Than"), QStringLiteral("Equal To"), QStringLiteral("Greater Than")});
    m_date = new QDateEdit(dateBox);
    m_date->setObjectName(QStringLiteral("findDate"));
    m_date->setCalendarPopup(true);
    m_date->setDisplayFormat(QLocale().dateFormat(QLocale::ShortFormat));
    connect(m_hasDate, &QCheckBox::toggled, m_dateOperator, &QWidget::setEnabled);
    connect(m_hasDate, &QCheckBox::toggled, m_date, &QWidget::setEnabled);
    dateLayout->addWidget(m_hasDate);
    dateLayout->addWidget(m_dateOperator);
    dateLayout->addWidget(m_date, 1);
    layout->addWidget(dateBox);

    auto *noteBox = new QGroupBox(QStringLiteral("Note"), this);
    auto *noteForm = new QFormLayout(noteBox);
    m_phrase = new QLineEdit(noteBox);
    m_phrase->setObjectName(QStringLiteral("findNotePhrase"));
    m_phrase->setMaxLength(MaxTextLength);
    m_phrase->setPlaceholderText(Any);
    noteForm->addRow(QStringLiteral("N&ote phrase:"), m_phrase);
    layout->addWidget(noteBox);

    auto *moreBox = new QGroupBox(QStringLiteral("Attributes"), this);
    auto *moreForm = new QFormLayout(moreBox);
    m_colour = new ColourCombo(true, moreBox);
    m_colour->setObjectName(QStringLiteral("findColour"));
    moreForm->addRow(QStringLiteral("Co&lour:"), m_colour);
    auto *states = new QHBoxLayout;
    m_completed = threeState(QStringLiteral("Co&mpleted"), "findCompleted", moreBox);
    m_italic = threeState(QStringLiteral("&Italic"), "findItalic", moreBox);
    m_showIcon = threeState(QStringLiteral("&Show icon"), "findShowIcon", moreBox);
    states->addWidget(m_completed);
    states->addWidget(m_italic);
    states->addWidget(m_showIcon);
    states->addStretch(1);
    moreForm->addRow(states);
    layout->addWidget(moreBox);

    m_caseInsensitive = new QCheckBox(QStringLiteral("&Case insensitive"), this);
    m_caseInsensitive->setObjectName(QStringLiteral("findCaseInsensitive"));
    layout->addWidget(m_caseInsensitive);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("&Find"));
    QPushButton *clear = buttons->addButton(QStringLiteral("C&lear"), QDialogButtonBox::ResetRole);
    clear->setObjectName(QStringLiteral("findClear"));
    connect(clear, &QPushButton::clicked, this, [this] {
        FindCriteria none;
        none.caseInsensitive = m_caseInsensitive->isChecked();
        load(none);
    });
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);

    load(preset);
    m_name->setFocus();
    setMinimumWidth(420);
}

void FindDialog::load(const FindCriteria &c)
{
    m_name->setText(c.has(FindCriteria::Name) ? c.name : QString());
    m_priority->setCurrentIndex(c.has(FindCriteria::Priority) ? std::clamp<int>(c.priority, 1, 20) : 0);
    m_category->setEditText(c.has(FindCriteria::Category) ? c.category : Any);
    m_hasDate->setChecked(c.has(FindCriteria::DueDate));
    m_dateOperator->setCurrentIndex(c.dateOperator);
    m_date->setDate(c.has(FindCriteria::DueDate) && c.date.toDate().isValid() ? c.date.toDate() : QDate::currentDate());
    m_dateOperator->setEnabled(m_hasDate->isChecked());
    m_date->setEnabled(m_hasDate->isChecked());
    m_phrase->setText(c.has(FindCriteria::NotePhrase) ? c.notePhrase : QString());
    setThreeState(m_completed, c.has(FindCriteria::Progress), c.progress == 100);
    m_colour->setColour(c.has(FindCriteria::Colour) ? c.colour : -1);
    setThreeState(m_italic, c.has(FindCriteria::Italic), c.italic);
    setThreeState(m_showIcon, c.has(FindCriteria::ShowIcon), c.showIcon);
    m_caseInsensitive->setChecked(c.caseInsensitive);
}

FindCriteria FindDialog::criteria() const
{
    FindCriteria c;
    c.caseInsensitive = m_caseInsensitive->isChecked();
    if (!m_name->text().isEmpty()) {
        c.flags |= FindCriteria::Name;
        c.name = m_name->text();
    }
    if (m_priority->currentIndex() > 0) {
        c.flags |= FindCriteria::Priority;
        c.priority = quint16(m_priority->currentIndex());
    }
    const QString category = m_category->currentText();
    if (category != Any) {
        c.flags |= FindCriteria::Category;
        c.category = category;
    }
    c.dateOperator = FindCriteria::DateOperator(m_dateOperator->currentIndex());
    if (m_hasDate->isChecked()) {
        c.flags |= FindCriteria::DueDate;
        c.date = SystemTime::fromDateTime(QDateTime(m_date->date(), QTime(0, 0)));
    }
    if (!m_phrase->text().isEmpty()) {
        c.flags |= FindCriteria::NotePhrase;
        c.notePhrase = m_phrase->text();
    }
    if (m_completed->checkState() != Qt::PartiallyChecked) {
        c.flags |= FindCriteria::Progress;
        c.progress = m_completed->checkState() == Qt::Checked ? 100 : 0;
    }
    if (m_colour->colour() >= 0) {
        c.flags |= FindCriteria::Colour;
        c.colour = quint16(m_colour->colour());
    }
    if (m_italic->checkState() != Qt::PartiallyChecked) {
        c.flags |= FindCriteria::Italic;
        c.italic = m_italic->checkState() == Qt::Checked;
    }
    if (m_showIcon->checkState() != Qt::PartiallyChecked) {
        c.flags |= FindCriteria::ShowIcon;
        c.showIcon = m_showIcon->checkState() == Qt::Checked;
    }
    return c;
}
