#include "shell/widgets/reminderbubble.h"

#include "reminders/bubblecontent.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QVBoxLayout>

namespace {
constexpr int Width = 320;
constexpr int Margin = 12;
} // namespace

ReminderBubble::ReminderBubble(QWidget *parent)
    : QFrame(parent, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint)
{
    setObjectName(QStringLiteral("reminderBubble"));
    setAttribute(Qt::WA_ShowWithoutActivating);
    setFrameShape(QFrame::Box);
    setFixedWidth(Width);
    auto *layout = new QVBoxLayout(this);
    m_title = new QLabel(this);
    m_title->setObjectName(QStringLiteral("title"));
    QFont bold = m_title->font();
    bold.setBold(true);
    m_title->setFont(bold);
    m_body = new QLabel(this);
    m_body->setObjectName(QStringLiteral("body"));
    m_body->setTextFormat(Qt::RichText);
    m_body->setWordWrap(true);
    m_body->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    connect(m_body, &QLabel::linkActivated, this, [this](const QString &link) {
        if (const int id = BubbleContent::commandOf(link))
            Q_EMIT commandRequested(id);
    });
    m_buttons = new QHBoxLayout;
    m_buttons->addStretch(1);
    layout->addWidget(m_title);
    layout->addWidget(m_body);
    layout->addLayout(m_buttons);

    m_lifetime.setSingleShot(true);
    m_lifetime.setInterval(LifetimeMs);
    connect(&m_lifetime, &QTimer::timeout, this, &QWidget::hide);
}

void ReminderBubble::showReminders(const QString &title, const QString &html)
{
    m_html = html;
    m_title->setText(title);
    // Qt's rich text draws no form controls: each button of the page becomes
    // a push button under it.
    while (m_buttons->count() > 1) {
        QLayoutItem *item = m_buttons->takeAt(1);
        delete item->widget();
        delete item;
    }
    static const QRegularExpression input(
        QStringLiteral("<input\\s+type=\"?button\"?\\s+name=\"([^\"]*)\"\\s+value=\"([^\"]*)\"\\s*/?>"),
        QRegularExpression::CaseInsensitiveOption);
    QString shown = html;
    QRegularExpressionMatchIterator it = input.globalMatch(html);
    while (it.hasNext()) {
        const QRegularExpressionMatch match = it.next();
        const int id = BubbleContent::commandOf(match.captured(1));
        auto *button = new QPushButton(match.captured(2), this);
        button->setObjectName(QStringLiteral("cmd%1").arg(id));
        connect(button, &QPushButton::clicked, this, [this, id] { Q_EMIT commandRequested(id); });
        m_buttons->addWidget(button);
    }
    shown.remove(input);
    m_body->setText(shown);
    adjustSize();
    placeInCorner();
    show();
    raise();
    m_lifetime.start();
}

void ReminderBubble::placeInCorner()
{
    const QScreen *screen = parentWidget() ? parentWidget()->screen() : QGuiApplication::primaryScreen();
    if (!screen)
        return;
    const QRect area = screen->availableGeometry();
    move(area.right() - width() - Margin, area.bottom() - sizeHint().height() - Margin);
}
