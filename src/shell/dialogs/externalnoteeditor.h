#pragma once

#include <QByteArray>
#include <QString>

class Prompts;
class QWidget;

/// "Edit in Word": a note goes to the desktop's word processor as a
/// temporary ".rtf" file, opened with the application the desktop gives that
/// type; when the person says they are done, the file is read back into the
/// note and removed.
class ExternalNoteEditor {
public:
    enum class Result {
        Updated,   ///< the edited file was read back into the note
        Cancelled, ///< the person cancelled; the note is unchanged
        Failed,    ///< the file could not be written, opened or read
    };

    /// Edits note (of the document's noteType) in place. folder is where the
    /// exchange file goes; empty for the system's temporary folder.
    static Result edit(QWidget *parent, Prompts *prompts, QByteArray *note, quint16 noteType,
                       const QString &folder = QString());
};
