#pragma once

#include <QByteArray>
#include <QString>

class Document;
class TreeNode;

/// Import of a Markdown outline, read as CommonMark.
///
/// Every list item (any of "-", "*", "+", "1.", nested by spaces or tabs)
/// becomes an Item under the item that holds its list. Its first paragraph
/// is its name; one that begins "[ ]" or "[x]" makes a check box, "[40%]" a
/// progress bar, neither no status. Everything else inside the item
/// (further paragraphs, code, quotes) becomes its note, paragraphs apart by
/// a blank line. A link's address joins the item's links; its text stays in
/// the name or note unless it only repeats the address. Emphasis, code
/// spans and inline HTML tags are markup: their text stays, they do not.
///
/// Headings are levels: each is an Item under the nearest heading of a
/// higher level, holding the lists and paragraphs that follow it. A heading
/// that opens the file and ranks above every other heading names the root
/// instead. A paragraph outside any list item or heading becomes an Item
/// named by its text, so nothing is lost.
class MarkdownImport {
public:
    enum class Result {
        Ok,
        Unreadable, ///< the file cannot be read
    };

    struct Options {
        /// The NoteType the notes are made in.
        quint16 noteType = 0;
        /// The icon of every imported Item.
        quint16 icon = 812;
    };

    /// Reads UTF-8 Markdown under root (a UTF-8 byte-order mark is allowed).
    /// The root is named only by an opening heading. Any bytes make some
    /// outline; only a file that cannot be read fails.
    static Result read(const QByteArray &markdown, TreeNode *root, const Options &options);

    /// A new document beside the file (TextImport::documentPath()), of the
    /// given NoteType, its root named after the file unless a heading names
    /// it. The caller saves it.
    static Result importDocument(const QString &path, const Options &options, Document *document);

    /// The outline's Items become the last children of target, a node of
    /// document; the root's heading is not used. The caller saves.
    static Result importInto(const QString &path, Document *document, TreeNode *target, const Options &options);

    /// The message of a failure; empty for Ok.
    static QString message(Result result);
};
