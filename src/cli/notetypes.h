#pragma once

#include <QString>
#include <QtGlobal>

/// How qbx names a NoteType: 0, 1, 2, or plain, ink, rich (the words of the
/// new-document dialog work too: "Plain Text", "Rich Ink", "Rich Text").
namespace NoteTypes {

inline bool parse(const QString &text, quint16 *type)
{
    const QString word = text.trimmed().toLower();
    if (word == QLatin1String("0") || word == QLatin1String("plain") || word == QLatin1String("plain text"))
        *type = 0;
    else if (word == QLatin1String("1") || word == QLatin1String("ink") || word == QLatin1String("rich ink"))
        *type = 1;
    else if (word == QLatin1String("2") || word == QLatin1String("rich") || word == QLatin1String("rich text"))
        *type = 2;
    else
        return false;
    return true;
}

} // namespace NoteTypes
