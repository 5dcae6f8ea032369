#pragma once

#include <QFrame>
#include <QTimer>

class QHBoxLayout;
class QLabel;

/// The reminder bubble: a frameless window near the corner of the screen that
/// shows a title and the reminders' HTML. The page's "cmd:N" links and its
/// buttons (`<input type=button name="cmd:N" value="...">`, drawn as real
/// push buttons) ask for command N. It goes away after an hour.
class ReminderBubble : public QFrame {
    Q_OBJECT
public:
    static constexpr int LifetimeMs = 3600 * 1000;

    explicit ReminderBubble(QWidget *parent = nullptr);

    /// Shows the bubble with new content, replacing what it showed.
    void showReminders(const QString &title, const QString &html);
    /// The HTML last given, as given.
    const QString &html() const { return m_html; }
    const QTimer &lifetime() const { return m_lifetime; }

Q_SIGNALS:
    void commandRequested(int id);

private:
    void placeInCorner();

    QLabel *m_title = nullptr;
    QLabel *m_body = nullptr;
    QHBoxLayout *m_buttons = nullptr;
    QString m_html;
    QTimer m_lifetime;
};
