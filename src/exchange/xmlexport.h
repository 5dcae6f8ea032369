#pragma once

#include "platform/codepage.h"

#include <QString>
#include <QStringList>

class TreeNode;

/// The XML export: the whole note tree in one XML file for other programs.
/// The text is written by hand, not by an XML library, because its exact
/// bytes are fixed: a prolog, the root's record as attributes, one ITEM per
/// Item with its elements in a fixed order, no indentation, CR LF after every
/// line, a deliberate double escape of "<" and ">", and notes as CDATA that
/// is never escaped (a note holding "]]>" therefore makes the file
/// ill-formed; the section is not split). The system never reads these files
/// back.
class XmlExport {
public:
    struct Options {
        /// The encoding choice (setting XmlEncode): 0 "(Default)", no
        /// declaration; 1 "UTF-8", 2 "UTF-16", 3 "ISO-8859-1", 4 "Big-5",
        /// 5 "Shift-JIS", 6 "GB2312". Only 2 changes the bytes: FF FE and
        /// UTF-16LE. Every other choice writes the ANSI code page, one byte
        /// per UTF-16 unit; its label is only a label. An index past the
        /// list declares nothing.
        quint16 encoding = 0;
        /// The ANSI code page (setting AnsiCodePage).
        QString codePage = CodePage::defaultName();
        /// The document's NoteType; notes of the rich types are written as
        /// their plain text.
        quint16 noteType = 0;
        /// The document's own file: an export never writes over it.
        QString source;
    };

    /// The label of an encoding choice, as the options page shows it and the
    /// prolog declares it; empty for an index out of range.
    static QString encodingLabel(int index);
    static QStringList encodingLabels();
    static constexpr int Utf16Encoding = 2;

    /// Escapes with five whole-string replacements in this order: "<" by
    /// "&lt;", ">" by "&gt;", "&" by "&amp;", "\"" by "&quot;", "'" by
    /// "&apos;". The third pass escapes again the "&" that the first two
    /// made, so "<" comes out as "&amp;lt;": readers of our files expect it.
    static QString escape(QStringView text);

    /// The whole text for the tree under root (the root's record, then every
    /// Item below it, depth first).
    static QString text(const TreeNode *root, const Options &options);

    /// Streams the text, converted as it goes, into a temporary file beside
    /// path that replaces path only once it is complete (SafeSave), so memory
    /// stays bounded however large the tree and no file appears at path
    /// unless the whole export succeeded. False when the file cannot be
    /// written (*error names the file and the reason) or the code page is
    /// unknown; path is then untouched.
    static bool exportXml(const QString &path, const TreeNode *root, const Options &options,
                          QString *error = nullptr);
};
