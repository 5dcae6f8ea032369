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

/// A SystemTime in eight bytes, for the million items of a big document.
/// A time whose fields lie in their natural ranges packs (any year, a month
/// up to 15, a day up to 31, milliseconds up to 1023, ...); one with a wider
/// field does not fit and is kept whole by its owner.
class PackedTime {
public:
    static bool fits(const SystemTime &time)
    {
        return time.month < 16 && time.dayOfWeek < 8 && time.day < 32 && time.hour < 32 && time.minute < 64 &&
               time.second < 64 && time.milliseconds < 1024;
    }
    /// time must fit.
    static PackedTime pack(const SystemTime &time)
    {
        PackedTime packed;
        packed.m_bits = quint64(time.year) | quint64(time.month) << 16 | quint64(time.dayOfWeek) << 20 |
                        quint64(time.day) << 23 | quint64(time.hour) << 28 | quint64(time.minute) << 33 |
                        quint64(time.second) << 39 | quint64(time.milliseconds) << 45;
        return packed;
    }
    SystemTime unpack() const
    {
        const auto field = [this](int shift, int bits) { return quint16((m_bits >> shift) & ((1u << bits) - 1)); };
        return {field(0, 16), field(16, 4), field(20, 3), field(23, 5),
                field(28, 5), field(33, 6), field(39, 6), field(45, 10)};
    }
    bool hasDate() const { return (m_bits >> 16 & 0xf) != 0; }

private:
    quint64 m_bits = 0;
};
