#pragma once

#include "model/systemtime.h"

#include <QByteArray>
#include <QString>
#include <cstring>

class QIODevice;

/// Little-endian reader of the document file's primitives, over bytes in
/// memory or over a file read in large chunks. It knows how many bytes the
/// whole input has left, so every count is checked against them before
/// anything is allocated; the first failed read makes the reader fail for
/// good and every later read returns zero or empty.
class ByteReader {
public:
    explicit ByteReader(const QByteArray &bytes);
    /// Reads size bytes from device (opened for reading) as they are needed.
    ByteReader(QIODevice *device, qint64 size);

    bool ok() const { return m_ok; }
    void fail() { m_ok = false; }
    qint64 bytesLeft() const { return (m_end - m_pos) + m_deviceLeft; }
    bool atEnd() const { return bytesLeft() == 0; }

    quint16 u16()
    {
        if (!need(2))
            return 0;
        const quint16 v = quint16(m_pos[0] | m_pos[1] << 8);
        m_pos += 2;
        return v;
    }
    quint32 u32()
    {
        if (!need(4))
            return 0;
        const quint32 v =
            quint32(m_pos[0]) | quint32(m_pos[1]) << 8 | quint32(m_pos[2]) << 16 | quint32(m_pos[3]) << 24;
        m_pos += 4;
        return v;
    }
    /// A u32 count n of UTF-16 units, then the units. A count larger than
    /// maxUnits, or than the bytes left allow, fails the reader.
    QString string(quint32 maxUnits = 0xFFFFFFFFu)
    {
        const quint32 units = u32();
        if (!m_ok || units > maxUnits || qint64(units) * 2 > bytesLeft()) {
            m_ok = false;
            return QString();
        }
        return units ? units16(units) : QString();
    }
    /// A fixed field of units UTF-16 units, cut at the first zero unit.
    QString fixedString(int units);
    SystemTime time()
    {
        if (!need(16))
            return {};
        SystemTime t;
        t.year = take16();
        t.month = take16();
        t.dayOfWeek = take16();
        t.day = take16();
        t.hour = take16();
        t.minute = take16();
        t.second = take16();
        t.milliseconds = take16();
        return t;
    }
    /// size raw bytes; a size larger than the bytes left fails the reader.
    QByteArray block(qint64 size);
    void skip(qint64 size);

private:
    bool need(qint64 size)
    {
        if (m_end - m_pos >= size)
            return m_ok;
        return refill(size);
    }
    bool refill(qint64 size);
    quint16 take16()
    {
        const quint16 v = quint16(m_pos[0] | m_pos[1] << 8);
        m_pos += 2;
        return v;
    }
    QString units16(quint32 units);

    QByteArray m_buffer;
    const uchar *m_pos = nullptr;
    const uchar *m_end = nullptr;
    QIODevice *m_device = nullptr;
    qint64 m_deviceLeft = 0;
    bool m_ok = true;
};
