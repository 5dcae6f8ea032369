#pragma once

#include "platform/codepage.h"

#include <QString>
#include <QStringList>
#include <functional>

class Document;
class QIODevice;
class GroupView;
class TreeNode;

/// The three text exports: the view as an indented outline, and every
/// item's path with its note or with its links. Every line ends with CR LF.
/// The file is either UTF-16LE after the bytes FF FE ("Unicode Files"), or
/// the ANSI code page, where every piece of text (a line with its CR LF, a
/// note's text) becomes exactly as many bytes as it has UTF-16 units, cut or
/// padded with zeros: the export file format keeps one byte per unit.
class TextExport {
public:
    struct Options {
        /// FF FE and UTF-16LE; otherwise the ANSI code page.
        bool unicode = false;
        /// The ANSI code page (setting AnsiCodePage).
        QString codePage = CodePage::defaultName();
        /// The indent unit of the view export (setting ExpViewSep, 0 to 6).
        quint16 indent = 2;
        /// The level separator of the notes and links exports (setting
        /// ExpOtherSep, 0 to 5).
        quint16 separator = 0;
        /// The document's NoteType; rich notes are exported as plain text.
        quint16 noteType = 0;
        /// The document's own file: an export never writes over it.
        QString source;
    
private:
    static bool write(const QString &path, const Options &options, QString *error,
                      const std::function<bool(QIODevice &)> &content);
};

    /// "(None)", "Tab", "1 Space" ... "5 Spaces", and the units they stand for.
    static QStringList indentLabels();
    static QString indentUnit(int index);
    /// ":", "\", "/", ",", "|", "-".
    static QStringList separators();
    static QString separator(int index);

    /// One row of a view: its depth below the view's root (1 for a child of
    /// the root) and its name. next() fills one and returns false when the
    /// view has no more rows; it is told nothing about depths beyond those it
    /// may skip itself.
    using RowSource = std::function<bool(int *depth, QString *name)>;

    // Every export is written by a safe save: a failed one leaves no file
    // and no partial file, and *error (when given) names the file and why.

    /// The view export: the name of the view's root, then each row as depth
    /// indent units and its name.
    static bool exportOutline(const QString &path, const QString &rootName, const RowSource &rows,
                              const Options &options, QString *error = nullptr);
    /// The view export of the default view: every level of the tree under
    /// root, collapsed or not, hidden by a filter or not.
    static bool exportView(const QString &path, const TreeNode *root, const Options &options, QString *error = nullptr);
    /// The view export of a grouped view: the root's name, the headings at
    /// depth 1 and every item of each heading at depth 2, shown by the
    /// filters or not; nothing deeper.
    static bool exportView(const QString &path, const GroupView &view, const Options &options,
                           QString *error = nullptr);
    /// The view export of the document in its own ViewMode.
    static bool exportView(const QString &path, const Document &document, const Options &options, QString *error = nullptr);

    /// Every Item below root, depth first: its path line (the names from the
    /// root's down, joined by the separator), its note's text when it has a
    /// note (with no line break of its own), then one empty line.
    static bool exportNotes(const QString &path, const TreeNode *root, const Options &options, QString *error = nullptr);
    /// Every Item below root, depth first: its path line, "(None)" when it
    /// has no links, otherwise a line per link (an item link gives its
    /// target's name, or no line when the target is gone), then one empty line.
    static bool exportLinks(const QString &path, const TreeNode *root, const Options &options, QString *error = nullptr);

private:
    static bool write(const QString &path, const Options &options, QString *error,
                      const std::function<bool(QIODevice &)> &content);
};
