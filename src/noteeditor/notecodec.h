#pragma once

#include <QByteArray>

class QTextDocument;

/// Turns note bytes of each NoteType into an editable text document and back:
/// UTF-16 text for "Plain Text", RTF for "Rich Text", and for "Rich Ink" the
/// text chunk of our container, whose drawings and recordings are kept.
namespace NoteCodec {

/// Fills doc from a note of the given type.
void read(const QByteArray &note, quint16 noteType, QTextDocument *doc);
/// The note bytes for doc. original is the note as it was loaded: a rich ink
/// note keeps its other chunks. Empty when nothing is left to keep.
QByteArray write(const QTextDocument *doc, quint16 noteType, const QByteArray &original = QByteArray());

} // namespace NoteCodec
