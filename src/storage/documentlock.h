#pragma once

#include <QString>
#include <memory>

class QLockFile;

/// One writer at a time for a document: an advisory lock held across the
/// load, the change and the save of every in-place command, and by the app
/// while it saves. A second writer waits for the first and then loads what
/// the first one wrote, so both changes survive.
///
/// The lock is the hidden file ".<name>.lock" beside the document (at the end
/// of its link chain), holding the owner's process id; a lock left by a
/// process that no longer runs is taken over. Where the folder cannot take a
/// new file, the document file itself is locked (flock) instead; a document
/// that does not exist yet in such a folder is not locked (its save would fail
/// anyway).
class DocumentLock {
public:
    explicit DocumentLock(const QString &documentPath);
    ~DocumentLock();
    DocumentLock(const DocumentLock &) = delete;
    DocumentLock &operator=(const DocumentLock &) = delete;

    /// Waits up to timeoutMs (negative: for ever) for the lock. False with a
    /// message naming the document in *error when it cannot be had.
    bool lock(int timeoutMs, QString *error = nullptr);
    void unlock();
    bool isLocked() const { return m_locked; }

    /// The lock file's path for a document.
    static QString lockPath(const QString &documentPath);

private:
    QString m_document;
    std::unique_ptr<QLockFile> m_lockFile;
    int m_fd = -1;
    bool m_locked = false;
};
