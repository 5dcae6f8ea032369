#include "storage/bytereader.h"

#include <QIODevice>
#include <QtEndian>

namespace {
// Large enough that refills cost nothing next to parsing, small enough that a
// file of hundreds of megabytes never sits in memory whole.
constexpr qint64 ChunkSize = 1 << 20;
} // namespace

ByteReader::ByteReader(const QByteArray &bytes) : m_buffer(bytes)
{
    m_pos = reinterpret_cast<const uchar *>(m_buffer.constData());
    m_end = m_pos + m_buffer.size();
}

ByteReader::ByteReader(QIODevice *device, qint64 size) : m_device(device), m_deviceLeft(qMax<qint64>(size, 0))
{
    m_pos = m_end = reinterpret_cast<const uchar *>(m_buffer.constData());
}

bool ByteReader::refill(qint64 size)
{
    if (!m_ok || size > bytesLeft() || !m_device) {
        m_ok = false;
        return false;
    }
    // Keep the unread tail, then read at least what is needed from the file.
    const qint64 kept = m_end - m_pos;
    const qint64 wanted = qMin(m_deviceLeft, qMax(size - kept, ChunkSize));
    QByteArray next(kept + wanted, Qt::Uninitialized);
    std::memcpy(next.data(), m_pos, size_t(kept));
    const qint64 got = m_device->read(next.data() + kept, wanted);
    if (got != wanted) {
        m_ok = false;
        return false;
    }
    m_deviceLeft -= wanted;
    m_buffer = std::move(next);
    m_pos = reinterpret_cast<const uchar *>(m_buffer.constData());
    m_end = m_pos + m_buffer.size();
    return true;
}

QString ByteReader::units16(quint32 units)
{
    if (!need(qint64(units) * 2))
        return QString();
    QString text(qsizetype(units), Qt::Uninitialized);
    // memcpy, not a cast: the units need not be aligned in the file.
    std::memcpy(text.data(), m_pos, size_t(units) * 2);
#if Q_BYTE_ORDER == Q_BIG_ENDIAN
    for (QChar &c : text)
        c = QChar(qFromLittleEndian(c.unicode()));
#endif
    m_pos += qint64(units) * 2;
    return text;
}

QString ByteReader::fixedString(int units)
{
    QString text = units16(quint32(units));
    const qsizetype zero = text.indexOf(QChar(0));
    if (zero >= 0)
        text.truncate(zero);
    return text;
}

QByteArray ByteReader::block(qint64 size)
{
    if (size < 0 || size > bytesLeft()) {
        m_ok = false;
        return QByteArray();
    }
    if (!need(size))
        return QByteArray();
    QByteArray bytes(reinterpret_cast<const char *>(m_pos), qsizetype(size));
    m_pos += size;
    return bytes;
}

void ByteReader::skip(qint64 size)
{
    if (size < 0 || !need(size)) {
        m_ok = false;
        return;
    }
    m_pos += size;
}
