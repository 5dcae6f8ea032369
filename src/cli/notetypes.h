#pragma once

#include "model/document.h"

#include <QString>
#include <QtGlobal>

/// How qbx names a NoteType: 0, 1, 2, or plain, ink, rich (the words of the
/// new-document dialog work too: "Plain Text", "Rich Ink", "Rich Text").
namespace NoteTypes {

inline bool parse(const QString &text, quint16 *type)
{
    const QString word = text.trimmed().toLower();
    const char *shortNames[] = {"plain", "ink", "rich"};
    for (quint16 t = Document::PlainText; t <= Document::RichText; ++t) {
        if (word == QString::number(t) || word == QLatin1String(shortNames[t]) ||
            word == Document::noteTypeName(t).toLower()) {
            *type = t;
            return true;
        }
    }
    return false;
}

} // namespace NoteTypes
