#pragma once

#include <QByteArray>
#include <QtGlobal>

class Document;
class TreeNode;

/// Turns notes from one NoteType into another: 0 "Plain Text" (UTF-16LE),
/// 1 "Rich Ink" (our container, see RichInk), 2 "Rich Text" (RTF). Going to
/// plain text drops formatting, drawings and recordings; going from plain
/// text makes one paragraph per line.
class NoteConverter {
public:
    virtual ~NoteConverter() = default;

    /// The note in the target type. False when it cannot be converted (an
    /// unknown NoteType); the six conversions themselves do not fail. A note
    /// whose text comes out empty becomes no note.
    virtual bool convert(const QByteArray &note, quint16 from, quint16 to, QByteArray *result);

    /// Converts the note of every Item below root, depth first. Items without
    /// a note are left alone; from == to writes every note back unchanged.
    /// All or nothing: when one note fails, no note has changed.
    bool convertAllNotes(TreeNode *root, quint16 from, quint16 to);

    /// Converts every note of the document to the target type and then sets
    /// the document's NoteType; on failure the document is as it was. The
    /// caller saves.
    bool convertDocument(Document &document, quint16 to);

    /// The conversion step of importing a document file of another NoteType:
    /// every note of the imported tree in the open document's NoteType. Notes
    /// of a type no converter knows keep their bytes.
    static void convertImported(TreeNode *importedRoot, quint16 from, quint16 to);
};
