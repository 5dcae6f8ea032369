#pragma once

#include "model/item.h"

#include <QFile>

// Small helpers the exchange suites share: hand-written UTF-16 bytes, a
// file's bytes, an outline on one line and a fixed time.
namespace ExchangeTest {

// UTF-16LE bytes of a text, unit by unit, without a terminator.
inline QByteArray le(const char16_t *text)
{
    QByteArray bytes;
    for (const char16_t *p = text; *p; ++p) {
        bytes += char(*p & 0xff);
        bytes += char(*p >> 8);
    }
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

// "R(a(b),c)": the outline as one line, to compare with a hand-written one.
inline QString describe(const TreeNode *node)
{
    QString out = node->name();
    if (node->hasChildren()) {
        out += QLatin1Char('(');
        for (int i = 0; i < node->childCount(); ++i)
            out += (i ? QStringLiteral(",") : QString()) + describe(node->child(i));
        out += QLatin1Char(')');
    }
    return out;
}

inline SystemTime at(int year, int month, int day, int hour = 0, int minute = 0, int second = 0)
{
    SystemTime t;
    t.year = quint16(year);
    t.month = quint16(month);
    t.day = quint16(day);
    t.hour = quint16(hour);
    t.minute = quint16(minute);
    t.second = quint16(second);
    return t;
}

} // namespace ExchangeTest
