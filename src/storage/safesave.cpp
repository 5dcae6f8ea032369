#include "storage/safesave.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#else
#include <QSaveFile>
#endif

namespace {

const QLatin1String TempSuffix(".part");

void setError(QString *error, const QString &text)
{
    if (error)
        *error = text;
}

#ifdef Q_OS_UNIX
// A symbolic link is followed, so the file it names is replaced and the link
// itself stays a link.
QString resolvedTarget(const QString &path)
{
    QFileInfo info(path);
    if (info.isSymLink()) {
        const QString target = info.symLinkTarget();
        if (!target.isEmpty())
            return target;
    }
    return info.absoluteFilePath();
}

QString randomTag()
{
    static const char letters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
    QString tag;
    for (int i = 0; i < 8; ++i)
        tag += QLatin1Char(letters[QRandomGenerator::global()->bounded(36)]);
    return tag;
}

bool syncFolder(const QString &folder)
{
    const int fd = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return false;
    const bool ok = ::fsync(fd) == 0 || errno == EINVAL; // some file systems cannot sync a folder
    ::close(fd);
    return ok;
}
#endif

} // namespace

bool SafeSave::isTemporaryName(const QString &fileName)
{
    return fileName.startsWith(QLatin1Char('.')) && fileName.endsWith(TempSuffix);
}

bool SafeSave::write(const QString &path, const QByteArray &bytes, QString *error)
{
    return write(
        path, [&bytes](QIODevice &out) { return out.write(bytes) == bytes.size(); }, error);
}

#ifdef Q_OS_UNIX

bool SafeSave::write(const QString &path, const Writer &writer, QString *error)
{
    const QString target = resolvedTarget(path);
    const QFileInfo targetInfo(target);
    const QString folder = targetInfo.absolutePath();
    if (targetInfo.isDir()) {
        setError(error, QStringLiteral("%1 is a folder").arg(target));
        return false;
    }

    // The temporary file lives beside the target so that the final rename
    // stays within one file system and is atomic.
    QString tempPath;
    int fd = -1;
    for (int attempt = 0; attempt < 100 && fd < 0; ++attempt) {
        tempPath = folder + QLatin1String("/.") + targetInfo.fileName() + QLatin1Char('.') + randomTag() + TempSuffix;
        fd = ::open(QFile::encodeName(tempPath).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd < 0 && errno != EEXIST)
            break;
    }
    if (fd < 0) {
        setError(error, QStringLiteral("cannot create a temporary file in %1: %2")
                            .arg(folder, QString::fromLocal8Bit(strerror(errno))));
        return false;
    }
    // The new file keeps the permissions of the one it replaces.
    struct stat old;
    if (::stat(QFile::encodeName(target).constData(), &old) == 0)
        ::fchmod(fd, old.st_mode & 07777);

    QFile file;
    bool ok = file.open(fd, QIODevice::WriteOnly, QFileDevice::DontCloseHandle);
    if (ok)
        ok = writer(file);
    if (ok)
        ok = file.flush() && file.error() == QFileDevice::NoError;
    QString failure =
        ok ? QString() : (file.errorString().isEmpty() ? QStringLiteral("write failed") : file.errorString());
    file.close();
    if (ok && ::fsync(fd) != 0) {
        ok = false;
        failure = QString::fromLocal8Bit(strerror(errno));
    }
    if (::close(fd) != 0 && ok) {
        ok = false;
        failure = QString::fromLocal8Bit(strerror(errno));
    }
    if (ok && ::rename(QFile::encodeName(tempPath).constData(), QFile::encodeName(target).constData()) != 0) {
        ok = false;
        failure = QString::fromLocal8Bit(strerror(errno));
    }
    if (!ok) {
        ::unlink(QFile::encodeName(tempPath).constData());
        setError(error, failure);
        return false;
    }
    // The rename itself must reach the disk before the save counts as done.
    syncFolder(folder);
    return true;
}

#else

bool SafeSave::write(const QString &path, const Writer &writer, QString *error)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        setError(error, file.errorString());
        return false;
    }
    if (!writer(file)) {
        file.cancelWriting();
        setError(error, file.errorString());
        return false;
    }
    if (!file.commit()) {
        setError(error, file.errorString());
        return false;
    }
    return true;
}

#endif
