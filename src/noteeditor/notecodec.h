#pragma once

#include <QByteArray>

class QTextDocument;

/// Turns note bytes of each NoteType into an editable text document and back.
namespace NoteCodec {

/// Fills doc from a note of the given type.
void read(const QByteArray &note, quint16 noteType, QTextDocument *doc);
/// The note bytes for doc; empty when the document holds no text.
QByteArray write(const QTextDocument *doc, quint16 noteType);

} // namespace NoteCodec
