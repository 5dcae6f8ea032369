#include "storage/bytereader.h"

#include "model/lastingtext.h"

#include <QFile>
#include <QtEndian>

#ifdef Q_OS_UNIX
#include <sys/mman.h>
#include <unistd.h>
#endif

ByteReader::ByteReader(const QByteArray &bytes)
{
    setBytes(bytes);
}

ByteReader::ByteReader(QFile *file)
{
    const qint64 size = file->size();
    m_mapping = size > 0 ? file->map(0, size) : nullptr;
    if (m_mapping) {
        m_mapped = file;
        m_pos = m_forgotten = m_mapping;
        m_end = m_pos + size;
#ifdef Q_OS_UNIX
        // The loader reads front to back once: let the kernel read ahead far.
        posix_madvise(m_mapping, size_t(size), POSIX_MADV_SEQUENTIAL);
#endif
        return;
    }
    const QByteArray bytes = file->readAll();
    setBytes(bytes);
    if (bytes.size() != size)
        m_ok = false;
}

ByteReader::~ByteReader()
{
    if (m_mapping)
        m_mapped->unmap(m_mapping);
}

void ByteReader::forgetPages()
{
#ifdef Q_OS_LINUX
    // Whole pages only, the one under the current position kept.
    const quintptr page = quintptr(sysconf(_SC_PAGESIZE));
    const quintptr end = quintptr(m_pos) & ~(page - 1);
    if (end > quintptr(m_forgotten)) {
        madvise(const_cast<uchar *>(m_forgotten), size_t(end - quintptr(m_forgotten)), MADV_DONTNEED);
        m_forgotten = reinterpret_cast<const uchar *>(end);
    }
#else
    m_forgotten = m_pos;
#endif
}

void ByteReader::setBytes(const QByteArray &bytes)
{
    m_buffer = bytes;
    m_pos = reinterpret_cast<const uchar *>(m_buffer.constData());
    m_end = m_pos + m_buffer.size();
}

QString ByteReader::units16(quint32 units)
{
    if (!need(qint64(units) * 2))
        return QString();
    QString text = LastingText::copy(m_pos, qsizetype(units));
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
    QByteArray bytes = LastingText::copyBytes(m_pos, qsizetype(size));
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
