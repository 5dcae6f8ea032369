#include "model/systemtime.h"

#include "platform/clock.h"

std::array<quint16, 8> SystemTime::fields() const
{
    return {year, month, dayOfWeek, day, hour, minute, second, milliseconds};
}

SystemTime SystemTime::fromDateTime(const QDateTime &time)
{
    const QDate d = time.date();
    const QTime t = time.time();
    SystemTime st;
    st.year = quint16(d.year());
    st.month = quint16(d.month());
    st.dayOfWeek = quint16(d.dayOfWeek() % 7); // Sunday is 0
    st.day = quint16(d.day());
    st.hour = quint16(t.hour());
    st.minute = quint16(t.minute());
    st.second = quint16(t.second());
    st.milliseconds = quint16(t.msec());
    return st;
}

SystemTime SystemTime::now()
{
    return fromDateTime(Clock::now());
}

QDateTime SystemTime::toDateTime() const
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute, second, milliseconds));
}

bool SystemTime::toFileTime(qint64 *fileTime) const
{
    const QDate date(year, month, day);
    if (year < 1601 || !date.isValid() || hour > 23 || minute > 59 || second > 59 || milliseconds > 999)
        return false;
    static const qint64 epoch = QDate(1601, 1, 1).toJulianDay();
    const qint64 days = date.toJulianDay() - epoch;
    const qint64 ms = ((qint64(hour) * 60 + minute) * 60 + second) * 1000 + milliseconds;
    *fileTime = (days * 86400000 + ms) * 10000;
    return true;
}
