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

/// The text of a note of the given NoteType (0 plain, 1 rich ink, 2 rich
/// text), without formatting, drawings or recordings; lines end with CR LF in
/// the rich formats. A plain note is read as a text ends, at its first zero
/// unit. An unknown NoteType gives no text.
QString plainText(const QByteArray &note, quint16 noteType);

/// A note of the given NoteType holding this text, one paragraph per line in
/// the rich formats; empty text gives no note.
QByteArray fromText(const QString &text, quint16 noteType);

} // namespace NoteText
