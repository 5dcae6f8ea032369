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
    // A folder that takes no new file: lock the document itself.
    m_fd = ::open(QFile::encodeName(m_document).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (m_fd < 0) {
        if (errno == ENOENT) {
            m_locked = true; // nothing to protect yet
            return true;
        }
        if (error)
            *error = QStringLiteral("%1: cannot be locked for writing").arg(m_document);
        return false;
    }
    QDeadlineTimer deadline(timeoutMs < 0 ? QDeadlineTimer::Forever : QDeadlineTimer(timeoutMs));
    while (::flock(m_fd, LOCK_EX | LOCK_NB) != 0) {
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
