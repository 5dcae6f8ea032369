#pragma once

#include "model/systemtime.h"

#include <QByteArray>
#include <QString>
#include <cstring>

class QFile;

/// Little-endian reader of the document file's primitives, over bytes in
/// memory or over a file mapped into memory. It knows how many bytes the
/// whole input has left, so every count is checked against them before
/// anything is allocated; the first failed read makes the reader fail for
/// good and every later read returns zero or empty.
class ByteReader {
public:
    /// Shares bytes (no copy).
    explicit ByteReader(const QByteArray &bytes);
    /// Reads the whole of file (opened for reading) from a mapping, so the
    /// file is never copied into a buffer of ours; a file the system cannot
    /// map (empty, or not a plain file) is read whole instead. The mapping
    /// goes with the reader.
    explicit ByteReader(QFile *file);
    ~ByteReader();
    ByteReader(const ByteReader &) = delete;
    ByteReader &operator=(const ByteReader &) = delete;

    bool ok() const { return m_ok; }
    void fail() { m_ok = false; }
    qint64 bytesLeft() const { return m_end - m_pos; }
    bool atEnd() const { return bytesLeft() == 0; }
    /// Tells the reader that nothing before the current position is needed
    /// again: a mapped file's pages behind it leave the process's memory
    /// (they stay in the system's file cache), so a large file never adds
    /// its whole size to the peak. Cheap enough to call once per record.
    void forgetRead()
    {
        if (m_mapping && m_pos - m_forgotten >= ForgetStep)
            forgetPages();
    }

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
        m_ok = false;
        return false;
    }
    quint16 take16()
    {
        const quint16 v = quint16(m_pos[0] | m_pos[1] << 8);
        m_pos += 2;
        return v;
    }
    QString units16(quint32 units);

    void setBytes(const QByteArray &bytes);
    void forgetPages();
    static constexpr qint64 ForgetStep = 8 << 20;

    QByteArray m_buffer;
    const uchar *m_pos = nullptr;
    const uchar *m_end = nullptr;
    QFile *m_mapped = nullptr;
    uchar *m_mapping = nullptr;
    const uchar *m_forgotten = nullptr; // pages before this are released
    bool m_ok = true;
};
