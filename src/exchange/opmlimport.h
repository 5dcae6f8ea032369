#pragma once

#include <QString>

class Document;
class QIODevice;
class TreeNode;

/// Import of an OPML outline, as outliners and feed readers write it. The
/// head's title names the root; every <outline> becomes an Item in its place,
/// whatever else surrounds it. An outline's name is its text attribute, or
/// its title when the text is missing or empty; the attributes OpmlExport writes are read
/// back, as are "_complete" and "complete" set to "true" (a checked box) and
/// the addresses in url, xmlUrl and htmlUrl (kept as links). Other attributes
/// and elements are ignored. HTML's named character entities (&nbsp;,
/// &eacute;, &mdash; ...) are read as their characters even though XML does
/// not declare them.
class OpmlImport {
public:
    enum class Result {
        Ok,
        FormatError, ///< not well-formed XML, or not OPML
        Unreadable,  ///< the file cannot be read
    };

    struct Options {
        /// The NoteType the notes are made in.
        quint16 noteType = 0;
        /// The icon of every imported Item.
        quint16 icon = 812;
    };

    /// Reads the outline under root; the categories of the Items are
    /// collected by categoryOwner when given. On failure root may hold a part
    /// of the outline, and *error (when given) says where the file went wrong.
    static Result read(QIODevice &in, TreeNode *root, const Options &options, Document *categoryOwner,
                       QString *error = nullptr);

    /// A new document beside the file (TextImport::documentPath()), of the
    /// given NoteType. The caller saves it.
    static Result importDocument(const QString &path, const Options &options, Document *document,
                                 QString *error = nullptr);

    /// The outline's Items become the last children of target, a node of
    /// document; the title is not used. All or nothing: on failure the
    /// document is unchanged. The caller saves.
    static Result importInto(const QString &path, Document *document, TreeNode *target, const Options &options,
                             QString *error = nullptr);

    /// The message of a failure, the reader's detail (when given) on a
    /// second line; empty for Ok.
    static QString message(Result result, const QString &detail = QString());
};
