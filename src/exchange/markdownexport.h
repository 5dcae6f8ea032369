#pragma once

#include <QString>

class QIODevice;
class TreeNode;

/// The Markdown export: what a CommonMark viewer renders as the tree.
///
/// A level-1 heading holds the root's name; every Item is a "-" list item
/// indented two spaces a level, its line "- [ ] name" or "- [x] name" for a
/// check box, "- [40%] name" for a progress bar and "- name" for an item
/// without a status, followed by its links as Markdown links (an item link
/// cannot leave the document and is left out). A note follows as paragraphs
/// indented under its item, after a blank line; its lines end in hard breaks.
/// Everything the user typed is escaped, so a name like "1. *x*" shows as it
/// stands; spaces at the start or end of a line are kept as character
/// references. An item with neither a name nor a status holds an empty
/// <span></span>, since an empty list item cannot hold a note. UTF-8, LF
/// line ends.
class MarkdownExport {
public:
    enum class Result {
        Ok,
        TooDeep,     ///< an Item is deeper than MaxDepth (the indentation would not end)
        WriteFailed, ///< the file could not be written; any older file is unchanged
    };

    /// Markdown nests by indentation, so a deep chain makes a file quadratic
    /// in its depth; past this many levels the export refuses.
    static constexpr int MaxDepth = 1000;

    struct Options {
        /// The document's NoteType, to read the notes' text.
        quint16 noteType = 0;
    };

    /// Streams the document as UTF-8; stops with TooDeep or WriteFailed.
    static Result write(QIODevice &out, const TreeNode *root, const Options &options);

    /// Writes the file by a safe save; nothing is written when the tree is
    /// too deep.
    static Result exportMarkdown(const QString &path, const TreeNode *root, const Options &options,
                                 QString *error = nullptr);

    /// The text escaped for a Markdown paragraph line (see above).
    static QString escape(QStringView text);

    /// The message of a failure; empty for Ok.
    static QString message(Result result);
};
