#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

// Spells out document file bytes field by field for the tests, so that every expected file is written down by hand
// rather than produced by the writer; reads and writes whole files.
class FileBytes {
public:
    /// Hex digits; spaces between them are skipped.
    FileBytes &hex(const char *text) { return bytes(QByteArray::fromHex(text)); }
    FileBytes &u16(quint16 v)
    {
        m_bytes.append(char(v & 0xFF)).append(char(v >> 8));
        return *this;
    }
    FileBytes &u32(quint32 v) { return u16(quint16(v & 0xFFFF)).u16(quint16(v >> 16)); }
    /// A counted UTF-16LE string.
    FileBytes &str(const QString &text) { return u32(quint32(text.size())).fixed(text, 0); }
    /// A fixed field of count units, zero-padded.
    FileBytes &fixed(const QString &text, int count)
    {
        for (QChar c : text)
            u16(c.unicode());
        for (qsizetype i = text.size(); i < count; ++i)
            u16(0);
        return *this;
    }
    FileBytes &time(quint16 y, quint16 mo, quint16 dow, quint16 d, quint16 h, quint16 mi, quint16 s, quint16 ms)
    {
        return u16(y).u16(mo).u16(dow).u16(d).u16(h).u16(mi).u16(s).u16(ms);
    }
    FileBytes &zeroTime() { return time(0, 0, 0, 0, 0, 0, 0, 0); }
    FileBytes &bytes(const QByteArray &raw)
    {
        m_bytes += raw;
        return *this;
    }
    int size() const { return int(m_bytes.size()); }
    operator QByteArray() const { return m_bytes; }
    QByteArray data() const { return m_bytes; }

    /// The whole file, or "<missing>" when it cannot be read.
    static QByteArray read(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
    }
    static bool write(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    }

private:
    QByteArray m_bytes;
};
