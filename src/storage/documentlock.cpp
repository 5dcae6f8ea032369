#include "storage/documentlock.h"

#include "storage/safesave.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QThread>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#endif

DocumentLock::DocumentLock(const QString &documentPath) : m_document(documentPath) {}

DocumentLock::~DocumentLock()
{
    unlock();
}

QString DocumentLock::lockPath(const QString &documentPath)
{
    QString resolved = SafeSave::resolve(documentPath);
    if (resolved.isEmpty())
        resolved = QFileInfo(documentPath).absoluteFilePath();
    const QFileInfo info(resolved);
    return info.absolutePath() + QLatin1String("/.") + info.fileName() + QLatin1String(".lock");
}

bool DocumentLock::lock(int timeoutMs, QString *error)
{
    if (m_locked)
        return true;
    const auto busy = [&] {
        if (error)
            *error =
                QStringLiteral("%1 is being changed by another program; try again when it is done").arg(m_document);
        return false;
    };
    m_lockFile = std::make_unique<QLockFile>(lockPath(m_document));
    // A save of a large document may take long: only a lock whose process
    // is gone counts as stale, never one that is merely old.
    m_lockFile->setStaleLockTime(0);
    if (m_lockFile->tryLock(timeoutMs)) {
        m_locked = true;
        return true;
    }
    const QLockFile::LockError why = m_lockFile->error();
    m_lockFile.reset();
    if (why == QLockFile::LockFailedError)
        return busy();
#ifdef Q_OS_UNIX
    // A folder that takes no new file: a record lock on the document itself.
    // (Not flock: that one guards a rewrite in place against readers, and
    // the holder of this lock reads the document too.)
    m_fd = ::open(QFile::encodeName(m_document).constData(), O_RDWR | O_CLOEXEC | O_NONBLOCK);
    if (m_fd < 0) {
        // Nothing to protect: no document yet, or one this user cannot
        // change (its save fails on its own).
        m_locked = true;
        return true;
    }
    QDeadlineTimer deadline(timeoutMs < 0 ? QDeadlineTimer::Forever : QDeadlineTimer(timeoutMs));
    struct flock range {};
    range.l_type = F_WRLCK;
    range.l_whence = SEEK_SET;
    while (::fcntl(m_fd, F_OFD_SETLK, &range) != 0) {
        if (deadline.hasExpired()) {
            ::close(m_fd);
            m_fd = -1;
            return busy();
        }
        QThread::msleep(50);
    }
    m_locked = true;
    return true;
#else
    if (error)
        *error = QStringLiteral("%1: cannot be locked for writing").arg(m_document);
    return false;
#endif
}

void DocumentLock::unlock()
{
    if (m_lockFile) {
        m_lockFile->unlock();
        m_lockFile.reset();
    }
#ifdef Q_OS_UNIX
    if (m_fd >= 0) {
        ::close(m_fd);
        m_fd = -1;
    }
#endif
    m_locked = false;
}
