#pragma once

#include <QDateTime>
#include <QObject>

/// A one-shot alarm at a wall-clock time. The reminder service arms it for
/// the next reminder; tests put in one they fire by hand.
class WakeAlarm : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    /// Replaces any armed time; a time already past fires at once.
    virtual void arm(const QDateTime &at) = 0;
    virtual void disarm() = 0;
    virtual bool isArmed() const = 0;

Q_SIGNALS:
    /// The armed time has come (the alarm is disarmed now).
    void fired();
    /// The system clock was set: the caller schedules again.
    void clockChanged();
};
