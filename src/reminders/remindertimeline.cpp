#include "reminders/remindertimeline.h"

#include "reminders/remindermanager.h"

namespace ReminderTimeline {

std::vector<Bubble> run(ReminderManager &manager, const QDateTime &start, const QDateTime &until)
{
    std::vector<Bubble> bubbles;
    ReminderManager::Wake wake = manager.reschedule(start);
    QDateTime timer = start.addMSecs(TimerPeriodMs);
    QDateTime now = start;
    bool checkedNow = false;
    for (;;) {
        QDateTime wakeAt;
        if (wake.kind == ReminderManager::Wake::Now)
            wakeAt = now;
        else if (wake.kind == ReminderManager::Wake::At)
            wakeAt = wake.time;
        if (wakeAt.isValid() && wakeAt <= timer) {
            if (wakeAt > until)
                break;
            // A "now" that a check at this very moment could not settle
            // would ask again forever; the rules rule it out, this makes sure.
            if (wake.kind == ReminderManager::Wake::Now && checkedNow)
                break;
            checkedNow = wake.kind == ReminderManager::Wake::Now;
            now = wakeAt;
            std::vector<Item *> due = manager.checkDue(now);
            if (!due.empty()) {
                bubbles.push_back({now, std::move(due)});
                checkedNow = false;
            }
        } else {
            if (timer > until)
                break;
            now = timer;
            timer = timer.addMSecs(TimerPeriodMs);
            checkedNow = false;
        }
        wake = manager.reschedule(now);
    }
    return bubbles;
}

} // namespace ReminderTimeline
