#pragma once

#include <QDateTime>
#include <QtGlobal>
#include <array>

/// The one date-time type of the model and of the document file: eight
/// unsigned 16-bit fields, local time, no time zone. A month of 0 means that
/// no date is set, whatever the other fields hold.
struct SystemTime {
    quint16 year = 0;
    quint16 month = 0;
    quint16 dayOfWeek = 0;
    quint16 day = 0;
    quint16 hour = 0;
    quint16 minute = 0;
    quint16 second = 0;
    quint16 milliseconds = 0;

    bool hasDate() const { return month != 0; }
    bool isZero() const { return fields() == std::array<quint16, 8>{}; }

    std::array<quint16, 8> fields() const;

    static SystemTime fromDateTime(const QDateTime &time);
    /// The present local time from the Clock.
    static SystemTime now();
    QDateTime toDateTime() const;
    QDate toDate() const { return QDate(year, month, day); }

    /// 100-nanosecond intervals since 1601-01-01, as the file-time comparisons
    /// use; false when the fields do not make a valid date and time.
    bool toFileTime(qint64 *fileTime) const;

    friend bool operator==(const SystemTime &, const SystemTime &) = default;
};
