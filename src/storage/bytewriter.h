#pragma once

#include "model/systemtime.h"

#include <QByteArray>
#include <QString>
#include <cstring>

class QIODevice;

/// Little-endian writer of the document file's primitives. Bytes gather in a
/// buffer that goes to the device whenever it fills, or that grows and stays
/// in memory when there is no device. The first failed device write makes the
/// writer fail for good.
class ByteWriter {
public:
    /// device null: everything stays in memory, for bytes().
    explicit ByteWriter(QIODevice *device = nullptr);

    bool ok() const { return m_ok; }
    /// Sends what is buffered to the device (or settles the bytes in memory);
    /// true when every write succeeded.
    bool finish();
    /// Everything written, after finish(), when there is no device.
    const QByteArray &bytes() const { return m_buffer; }

    void u16(quint16 v)
    {
        char *p = room(2);
        p[0] = char(v);
        p[1] = char(v >> 8);
        m_pos += 2;
    }
    void u32(quint32 v)
    {
        char *p = room(4);
        p[0] = char(v);
        p[1] = char(v >> 8);
        p[2] = char(v >> 16);
        p[3] = char(v >> 24);
        m_pos += 4;
    }
    /// u32 count of UTF-16 units, then the units.
    void string(const QString &text);
    void time(const SystemTime &t);
    void block(const QByteArray &bytes)
    {
        std::memcpy(room(bytes.size()), bytes.constData(), size_t(bytes.size()));
        m_pos += bytes.size();
    }

private:
    char *room(qsizetype size)
    {
        if (m_end - m_pos < size)
            makeRoom(size);
        return m_pos;
    }
    void makeRoom(qsizetype size);

    QByteArray m_buffer;
    char *m_pos = nullptr;
    char *m_end = nullptr;
    QIODevice *m_device = nullptr;
    bool m_ok = true;
};
