#pragma once

#include "platform/codepage.h"

#include <QByteArray>
#include <QString>

class Document;
class TreeNode;

/// Import of an indented text outline: the first line names the root, every
/// further line is an Item whose depth is its count of leading white-space
/// characters (a TAB and a space count one level each).
class TextImport {
public:
    enum class Result {
        Ok,
        FormatError, ///< a line without indentation, or one more than a level deeper than the line before
        Unreadable,  ///< the file cannot be read or converted
    };

    struct Options {
        /// The icon of every imported Item (low 16 bits of setting TextImport).
        quint16 icon = 812;
        /// The ANSI code page of files without FF FE (setting AnsiCodePage).
        QString codePage = CodePage::defaultName();
    };

    /// The setting TextImport packs the default icon (low 16 bits, 812) and
    /// the NoteType of the new document (high 16 bits, 1).
    static constexpr quint32 DefaultSetting = 0x0001032C;
    static quint16 iconOf(quint32 setting) { return quint16(setting & 0xffff); }
    static quint16 noteTypeOf(quint32 setting) { return quint16(setting >> 16); }

    /// The new document beside the text file: the file name's extension
    /// replaced by ".qbx" (appended when the name has none). A dot in a
    /// folder name is not an extension.
    static QString documentPath(const QString &textPath);

    /// Reads the file and fills root, which should be a fresh, empty root.
    /// On failure root may hold a part of the outline; the caller discards it.
    static Result importFile(const QString &textPath, TreeNode *root, const Options &options);

    /// The same over the file's bytes. Text that begins FF FE is UTF-16LE
    /// (refused when the two bytes after FF FE are both zero); any other is
    /// converted whole from the code page. The text ends at its first zero
    /// unit. Lines are the pieces between runs of CR and LF, so blank lines
    /// are skipped; names are cut to 96 characters.
    static Result import(const QByteArray &bytes, TreeNode *root, const Options &options);

    /// The import command's work: fills a freshly made document with the
    /// outline, gives it the NoteType and the path beside the text file
    /// (documentPath()). The caller saves it; nothing is written here, so a
    /// failed import leaves no file behind.
    static Result importDocument(const QString &textPath, quint16 noteType, const Options &options, Document *document);
    /// The message of a failure; empty for Ok.
    static QString message(Result result);
};
