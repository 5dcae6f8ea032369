#pragma once

#include "reminders/wakealarm.h"

#include <QTimer>
#include <memory>

class QSocketNotifier;

/// The alarm of the running application. On Linux a timerfd on the real-time
/// clock with an absolute expiry: it fires on time after a suspend and
/// follows clock changes, and a change of the clock is reported. Elsewhere a
/// timer that looks at the wall clock at least once a minute, so that a jump
/// of the clock or a suspend delays the alarm by a minute at most.
class WallClockAlarm : public WakeAlarm {
    Q_OBJECT
public:
    enum class Backend { Best, Polling };

    explicit WallClockAlarm(Backend backend = Backend::Best, QObject *parent = nullptr);
    ~WallClockAlarm() override;

    void arm(const QDateTime &at) override;
    void disarm() override;
    bool isArmed() const override { return m_armed; }
    /// Whether the timerfd carries this alarm.
    bool usesTimerFd() const { return m_fd >= 0; }

private:
    void onTimerFd();
    void onPoll();

    int m_fd = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QTimer m_poll;
    QDateTime m_at;
    bool m_armed = false;
};
