#pragma once

#include <QDateTime>
#include <vector>

class Item;
class ReminderManager;

/// What a reminder manager would show over a stretch of time if nobody
/// touched the document: its wake-ups, the ten-day timer that moves the
/// horizon on, and the shown list that keeps a bubble's Items from coming
/// back. The running application follows the same steps as they happen.
namespace ReminderTimeline {

/// The period of the timer that reschedules, in milliseconds (ten days).
inline constexpr qint64 TimerPeriodMs = 864'000'000;

struct Bubble {
    QDateTime wake;            ///< when the check that found them ran
    std::vector<Item *> items; ///< in the order they fell due
};

/// The bubbles from start (where the manager is freshly loaded and first
/// schedules) to until, in time order.
std::vector<Bubble> run(ReminderManager &manager, const QDateTime &start, const QDateTime &until);

} // namespace ReminderTimeline
