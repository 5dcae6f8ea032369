#pragma once

#include <QByteArray>
#include <QString>

/// The plain text of a note in any of the document's note formats, for find,
/// display and the text exports.
namespace NoteText {

/// Note bytes of a "Plain Text" document: UTF-16LE, with or without one
/// terminating zero unit.
QString fromPlainNote(const QByteArray &note);
/// The UTF-16LE bytes of a "Plain Text" note, ended by one zero unit; empty
/// text gives no note at all.
QByteArray toPlainNote(const QString &text);

/// The text of a note of the given NoteType (0 plain, 1 rich ink, 2 rich text).
QString plainText(const QByteArray &note, quint16 noteType);

} // namespace NoteText
