#pragma once

#include "reminders/wakealarm.h"

/// An alarm that only records what it was armed for; the test fires it.
class FakeAlarm : public WakeAlarm {
public:
    void arm(const QDateTime &time) override
    {
        armedAt = time;
        armed = true;
    }
    void disarm() override { armed = false; }
    bool isArmed() const override { return armed; }
    /// Fires as the time had come; false when it was not armed.
    bool fire()
    {
        if (!armed)
            return false;
        armed = false;
        Q_EMIT fired();
        return true;
    }

    QDateTime armedAt;
    bool armed = false;
};
