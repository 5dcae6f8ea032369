#pragma once

#include <QList>
#include <QObject>
#include <memory>

class DesktopNotification;
class Document;
class Item;
class Prompts;
class QWidget;
class ReminderBubble;
class ReminderService;
class ReminderSound;
class Settings;
class UndoStack;
class WakeAlarm;

/// The reminders of one open document in the desktop: made with the document
/// view and destroyed with it. It owns the reminder service (list, alarm,
/// ten-day timer), the bubble, the desktop notification and the sound; when
/// reminders fall due it shows the bubble and the notification and plays the
/// `Sound` setting. The view tells it about edits; it asks the view to
/// select an item chosen in the reminder list.
class ReminderController : public QObject {
    Q_OBJECT
public:
    /// Command ids of the bubble's button and link.
    enum Command { DismissAllCommand = 1990, ViewRemindersCommand = 1991 };

    /// window parents the reminder list; settings are read when a sound
    /// plays, so a change in the options counts from then on. The alarm and
    /// the notification are for tests; by default a wall-clock alarm and the
    /// session bus.
    ReminderController(Document *document, const Settings &settings, Prompts &prompts, QWidget *window,
                       std::unique_ptr<WakeAlarm> alarm = {}, std::unique_ptr<DesktopNotification> notification = {});
    ~ReminderController() override;

    /// The document was replaced or reloaded.
    void documentChanged();
    /// An edit set, changed or cleared an item's reminder (a new item that
    /// carries one included).
    void itemReminderChanged(Item *item);
    /// Items arrived by paste, import or a template: the branch's pending
    /// reminders join.
    void itemsAdded(Item *top);
    /// Items were deleted (call after the deletion).
    void itemsRemoved();
    /// Where the dismissals made from the bubble and the notification are
    /// recorded, so an undo follows them.
    void setUndoStack(UndoStack *stack) { m_undo = stack; }
    /// Command 1990: ends every shown reminder and takes the bubble away.
    void dismissAll();
    /// Command 1991: the list of reminders over the window.
    void viewReminders();
    /// Runs 1990 or 1991; false for any other id.
    bool runCommand(int id);

    ReminderService &service() const { return *m_service; }
    /// The bubble, or null before the first reminder fell due.
    ReminderBubble *bubble() const { return m_bubble.get(); }
    DesktopNotification &notification() const { return *m_notification; }
    /// The file of the last sound played (empty for silence).
    const QString &lastSound() const { return m_lastSound; }

Q_SIGNALS:
    /// The person chose an item in the reminder list: make it current.
    void selectItemRequested(Item *item);
    /// Reminder fields of items changed by dismissal: the document changed.
    void remindersDismissed();

private:
    void onDue(const QList<Item *> &due);
    void removeBubble();

    const Settings &m_settings;
    Prompts &m_prompts;
    QWidget *m_window;
    UndoStack *m_undo = nullptr;
    std::unique_ptr<ReminderService> m_service;
    std::unique_ptr<DesktopNotification> m_notification;
    std::unique_ptr<ReminderSound> m_sound;
    std::unique_ptr<ReminderBubble> m_bubble;
    QString m_lastSound;
};
