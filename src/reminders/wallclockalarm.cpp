#include "reminders/wallclockalarm.h"

#include <QSocketNotifier>

#ifdef Q_OS_LINUX
#include <cerrno>
#include <sys/timerfd.h>
#include <unistd.h>
#endif

namespace {
// The polling alarm looks at the wall clock at least this often.
constexpr qint64 PollMs = 60'000;
} // namespace

WallClockAlarm::WallClockAlarm(Backend backend, QObject *parent) : WakeAlarm(parent)
{
    m_poll.setSingleShot(true);
    m_poll.setTimerType(Qt::PreciseTimer);
    connect(&m_poll, &QTimer::timeout, this, &WallClockAlarm::onPoll);
#ifdef Q_OS_LINUX
    if (backend == Backend::Best) {
        m_fd = timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC);
        if (m_fd >= 0) {
            m_notifier = std::make_unique<QSocketNotifier>(m_fd, QSocketNotifier::Read);
            connect(m_notifier.get(), &QSocketNotifier::activated, this, &WallClockAlarm::onTimerFd);
        }
    }
#else
    Q_UNUSED(backend);
#endif
}

WallClockAlarm::~WallClockAlarm()
{
    m_notifier.reset();
#ifdef Q_OS_LINUX
    if (m_fd >= 0)
        ::close(m_fd);
#endif
}

void WallClockAlarm::arm(const QDateTime &at)
{
    m_at = at;
    m_armed = true;
#ifdef Q_OS_LINUX
    if (m_fd >= 0) {
        const qint64 ms = at.toMSecsSinceEpoch();
        itimerspec expiry{};
        // A zero expiry would disarm: a time at or before the epoch is long
        // past, so any small positive one fires at once as well.
        expiry.it_value.tv_sec = ms > 0 ? time_t(ms / 1000) : 0;
        expiry.it_value.tv_nsec = ms > 0 ? long(ms % 1000) * 1'000'000 : 1;
        // Cancelled when the clock is set, so the caller can schedule anew.
        if (timerfd_settime(m_fd, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &expiry, nullptr) == 0)
            return;
    }
#endif
    m_poll.start(0); // never fire from inside arm()
}

void WallClockAlarm::disarm()
{
    m_armed = false;
    m_poll.stop();
#ifdef Q_OS_LINUX
    if (m_fd >= 0) {
        const itimerspec off{};
        timerfd_settime(m_fd, 0, &off, nullptr);
    }
#endif
}

void WallClockAlarm::onTimerFd()
{
#ifdef Q_OS_LINUX
    quint64 expirations = 0;
    const ssize_t got = ::read(m_fd, &expirations, sizeof expirations);
    if (got < 0 && errno == ECANCELED) {
        Q_EMIT clockChanged();
        return;
    }
    if (got != ssize_t(sizeof expirations) || !m_armed)
        return;
    m_armed = false;
    Q_EMIT fired();
#endif
}

void WallClockAlarm::onPoll()
{
    if (!m_armed)
        return;
    const qint64 left = QDateTime::currentDateTime().msecsTo(m_at);
    if (left <= 0) {
        m_armed = false;
        Q_EMIT fired();
        return;
    }
    m_poll.start(int(std::min(left, PollMs)));
}
