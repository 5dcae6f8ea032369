#include "storage/safesave.h"

#include "storage/fileattributes.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <algorithm>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <limits.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#else
#include <QSaveFile>
#endif

namespace {

const QLatin1String TempSuffix(".part");
constexpr int MaxLinks = 40;
constexpr qint64 CopyBlock = 1 << 20;

thread_local SafeSave::Failure t_lastFailure = SafeSave::Failure::None;

bool fail(QString *error, SafeSave::Failure kind, const QString &text)
{
    t_lastFailure = kind;
    if (error)
        *error = text;
    return false;
}

#ifdef Q_OS_UNIX

QByteArray encoded(const QString &path)
{
    return QFile::encodeName(path);
}

SafeSave::Failure failureOf(int code)
{
    switch (code) {
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return SafeSave::Failure::DiskFull;
    case EACCES:
    case EPERM:
    case EROFS:
        return SafeSave::Failure::PermissionDenied;
    case ENOENT:
    case ENOTDIR:
        return SafeSave::Failure::FolderMissing;
    case EISDIR:
        return SafeSave::Failure::IsDirectory;
    case ELOOP:
        return SafeSave::Failure::LinkLoop;
    default:
        return SafeSave::Failure::Other;
    }
}

QString reasonOf(int code)
{
    switch (failureOf(code)) {
    case SafeSave::Failure::DiskFull:
        return QStringLiteral("disk full");
    case SafeSave::Failure::PermissionDenied:
        return code == EROFS ? QStringLiteral("permission denied (read-only file system)")
                             : QStringLiteral("permission denied");
    case SafeSave::Failure::FolderMissing:
        return QStringLiteral("folder missing");
    case SafeSave::Failure::IsDirectory:
        return QStringLiteral("is a directory");
    default:
        return QString::fromLocal8Bit(std::strerror(code));
    }
}

bool failErrno(QString *error, const QString &path, int code)
{
    return fail(error, failureOf(code), QStringLiteral("%1: %2").arg(path, reasonOf(code)));
}

QString randomTag()
{
    static const char letters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
    QString tag;
    for (int i = 0; i < 6; ++i)
        tag += QLatin1Char(letters[QRandomGenerator::global()->bounded(36)]);
    return tag;
}

bool syncFolder(const QString &folder)
{
    const int fd = ::open(encoded(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return false;
    const bool ok = ::fsync(fd) == 0 || errno == EINVAL; // some file systems cannot sync a folder
    ::close(fd);
    return ok;
}

bool writeAll(int fd, const char *data, qint64 size)
{
    while (size > 0) {
        const ssize_t n = ::write(fd, data, size_t(size));
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        data += n;
        size -= n;
    }
    return true;
}

// Copies from's content to to, from the start; to ends where from ends.
bool copyContent(int from, int to)
{
    if (::lseek(from, 0, SEEK_SET) < 0 || ::lseek(to, 0, SEEK_SET) < 0)
        return false;
    QByteArray block(CopyBlock, Qt::Uninitialized);
    qint64 total = 0;
    for (;;) {
        const ssize_t n = ::read(from, block.data(), size_t(block.size()));
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        if (n == 0)
            break;
        if (!writeAll(to, block.constData(), n))
            return false;
        total += n;
    }
    return ::ftruncate(to, total) == 0;
}

// The process's umask, read without changing it where the system allows.
mode_t currentUmask()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (status.open(QIODevice::ReadOnly)) {
        for (const QByteArray &line : status.readAll().split('\n')) {
            if (line.startsWith("Umask:"))
                return mode_t(line.mid(6).trimmed().toUInt(nullptr, 8));
        }
    }
    const mode_t mask = ::umask(022);
    ::umask(mask);
    return mask;
}

// The temporary file of the save in progress, for the signal handlers. Set
// only once the file exists and is ours, cleared before it is renamed.
char g_tempPath[PATH_MAX];
volatile sig_atomic_t g_tempSet = 0;
const int HandledSignals[] = {SIGINT, SIGTERM, SIGHUP};

void onSignal(int signal)
{
    if (g_tempSet)
        ::unlink(g_tempPath);
    ::signal(signal, SIG_DFL);
    ::raise(signal);
}

void setSignalTemp(const QByteArray &path)
{
    if (path.size() >= PATH_MAX)
        return;
    g_tempSet = 0;
    std::memcpy(g_tempPath, path.constData(), size_t(path.size()) + 1);
    g_tempSet = 1;
}

void clearSignalTemp()
{
    g_tempSet = 0;
}

// Holds SIGINT, SIGTERM and SIGHUP while a file is rewritten in place, so an
// interruption comes only once the file is whole again.
class SignalHold {
public:
    SignalHold()
    {
        sigset_t set;
        sigemptyset(&set);
        for (int s : HandledSignals)
            sigaddset(&set, s);
        ::pthread_sigmask(SIG_BLOCK, &set, &m_old);
    }
    ~SignalHold() { ::pthread_sigmask(SIG_SETMASK, &m_old, nullptr); }

private:
    sigset_t m_old;
};

QString kindOf(mode_t mode)
{
    if (S_ISCHR(mode) || S_ISBLK(mode))
        return QStringLiteral("is a device, not a regular file");
    if (S_ISFIFO(mode))
        return QStringLiteral("is a FIFO, not a regular file");
    if (S_ISSOCK(mode))
        return QStringLiteral("is a socket, not a regular file");
    if (S_ISDIR(mode))
        return QStringLiteral("is a directory");
    return QStringLiteral("is not a regular file");
}

// Where a save puts things, and what the file it replaces is.
struct Target {
    QString path;   ///< the file at the end of the link chain
    QString folder; ///< its folder
    QString name;   ///< its name
    bool exists = false;
    struct stat info {};
};

bool prepareTarget(const QString &path, const SafeSave::Options &options, Target *target, QString *error)
{
    QString why;
    target->path = SafeSave::resolve(path, &why);
    if (target->path.isEmpty())
        return fail(error, SafeSave::Failure::LinkLoop, why);
    const QFileInfo info(target->path);
    target->folder = info.absolutePath();
    target->name = info.fileName();
    if (::stat(encoded(target->path).constData(), &target->info) == 0) {
        target->exists = true;
        if (!S_ISREG(target->info.st_mode)) {
            return fail(error,
                        S_ISDIR(target->info.st_mode) ? SafeSave::Failure::IsDirectory : SafeSave::Failure::NotRegular,
                        QStringLiteral("%1: %2").arg(target->path, kindOf(target->info.st_mode)));
        }
    } else if (errno != ENOENT) {
        return failErrno(error, target->path, errno);
    } else {
        struct stat folder;
        if (::stat(encoded(target->folder).constData(), &folder) != 0)
            return failErrno(error, target->path, errno == ENOENT ? ENOENT : errno);
        if (!S_ISDIR(folder.st_mode))
            return failErrno(error, target->path, ENOENT);
    }
    if (target->exists && !options.source.isEmpty()) {
        struct stat source;
        if (::stat(encoded(options.source).constData(), &source) == 0 && source.st_dev == target->info.st_dev &&
            source.st_ino == target->info.st_ino) {
            return fail(error, SafeSave::Failure::SameAsSource,
                        QStringLiteral("%1: is the document being read; choose another file").arg(path));
        }
    }
    return true;
}

// The device a Writer writes to: buffered in large blocks, and keeping the
// errno of a failed write so the message can say why.
class FdDevice : public QIODevice {
public:
    explicit FdDevice(int fd) : m_fd(fd) { m_buffer.reserve(CopyBlock); }
    bool isSequential() const override { return true; }
    bool flushBuffer()
    {
        if (m_errno != 0)
            return false;
        if (!writeAll(m_fd, m_buffer.constData(), m_buffer.size())) {
            m_errno = errno;
            return false;
        }
        m_buffer.clear();
        return true;
    }
    int failure() const { return m_errno; }

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *data, qint64 size) override
    {
        if (m_errno != 0)
            return -1;
        if (m_buffer.size() + size > CopyBlock && !flushBuffer())
            return -1;
        if (size >= CopyBlock) {
            if (!writeAll(m_fd, data, size)) {
                m_errno = errno;
                return -1;
            }
            return size;
        }
        m_buffer.append(data, size);
        return size;
    }

private:
    int m_fd;
    int m_errno = 0;
    QByteArray m_buffer;
};

// Streams the writer's content into fd; the reason of a failure in *failure
// (an errno, or -1 when the writer gave up on its own).
bool runWriter(int fd, const SafeSave::Writer &writer, int *failure)
{
    FdDevice device(fd);
    device.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
    const bool ok = writer(device) && device.flushBuffer();
    if (!ok)
        *failure = device.failure() != 0 ? device.failure() : -1;
    return ok;
}

int openTemporary(const Target &target, QString *tempPath)
{
    int fd = -1;
    for (int attempt = 0; attempt < 100 && fd < 0; ++attempt) {
        *tempPath = target.folder + QLatin1String("/.") + target.name + QLatin1Char('.') + randomTag() + TempSuffix;
        fd = ::open(encoded(*tempPath).constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (fd < 0 && errno != EEXIST)
            break;
    }
    if (fd >= 0)
        ::flock(fd, LOCK_EX | LOCK_NB); // marks it as in use for other savers' clean-up
    return fd;
}

// The careful rewrite in place: the old content is copied to a synced
// backup first, then the file is rewritten and synced, then the backup goes.
// If the rewrite fails the old content is put back from the backup.
bool writeInPlace(const Target &target, const SafeSave::Writer &writer, QString *error)
{
    const SignalHold hold;
    const int fd = ::open(encoded(target.path).constData(), O_RDWR | O_CLOEXEC);
    if (fd < 0)
        return failErrno(error, target.path, errno);
    // Readers that ask (DocumentFile::load) wait while the file is not whole.
    ::flock(fd, LOCK_EX);
    QString backupPath;
    const int backup = openTemporary(target, &backupPath);
    if (backup < 0) {
        const int code = errno;
        ::close(fd);
        return failErrno(error, target.folder, code);
    }
    const QByteArray backupName = encoded(backupPath);
    if (!copyContent(fd, backup) || ::fsync(backup) != 0 || !syncFolder(target.folder)) {
        const int code = errno;
        ::close(backup);
        ::unlink(backupName.constData());
        ::close(fd);
        return failErrno(error, target.path, code);
    }
    int failure = 0;
    bool ok = ::lseek(fd, 0, SEEK_SET) == 0;
    if (ok)
        ok = runWriter(fd, writer, &failure);
    if (ok) {
        const off_t end = ::lseek(fd, 0, SEEK_CUR);
        ok = end >= 0 && ::ftruncate(fd, end) == 0 && ::fsync(fd) == 0;
        if (!ok)
            failure = errno;
    } else if (failure == 0) {
        failure = errno;
    }
    if (!ok) {
        // The old content goes back; the backup stays if even that fails.
        const bool restored = copyContent(backup, fd) && ::fsync(fd) == 0;
        ::close(backup);
        ::close(fd);
        if (restored)
            ::unlink(backupName.constData());
        if (failure <= 0)
            return fail(error, SafeSave::Failure::Abandoned,
                        QStringLiteral("%1: the save was abandoned").arg(target.path));
        QString text = QStringLiteral("%1: %2").arg(target.path, reasonOf(failure));
        if (!restored)
            text += QStringLiteral("; the old content is kept in %1").arg(backupPath);
        return fail(error, failureOf(failure), text);
    }
    ::close(backup);
    ::close(fd);
    ::unlink(backupName.constData());
    syncFolder(target.folder);
    return true;
}

#endif

} // namespace

QString SafeSave::reason(int errorCode)
{
#ifdef Q_OS_UNIX
    return reasonOf(errorCode);
#else
    return QString::fromLocal8Bit(std::strerror(errorCode));
#endif
}

SafeSave::Failure SafeSave::lastFailure()
{
    return t_lastFailure;
}

bool SafeSave::isTemporaryName(const QString &fileName)
{
    return fileName.startsWith(QLatin1Char('.')) && fileName.endsWith(TempSuffix);
}

bool SafeSave::write(const QString &path, const QByteArray &bytes, QString *error, const Options &options)
{
    return write(
        path, [&bytes](QIODevice &out) { return out.write(bytes) == bytes.size(); }, error, options);
}

bool SafeSave::sameFile(const QString &a, const QString &b)
{
#ifdef Q_OS_UNIX
    struct stat first, second;
    return ::stat(encoded(a).constData(), &first) == 0 && ::stat(encoded(b).constData(), &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
#else
    return QFileInfo(a).canonicalFilePath() == QFileInfo(b).canonicalFilePath() && QFileInfo::exists(a);
#endif
}

#ifdef Q_OS_UNIX

QString SafeSave::resolve(const QString &path, QString *error)
{
    QString current = QFileInfo(path).absoluteFilePath();
    for (int hops = 0;; ++hops) {
        const QFileInfo info(current);
        if (!info.isSymLink())
            return QDir::cleanPath(current);
        if (hops == MaxLinks) {
            if (error)
                *error = QStringLiteral("%1: too many links in a row, or a loop of links").arg(path);
            return QString();
        }
        // The link's own text, relative to the link's folder.
        char buffer[PATH_MAX];
        const ssize_t n = ::readlink(encoded(current).constData(), buffer, sizeof buffer - 1);
        if (n < 0) {
            if (error)
                *error = QStringLiteral("%1: %2").arg(current, reasonOf(errno));
            return QString();
        }
        const QString next = QFile::decodeName(QByteArray(buffer, n));
        current = QDir::isAbsolutePath(next) ? next : info.absolutePath() + QLatin1Char('/') + next;
    }
}

void SafeSave::removeStaleTemporaries(const QString &target, qint64 maxAgeSeconds)
{
    const QFileInfo info(target);
    const QString prefix = QLatin1Char('.') + info.fileName() + QLatin1Char('.');
    QDir folder(info.absolutePath());
    const QStringList names =
        folder.entryList({prefix + QLatin1String("*") + TempSuffix}, QDir::Files | QDir::Hidden | QDir::System);
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    for (const QString &name : names) {
        // Only ".<name>.XXXXXX.part" (earlier versions wrote eight letters):
        // a longer name belongs to another document.
        const qsizetype tagLength = name.size() - prefix.size() - TempSuffix.size();
        if ((tagLength != 6 && tagLength != 8) || !name.startsWith(prefix))
            continue;
        const QStringView tag = QStringView(name).sliced(prefix.size(), tagLength);
        if (!std::all_of(tag.begin(), tag.end(), [](QChar c) {
                return (c >= QLatin1Char('a') && c <= QLatin1Char('z')) ||
                       (c >= QLatin1Char('0') && c <= QLatin1Char('9'));
            }))
            continue;
        const QByteArray path = encoded(folder.filePath(name));
        struct stat st;
        if (::lstat(path.constData(), &st) != 0 || !S_ISREG(st.st_mode))
            continue;
        const qint64 age = now - qint64(st.st_mtime);
        bool stale = age > maxAgeSeconds;
        if (!stale && age > 60) {
            // A save in progress holds a lock on its file; a file no one holds
            // was left by a save that never finished.
            const int fd = ::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
            if (fd >= 0) {
                stale = ::flock(fd, LOCK_EX | LOCK_NB) == 0;
                ::close(fd);
            }
        }
        if (stale)
            ::unlink(path.constData());
    }
}

void SafeSave::removeTemporaryOnSignals()
{
    struct sigaction action {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    for (int s : HandledSignals)
        ::sigaction(s, &action, nullptr);
}

bool SafeSave::write(const QString &path, const Writer &writer, QString *error, const Options &options)
{
    t_lastFailure = Failure::None;
    Target target;
    if (!prepareTarget(path, options, &target, error))
        return false;
    removeStaleTemporaries(target.path);

    // The temporary file lives beside the target so that the final rename
    // stays within one file system and is atomic. It is born readable by its
    // owner only and gets the target's owner, group, mode and attributes
    // before any content.
    QString tempPath;
    const int fd = openTemporary(target, &tempPath);
    if (fd < 0)
        return failErrno(error, target.path, errno);
    const QByteArray tempName = encoded(tempPath);
    setSignalTemp(tempName);
    const auto discard = [&] {
        clearSignalTemp();
        ::close(fd);
        ::unlink(tempName.constData());
    };

    bool keepsIdentity = true;
    if (target.exists) {
        keepsIdentity = target.info.st_nlink == 1;
        struct stat own;
        if (keepsIdentity && ::fstat(fd, &own) == 0 &&
            (own.st_uid != target.info.st_uid || own.st_gid != target.info.st_gid))
            keepsIdentity = ::fchown(fd, target.info.st_uid, target.info.st_gid) == 0;
        if (keepsIdentity)
            keepsIdentity = ::fchmod(fd, target.info.st_mode & 07777) == 0;
        if (keepsIdentity) {
            const int source = ::open(encoded(target.path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
            keepsIdentity = source >= 0 && FileAttributes::copy(source, fd);
            if (source >= 0)
                ::close(source);
        }
    } else {
        ::fchmod(fd, 0666 & ~currentUmask());
    }
    if (!keepsIdentity) {
        discard();
        return writeInPlace(target, writer, error);
    }

    int failure = 0;
    bool ok = runWriter(fd, writer, &failure);
    if (ok && ::fsync(fd) != 0) {
        ok = false;
        failure = errno;
    }
    if (!ok) {
        discard();
        if (failure <= 0)
            return fail(error, Failure::Abandoned, QStringLiteral("%1: the save was abandoned").arg(target.path));
        return failErrno(error, target.path, failure);
    }
    if (::rename(tempName.constData(), encoded(target.path).constData()) != 0) {
        const int code = errno;
        discard();
        return failErrno(error, target.path, code);
    }
    clearSignalTemp();
    ::close(fd);
    // The rename itself must reach the disk before the save counts as done.
    syncFolder(target.folder);
    return true;
}

#else

QString SafeSave::resolve(const QString &path, QString *)
{
    return QFileInfo(path).absoluteFilePath();
}

void SafeSave::removeStaleTemporaries(const QString &, qint64) {}

void SafeSave::removeTemporaryOnSignals() {}

bool SafeSave::write(const QString &path, const Writer &writer, QString *error, const Options &options)
{
    t_lastFailure = Failure::None;
    if (!options.source.isEmpty() && sameFile(path, options.source))
        return fail(error, Failure::SameAsSource, QStringLiteral("%1: is the document being read").arg(path));
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return fail(error, Failure::Other, file.errorString());
    if (!writer(file)) {
        file.cancelWriting();
        return fail(error, Failure::Other, file.errorString());
    }
    if (!file.commit())
        return fail(error, Failure::Other, file.errorString());
    return true;
}

#endif
