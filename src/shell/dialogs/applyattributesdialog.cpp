#include "shell/dialogs/applyattributesdialog.h"

#include "platform/collation.h"
#include "shell/widgets/colourcombo.h"
#include "shell/widgets/iconbutton.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <algorithm>

namespace {

constexpr int MaxCategoryLength = 63;

QComboBox *choices(const QStringList &texts, const char *name, QWidget *parent)
{
    auto *combo = new QComboBox(parent);
    combo->setObjectName(QString::fromLatin1(name));
    combo->addItems(texts);
    return combo;
}

} // namespace

QCheckBox *ApplyAttributesDialog::box(const QString &text, const char *name)
{
    auto *check = new QCheckBox(text, this);
    check->setObjectName(QString::fromLatin1(name));
    return check;
}

ApplyAttributesDialog::ApplyAttributesDialog(const QStringList &categories, const QList<quint16> &favouriteIcons,
                                             Prompts *prompts, QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("applyAttributes"));
    setWindowTitle(QStringLiteral("Attributes"));
    auto *layout = new QVBoxLayout(this);

    auto *grid = new QGridLayout;
    grid->setColumnStretch(1, 1);
    int row = 0;
    auto addRow = [&](QCheckBox *check, QWidget *value) {
        grid->addWidget(check, row, 0);
        grid->addWidget(value, row, 1);
        ++row;
    };

    m_setPriority = box(QStringLiteral("Set &priority:"), "setPriority");
    m_priority = new QComboBox(this);
    m_priority->setObjectName(QStringLiteral("priority"));
    for (int p = 1; p <= 20; ++p)
        m_priority->addItem(QString::number(p));
    m_priority->setCurrentIndex(9);
    addRow(m_setPriority, m_priority);

    m_setCategory = box(QStringLiteral("Set &category:"), "setCategory");
    m_category = new QComboBox(this);
    m_category->setObjectName(QStringLiteral("category"));
    m_category->setEditable(true);
    m_category->setInsertPolicy(QComboBox::NoInsert);
    m_category->lineEdit()->setMaxLength(MaxCategoryLength);
    m_category->lineEdit()->setPlaceholderText(QStringLiteral("[No Category]"));
    QStringList sorted = categories;
    const Collation &collation = Collation::instance();
    std::stable_sort(sorted.begin(), sorted.end(),
                     [&](const QString &a, const QString &b) { return collation.compare(a, b) < 0; });
    m_category->addItems(sorted);
    m_category->setEditText(QString());
    addRow(m_setCategory, m_category);

    m_setIcon = box(QStringLiteral("Set &icon:"), "setIcon");
    m_icon = new IconButton(prompts, this);
    m_icon->setObjectName(QStringLiteral("icon"));
    m_icon->setFavourites(favouriteIcons);
    auto *iconRow = new QWidget(this);
    auto *iconLayout = new QHBoxLayout(iconRow);
    iconLayout->setContentsMargins(0, 0, 0, 0);
    iconLayout->addWidget(m_icon);
    iconLayout->addStretch(1);
    addRow(m_setIcon, iconRow);

    m_setColour = box(QStringLiteral("Set c&olour:"), "setColour");
    m_colour = new ColourCombo(false, this);
    m_colour->setObjectName(QStringLiteral("colour"));
    addRow(m_setColour, m_colour);

    m_setProgress = box(QStringLiteral("Set p&rogress:"), "setProgress");
    auto *progressRow = new QWidget(this);
    auto *progressLayout = new QHBoxLayout(progressRow);
    progressLayout->setContentsMargins(0, 0, 0, 0);
    m_progress = new QSpinBox(progressRow);
    m_progress->setObjectName(QStringLiteral("progress"));
    m_progress->setRange(0, 100);
    m_progress->setSuffix(QStringLiteral("%"));
    m_progress->setSingleStep(5);
    auto *none = new QPushButton(QStringLiteral("0%"), progressRow);
    none->setObjectName(QStringLiteral("progress0"));
    auto *all = new QPushButton(QStringLiteral("100%"), progressRow);
    all->setObjectName(QStringLiteral("progress100"));
    connect(none, &QPushButton::clicked, this, [this] {
        m_progress->setValue(0);
        m_setProgress->setChecked(true);
    });
    connect(all, &QPushButton::clicked, this, [this] {
        m_progress->setValue(100);
        m_setProgress->setChecked(true);
    });
    progressLayout->addWidget(m_progress, 1);
    progressLayout->addWidget(none);
    progressLayout->addWidget(all);
    addRow(m_setProgress, progressRow);
    layout->addLayout(grid);

    auto *options = new QGroupBox(QStringLiteral("Options:"), this);
    auto *optionGrid = new QGridLayout(options);
    optionGrid->setColumnStretch(1, 1);
    m_setStatus = box(QStringLiteral("&Status type:"), "setStatusType");
    m_status = choices({QStringLiteral("No Status"), QStringLiteral("Check Box"), QStringLiteral("Progress Bar")},
                       "statusType", options);
    m_status->setCurrentIndex(1);
    m_setShowIcon = box(QStringLiteral("Icon &display:"), "setShowIcon");
    m_showIcon = choices({QStringLiteral("Show"), QStringLiteral("Hide")}, "showIcon", options);
    m_setItalic = box(QStringLiteral("&Font style:"), "setItalic");
    m_italic = choices({QStringLiteral("Normal"), QStringLiteral("Italic")}, "italic", options);
    m_setAutomatic = box(QStringLiteral("Status &mode:"), "setAutomatic");
    m_automatic = choices({QStringLiteral("Manual"), QStringLiteral("Automatic")}, "automatic", options);
    int optionRow = 0;
    for (auto [check, combo] : {std::pair{m_setStatus, m_status}, std::pair{m_setShowIcon, m_showIcon},
                                std::pair{m_setItalic, m_italic}, std::pair{m_setAutomatic, m_automatic}}) {
        check->setParent(options);
        optionGrid->addWidget(check, optionRow, 0);
        optionGrid->addWidget(combo, optionRow, 1);
        ++optionRow;
        // Choosing a value ticks the box beside it.
        connect(combo, &QComboBox::activated, check, [check = check] { check->setChecked(true); });
    }
    layout->addWidget(options);

    m_allSubItems = new QCheckBox(QStringLiteral("&Apply to all sub-items"), this);
    m_allSubItems->setObjectName(QStringLiteral("allSubItems"));
    layout->addWidget(m_allSubItems);

    connect(m_priority, &QComboBox::activated, m_setPriority, [this] { m_setPriority->setChecked(true); });
    connect(m_category, &QComboBox::activated, m_setCategory, [this] { m_setCategory->setChecked(true); });
    connect(m_category, &QComboBox::editTextChanged, m_setCategory, [this] { m_setCategory->setChecked(true); });
    connect(m_icon, &IconButton::imageChosen, m_setIcon, [this] { m_setIcon->setChecked(true); });
    connect(m_colour, &ColourCombo::colourChosen, m_setColour, [this] { m_setColour->setChecked(true); });
    connect(m_progress, &QSpinBox::valueChanged, m_setProgress, [this] { m_setProgress->setChecked(true); });

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    setMinimumWidth(420);
}

AttributeSet ApplyAttributesDialog::attributes() const
{
    AttributeSet set;
    auto flag = [&set](QCheckBox *check, AttributeSet::Bit bit) {
        if (check->isChecked())
            set.flags |= bit;
    };
    flag(m_setPriority, AttributeSet::Priority);
    flag(m_setCategory, AttributeSet::Category);
    flag(m_setIcon, AttributeSet::Icon);
    flag(m_setColour, AttributeSet::Colour);
    flag(m_setProgress, AttributeSet::Progress);
    flag(m_setStatus, AttributeSet::StatusType);
    flag(m_setShowIcon, AttributeSet::ShowIcon);
    flag(m_setItalic, AttributeSet::Italic);
    flag(m_setAutomatic, AttributeSet::Automatic);
    set.priority = quint16(m_priority->currentIndex() + 1);
    set.category = m_category->currentText();
    set.icon = m_icon->image();
    set.colour = quint16(m_colour->colour());
    set.statusType = quint16(m_status->currentIndex());
    set.showIcon = m_showIcon->currentIndex() == 0;
    set.italic = m_italic->currentIndex() == 1;
    set.progress = quint16(m_progress->value());
    set.automatic = m_automatic->currentIndex() == 1;
    set.allSubItems = m_allSubItems->isChecked();
    return set;
}
