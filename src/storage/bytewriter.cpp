#include "storage/bytewriter.h"

#include <QIODevice>
#include <QtEndian>

ByteWriter::ByteWriter(QIODevice *device) : m_device(device)
{
    if (m_device)
        m_buffer.reserve(FlushSize + 4096);
}

void ByteWriter::string(const QString &text)
{
    u32(quint32(text.size()));
#if Q_BYTE_ORDER == Q_LITTLE_ENDIAN
    m_buffer.append(reinterpret_cast<const char *>(text.constData()), text.size() * 2);
#else
    for (QChar c : text)
        u16(c.unicode());
#endif
    maybeFlush();
}

void ByteWriter::time(const SystemTime &t)
{
    for (quint16 field : t.fields())
        u16(field);
}

void ByteWriter::flush()
{
    if (m_ok && !m_buffer.isEmpty() && m_device->write(m_buffer) != m_buffer.size())
        m_ok = false;
    m_buffer.resize(0);
}

bool ByteWriter::finish()
{
    if (m_device)
        flush();
    return m_ok;
}
