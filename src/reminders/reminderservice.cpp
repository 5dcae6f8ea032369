#include "reminders/reminderservice.h"

#include "platform/clock.h"
#include "reminders/remindertimeline.h"
#include "reminders/wallclockalarm.h"

ReminderService::ReminderService(Document *document, std::unique_ptr<WakeAlarm> alarm, QObject *parent)
    : QObject(parent), m_document(document), m_manager(document), m_alarm(std::move(alarm))
{
    if (!m_alarm)
        m_alarm = std::make_unique<WallClockAlarm>();
    connect(m_alarm.get(), &WakeAlarm::fired, this, &ReminderService::wake);
    connect(m_alarm.get(), &WakeAlarm::clockChanged, this, &ReminderService::reschedule);
    m_tenDays.setObjectName(QStringLiteral("tenDayTimer"));
    m_tenDays.setInterval(int(ReminderTimeline::TimerPeriodMs));
    connect(&m_tenDays, &QTimer::timeout, this, &ReminderService::reschedule);
    m_manager.load();
    m_tenDays.start();
    reschedule();
}

ReminderService::~ReminderService()
{
    m_alarm->disarm();
}

void ReminderService::reload()
{
    m_manager.load();
    reschedule();
}

void ReminderService::itemChanged(Item *item)
{
    if (m_manager.itemChanged(item))
        reschedule();
}

void ReminderService::branchAdded(Item *top)
{
    if (m_manager.branchAdded(top))
        reschedule();
}

void ReminderService::itemsRemoved()
{
    if (m_manager.purge())
        reschedule();
}

void ReminderService::dismiss(Item *item)
{
    m_manager.dismiss(item);
    reschedule();
    Q_EMIT remindersDismissed();
}

void ReminderService::dismissAll()
{
    m_manager.dismissAll();
    Q_EMIT remindersDismissed();
}

void ReminderService::reschedule()
{
    m_alarm->disarm();
    const ReminderManager::Wake next = m_manager.reschedule(Clock::now());
    if (next.kind == ReminderManager::Wake::At) {
        m_alarm->arm(next.time);
    } else if (next.kind == ReminderManager::Wake::Now && !m_wakePosted) {
        // Checked once control returns to the event loop, never from inside
        // the edit or the load that asked for the schedule.
        m_wakePosted = true;
        QMetaObject::invokeMethod(
            this,
            [this] {
                m_wakePosted = false;
                wake();
            },
            Qt::QueuedConnection);
    }
}

void ReminderService::wake()
{
    const std::vector<Item *> due = m_manager.checkDue(Clock::now());
    if (!due.empty())
        Q_EMIT remindersDue(QList<Item *>(due.begin(), due.end()));
    reschedule();
}
