#pragma once

#include "model/item.h"
#include "reminders/remindermanager.h"

#include <QList>
#include <QObject>
#include <QTimer>
#include <memory>

class Document;
class WakeAlarm;

/// The reminders of one open document at work: created with the document
/// view, it loads the reminder list, arms the alarm for the next wake-up,
/// reschedules every ten days, and on waking reports what is due. Everything
/// runs on the thread that owns it (the GUI thread); time comes from Clock.
class ReminderService : public QObject {
    Q_OBJECT
public:
    /// Without an alarm, a WallClockAlarm. Starts at once.
    explicit ReminderService(Document *document, std::unique_ptr<WakeAlarm> alarm = {}, QObject *parent = nullptr);
    ~ReminderService() override;

    const ReminderManager &manager() const { return m_manager; }
    WakeAlarm *alarm() const { return m_alarm.get(); }
    const QTimer &tenDayTimer() const { return m_tenDays; }

    /// The document was replaced or reloaded: the list is built afresh.
    void reload();
    /// An edit set, changed or cleared an item's reminder (a new item with
    /// one included).
    void itemChanged(Item *item);
    /// Items arrived by an edit (paste, import, template).
    void branchAdded(Item *top);
    /// Items were deleted: they leave the lists at once.
    void itemsRemoved();
    /// Ends one reminder.
    void dismiss(Item *item);
    /// Ends every shown reminder.
    void dismissAll();

    /// Finds the next wake-up from the present time and arms for it.
    void reschedule();
    /// What waking does: report what is due, then schedule from the present.
    void wake();

Q_SIGNALS:
    /// Reminders fell due, in list order: show them. The Items are live
    /// while the signal is delivered.
    void remindersDue(const QList<Item *> &due);
    /// Dismissal changed the reminder fields of Items.
    void remindersDismissed();

private:
    Document *m_document;
    ReminderManager m_manager;
    std::unique_ptr<WakeAlarm> m_alarm;
    QTimer m_tenDays;
    bool m_wakePosted = false;
};
