#pragma once

#include <QDateTime>

/// The one source of "now" for the core. Tests fix it so that creation dates,
/// reminders and due-date comparisons are reproducible.
class Clock {
public:
    /// Local wall-clock time, or the fixed time a test has set.
    static QDateTime now();
    static void setFixed(const QDateTime &time);
    static void reset();
};
