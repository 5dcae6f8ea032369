#pragma once

#include <QByteArray>
#include <QString>
#include <functional>

class Document;
class TreeNode;

/// Reads and writes ".qbx" document files.
///
/// The loader accepts versions 410, 500, 501, 550 and 551; the writer always
/// writes 551. Every count read from a file is checked against the bytes left
/// before anything is allocated, so a damaged file is reported as damaged and
/// never crashes or exhausts memory, however it is cut or altered. Trees of
/// any depth load and save without recursion.
///
/// Saving goes through SafeSave: the file on disk is replaced only by a
/// complete new file.
class DocumentFile {
public:
    enum LoadResult {
        Loaded = 0,
        Damaged = 1,            ///< unreadable or damaged; also a failed open other than "not found"
        UnsupportedVersion = 2, ///< a version this program does not read (for import: anything but 551)
        Cancelled = 3,          ///< import only: the password prompt was cancelled; nothing changed
        NotFound = 4,
    };

    /// Loads path into document, which should be freshly constructed. On
    /// success document->path is path. After a failure the document holds
    /// whatever was read so far and should be discarded.
    static LoadResult load(const QString &path, Document *document);
    /// The same loader over bytes already in memory (tests, fuzzing).
    static LoadResult loadFromBytes(const QByteArray &bytes, Document *document);

    /// Writes the whole document (version 551) to path, or to document.path
    /// when path is empty, by a safe save. A document without a root saves
    /// nothing and succeeds. A file that is the same as source (a document
    /// read for the content, e.g. by a partial export) is never written.
    static bool save(const Document &document, const QString &path = QString(), QString *error = nullptr,
                     const QString &source = QString());
    /// The bytes that save() writes.
    static QByteArray toBytes(const Document &document);

    /// The branch file: the document's header with CurrentNumber 0, node's own
    /// TreeNode fields in place of the root, then its descendants from Depth 1.
    /// Never written over the document's own file (document.path).
    static bool saveBranch(const Document &document, const TreeNode *node, const QString &path,
                           QString *error = nullptr);
    static QByteArray branchToBytes(const Document &document, const TreeNode *node);

    /// Asked for the password of a protected file being imported: true when
    /// the user gave the right one (see Password::matches), false on cancel.
    using PasswordPrompt = std::function<bool(const QByteArray &hash)>;
    /// Converts every note below importedRoot from one NoteType to another.
    using NoteConverter = std::function<void(TreeNode *importedRoot, quint16 from, quint16 to)>;

    /// Imports a version 551 document file: its root's children are appended
    /// in order as the last children of target (a node of document). The
    /// file's header values are ignored; its categories join the document's.
    /// Returns Loaded, Damaged (nothing added), UnsupportedVersion or
    /// Cancelled (password prompt cancelled, nothing added). When the file's
    /// NoteType differs from the document's, the imported notes are converted
    /// first: by convertNotes when given, else by NoteConverter (a note type
    /// it does not know makes the file Damaged).
    static LoadResult importInto(Document *document, TreeNode *target, const QString &path,
                                 const PasswordPrompt &askPassword, const NoteConverter &convertNotes = {});

    /// The folder that legacy (version 410) file links are made relative to.
    /// Defaults to the user's documents folder.
    static QString legacyDocumentsFolder();
    static void setLegacyDocumentsFolder(const QString &folder);

    /// The message a caller shows for a load result (path for NotFound), or
    /// empty for Loaded and Cancelled.
    static QString loadMessage(LoadResult result, const QString &path);
    /// The message for an import result.
    static QString importMessage(LoadResult result);

private:
    static LoadResult importFile(Document *document, TreeNode *target, const QString &path,
                                 const PasswordPrompt &askPassword, const NoteConverter &convertNotes);
};
