#include "storage/bytewriter.h"

#include <QIODevice>

namespace {
constexpr qsizetype ChunkSize = 1 << 20;
} // namespace

ByteWriter::ByteWriter(QIODevice *device) : m_buffer(ChunkSize, Qt::Uninitialized), m_device(device)
{
    m_pos = m_buffer.data();
    m_end = m_pos + m_buffer.size();
}

void ByteWriter::makeRoom(qsizetype size)
{
    const qsizetype used = m_pos - m_buffer.data();
    if (m_device) {
        if (m_ok && used > 0 && m_device->write(m_buffer.constData(), used) != used)
            m_ok = false;
        if (size > m_buffer.size())
            m_buffer.resize(size);
        m_pos = m_buffer.data();
    } else {
        m_buffer.resize(qMax(m_buffer.size() * 2, used + size));
        m_pos = m_buffer.data() + used;
    }
    m_end = m_buffer.data() + m_buffer.size();
}

void ByteWriter::string(const QString &text)
{
    u32(quint32(text.size()));
    const qsizetype size = text.size() * 2;
    char *p = room(size);
#if Q_BYTE_ORDER == Q_LITTLE_ENDIAN
    std::memcpy(p, text.constData(), size_t(size));
#else
    for (qsizetype i = 0; i < text.size(); ++i) {
        p[2 * i] = char(text[i].unicode());
        p[2 * i + 1] = char(text[i].unicode() >> 8);
    }
#endif
    m_pos += size;
}

void ByteWriter::time(const SystemTime &t)
{
    char *p = room(16);
    for (quint16 field : t.fields()) {
        *p++ = char(field);
        *p++ = char(field >> 8);
    }
    m_pos = p;
}

bool ByteWriter::finish()
{
    const qsizetype used = m_pos - m_buffer.data();
    if (m_device) {
        if (m_ok && used > 0 && m_device->write(m_buffer.constData(), used) != used)
            m_ok = false;
        m_pos = m_buffer.data();
    } else {
        m_buffer.resize(used);
        m_pos = m_end = m_buffer.data() + used;
    }
    return m_ok;
}
