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
        Unreadable,  ///< the file cannot be read or converted, is no regular file, is too large, or memory ran out
    };

    /// How a file without a byte-order mark is read.
    enum class Encoding {
        Ansi, ///< the ANSI code page (Options::codePage)
        Utf8,
    };

    /// The largest file imported; a larger one is Unreadable.
    static constexpr qint64 MaxFileSize = 256LL * 1024 * 1024;

    struct Options {
        /// The icon of every imported Item (low 16 bits of setting TextImport).
        quint16 icon = 812;
        /// The ANSI code page of files without FF FE (setting AnsiCodePage).
        QString codePage = CodePage::defaultName();
        /// How to read a file that has no byte-order mark.
        Encoding encoding = Encoding::Ansi;
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
    /// Only a regular file of at most MaxFileSize bytes is read. After a
    /// FormatError *errorLine (when given) is the line where the outline
    /// broke, counted from 1 as an editor counts lines.
    static Result importFile(const QString &textPath, TreeNode *root, const Options &options,
                             int *errorLine = nullptr);

    /// The same over the file's bytes. A byte-order mark says the encoding:
    /// EF BB BF UTF-8, FF FE UTF-16LE, FE FF UTF-16BE (a UTF-16 file is
    /// refused when the two bytes after the mark are both zero). Without one
    /// the text is converted whole from the code page, or read as UTF-8 when
    /// Options::encoding says so. A zero character is a format error on its
    /// line. Lines are the pieces between runs of CR and LF, so blank lines
    /// are skipped; names are cut to 96 characters.
    static Result import(const QByteArray &bytes, TreeNode *root, const Options &options, int *errorLine = nullptr);

    /// The import command's work: fills a freshly made document with the
    /// outline, gives it the NoteType and the path beside the text file
    /// (documentPath()). The caller saves it; nothing is written here, so a
    /// failed import leaves no file behind.
    static Result importDocument(const QString &textPath, quint16 noteType, const Options &options, Document *document,
                                 int *errorLine = nullptr);
    /// The message of a failure; empty for Ok. A format error with its line
    /// adds "(line N)".
    static QString message(Result result, int line = 0);

private:
    static Result importText(const QByteArray &bytes, TreeNode *root, const Options &options, int *errorLine);
};
