#pragma once

#include <QByteArray>
#include <QString>
#include <functional>

class QIODevice;

/// Replaces a file without ever leaving it half written, and keeps what the
/// file is: its owner, group, mode, ACL and user attributes, its links and
/// its other names.
///
/// - The path is followed through its whole chain of symbolic links; the
///   file at the end is the one replaced and every link stays a link. A loop
///   or a chain longer than 40 links is an error.
/// - Only a regular file (or a name not yet taken) is written; a device, a
///   FIFO, a socket or a folder is refused with the reason.
/// - Options::source names the file being read for the content; a target
///   that is that same file (same device and inode, through any link) is
///   refused, so an export never lands on its own document.
/// - The new content goes to a temporary file in the target's folder,
///   created with O_CREAT|O_EXCL and mode 0600, then given the target's
///   owner, group, mode, ACL and user.* attributes before a byte is written;
///   it is synced and renamed over the target in one atomic step.
/// - When a rename would change what the file is (the target has another
///   hard link, an owner or group this user cannot give, or attributes that
///   cannot be copied) the file is rewritten in place instead: a synced
///   backup copy first, then the new content, then the backup removed.
///
/// The temporary file is hidden and named ".<target name>.XXXXXX.part", so a
/// listing of "*.qbx" never shows it. Each save removes the target's own
/// stale temporary files (older than a day, or held by no process).
class SafeSave {
public:
    /// Streams the new content; returns false to abandon the save.
    using Writer = std::function<bool(QIODevice &out)>;

    /// Why a write failed. Texts in *error name the file and say the reason.
    enum class Failure {
        None,
        DiskFull,         ///< "disk full": no space or no inodes left, or over quota
        PermissionDenied, ///< "permission denied", including a read-only file system
        FolderMissing,    ///< "folder missing": the target's folder does not exist
        IsDirectory,      ///< "is a directory"
        NotRegular,       ///< a device, FIFO or socket
        LinkLoop,         ///< a loop of links, or a chain too long
        SameAsSource,     ///< the target is the file being read
        Abandoned,        ///< the writer returned false without a device error
        Other,
    };

    struct Options {
        /// The file the content is read from; never written over. Empty: none.
        QString source;
    };

    static bool write(const QString &path, const QByteArray &bytes, QString *error = nullptr,
                      const Options &options = {});
    static bool write(const QString &path, const Writer &writer, QString *error = nullptr, const Options &options = {});

    /// The kind of the last failed write() on this thread (None after a success).
    static Failure lastFailure();

    /// The words for a system error code: "disk full", "permission denied",
    /// "folder missing", "is a directory", else the system's own text.
    static QString reason(int errorCode);

    /// Whether a file name is one of our temporary files.
    static bool isTemporaryName(const QString &fileName);

    /// The absolute path at the end of path's chain of symbolic links (path
    /// itself when it is no link, or the name a dangling link points at).
    /// Empty with *error set on a loop or a chain longer than 40 links.
    static QString resolve(const QString &path, QString *error = nullptr);

    /// Whether two paths name the same existing file (device and inode).
    static bool sameFile(const QString &a, const QString &b);

    /// Removes the stale temporary files of target from its folder: only
    /// ".<name>.XXXXXX.part" of that very name, older than maxAgeSeconds or
    /// not open in any process.
    static void removeStaleTemporaries(const QString &target, qint64 maxAgeSeconds = 24 * 3600);

    /// Installs handlers for SIGINT, SIGTERM and SIGHUP that remove the
    /// temporary file of a save in progress and then end the process by the
    /// same signal. A careful in-place rewrite holds these signals until it
    /// is done. For command-line programs; the app has its own handling.
    static void removeTemporaryOnSignals();
};
