#include "shell/document/quickentrybar.h"

#include "model/editing.h"
#include "rows/iconset.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QToolButton>

namespace {
constexpr int MaxText = 63;
}

QuickEntryBar::QuickEntryBar(QWidget *parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("quickEntryBar"));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 3, 4, 3);
    layout->setSpacing(4);

    m_iconButton = new QToolButton(this);
    m_iconButton->setObjectName(QStringLiteral("quickEntryIcon"));
    m_iconButton->setToolTip(QStringLiteral("Icon of the new item"));
    m_iconButton->setAutoRaise(true);
    connect(m_iconButton, &QToolButton::clicked, this, &QuickEntryBar::chooseIcon);

    m_text = new QComboBox(this);
    m_text->setObjectName(QStringLiteral("quickEntryText"));
    m_text->setEditable(true);
    m_text->setInsertPolicy(QComboBox::NoInsert);
    m_text->lineEdit()->setMaxLength(MaxText);
    m_text->lineEdit()->setPlaceholderText(QStringLiteral("New item"));
    m_text->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(m_text->lineEdit(), &QLineEdit::returnPressed, this, &QuickEntryBar::add);

    auto toggle = [this](const QString &name, const QString &text, const QString &tip) {
        auto *button = new QToolButton(this);
        button->setObjectName(name);
        button->setText(text);
        button->setToolTip(tip);
        button->setCheckable(true);
        button->setAutoRaise(true);
        return button;
    };
    m_italic = toggle(QStringLiteral("quickEntryItalic"), QStringLiteral("I"), QStringLiteral("Italic style"));
    QFont italicFont = m_italic->font();
    italicFont.setItalic(true);
    italicFont.setBold(true);
    m_italic->setFont(italicFont);
    m_child = toggle(QStringLiteral("quickEntryChild"), QStringLiteral("\u21b3"),
                     QStringLiteral("Add as the first child of the selected item"));
    m_add = new QToolButton(this);
    m_add->setObjectName(QStringLiteral("quickEntryAdd"));
    m_add->setText(QStringLiteral("Add"));
    m_add->setToolButtonStyle(Qt::ToolButtonTextOnly);
    connect(m_add, &QToolButton::clicked, this, &QuickEntryBar::add);

    layout->addWidget(m_iconButton);
    layout->addWidget(m_text, 1);
    layout->addWidget(m_italic);
    layout->addWidget(m_child);
    layout->addWidget(m_add);
    setIcon(0);
}

QString QuickEntryBar::text() const
{
    return m_text->currentText();
}

void QuickEntryBar::setText(const QString &text)
{
    m_text->setEditText(text);
}

void QuickEntryBar::setIcon(quint16 image)
{
    m_icon = image;
    m_iconButton->setIcon(QIcon(IconSet::instance().icon(image, 16, devicePixelRatioF())));
}

bool QuickEntryBar::isItalic() const
{
    return m_italic->isChecked();
}

void QuickEntryBar::setItalic(bool on)
{
    m_italic->setChecked(on);
}

bool QuickEntryBar::isChild() const
{
    return m_child->isChecked();
}

void QuickEntryBar::chooseIcon()
{
    const int chosen = m_chooser ? m_chooser(m_icon) : -1;
    if (chosen >= 0)
        setIcon(quint16(chosen));
}

void QuickEntryBar::add()
{
    const QString text = m_text->currentText().left(MaxText);
    if (text.trimmed().isEmpty())
        return;
    if (Editing::addToHistory(m_history, text))
        m_text->addItem(text);
    m_text->setEditText(QString());
    Q_EMIT addRequested(text, m_icon, isItalic(), isChild());
}
