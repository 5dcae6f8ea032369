#pragma once

#include <QString>

class QIODevice;
class TreeNode;

/// The OPML 2.0 export, the outline format most outliners and feed readers
/// exchange. The root's name is the head's title; every Item is one
/// <outline> nested as in the tree, with these attributes when they carry
/// something:
/// - text: the name;
/// - _note: the note as plain text, lines ending in LF;
/// - _status: "checked" for a completed check box, "none" for an item
///   without a status (an unchecked check box, the default, writes nothing);
/// - _progress: the percent complete of a progress bar;
/// - _priority: a priority other than the default 10;
/// - _category, _due (an ISO date, YYYY-MM-DD);
/// - type="link" and url: the item's first link that is not an item link
///   (an outline has room for one).
/// Characters XML cannot hold (control characters other than tab and line
/// breaks, unpaired surrogates) are left out.
class OpmlExport {
public:
    struct Options {
        /// The document's NoteType, to read the notes' text.
        quint16 noteType = 0;
    };

    /// Streams the whole document as UTF-8; false when the device fails.
    static bool write(QIODevice &out, const TreeNode *root, const Options &options);

    /// Writes the file by a safe save: a failed export leaves any older file
    /// as it was.
    static bool exportOpml(const QString &path, const TreeNode *root, const Options &options,
                           QString *error = nullptr);
};
