#pragma once

#include "shell/commands/commandgroup.h"

/// The document's lifecycle and the application: New (a document, from the
/// list), Save, Save As, Close Document, Exit, the password, the file's
/// properties, Convert Notes, Options, Help and About.
class FileCommands : public CommandGroup {
    Q_OBJECT
public:
    FileCommands(CommandHost *host, QObject *parent);

    /// The help page: next to the program, or in the source tree it was
    /// built from.
    static QString helpFile();

private:
    void openFile();
    void setPassword();
    void fileProperties();
    void convertNotes();
    void options();
    void showHelp();
};
