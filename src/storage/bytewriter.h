#pragma once

#include "model/systemtime.h"

#include <QByteArray>
#include <QString>

class QIODevice;

/// Little-endian writer of the document file's primitives. Bytes gather in a
/// buffer that goes to the device whenever it grows past a chunk, or stays in
/// memory when there is no device. The first failed device write makes the
/// writer fail for good.
class ByteWriter {
public:
    /// device null: everything stays in bytes().
    explicit ByteWriter(QIODevice *device = nullptr);

    bool ok() const { return m_ok; }
    /// Sends what is buffered to the device; true when all writes succeeded.
    bool finish();
    /// Everything written, when there is no device.
    const QByteArray &bytes() const { return m_buffer; }

    void u16(quint16 v)
    {
        char b[2] = {char(v), char(v >> 8)};
        m_buffer.append(b, 2);
    }
    void u32(quint32 v)
    {
        char b[4] = {char(v), char(v >> 8), char(v >> 16), char(v >> 24)};
        m_buffer.append(b, 4);
        maybeFlush();
    }
    /// u32 count of UTF-16 units, then the units.
    void string(const QString &text);
    void time(const SystemTime &t);
    void block(const QByteArray &bytes)
    {
        m_buffer.append(bytes);
        maybeFlush();
    }

private:
    void maybeFlush()
    {
        if (m_device && m_buffer.size() >= FlushSize)
            flush();
    }
    void flush();

    static constexpr qsizetype FlushSize = 1 << 20;
    QByteArray m_buffer;
    QIODevice *m_device = nullptr;
    bool m_ok = true;
};
