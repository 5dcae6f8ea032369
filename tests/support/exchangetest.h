#pragma once

#include "model/document.h"
#include "storage/documentfile.h"

#include <QFile>

// Helpers of the exchange suites: UTF-16 bytes, files, an outline on one line, a fixed time.
namespace ExchangeTest {

// UTF-16LE bytes of a text, unit by unit, without a terminator.
inline QByteArray le(const char16_t *text)
{
    QByteArray bytes;
    for (const char16_t *p = text; *p; ++p)
        bytes += QByteArray(1, char(*p & 0xff)) + char(*p >> 8);
    return bytes;
}

// A plain-text note: UTF-16LE with its two-byte terminator.
inline QByteArray note(const char16_t *text)
{
    return le(text) + QByteArray(2, '\0');
}

inline QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
}

inline bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size();
}

// "R(a(b),c)": the outline as one line, to compare with a hand-written one.
inline QString describe(const TreeNode *node)
{
    QString out = node->name();
    for (int i = 0; i < node->childCount(); ++i)
        out += (i ? QStringLiteral(",") : QStringLiteral("(")) + describe(node->child(i));
    return node->hasChildren() ? out + QLatin1Char(')') : out;
}

inline QString describeFile(const QString &path, Document *document = nullptr)
{
    Document local;
    Document *loaded = document ? document : &local;
    const DocumentFile::LoadResult result = DocumentFile::load(path, loaded);
    return result == DocumentFile::Loaded ? describe(loaded->root()) : QStringLiteral("(load %1)").arg(int(result));
}

inline SystemTime at(int year, int month, int day, int hour = 0, int minute = 0, int second = 0)
{
    return SystemTime{quint16(year), quint16(month), 0, quint16(day), quint16(hour), quint16(minute), quint16(second)};
}

} // namespace ExchangeTest
