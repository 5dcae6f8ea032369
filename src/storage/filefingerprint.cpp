#include "storage/filefingerprint.h"

#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

FileFingerprint FileFingerprint::of(const QString &path)
{
    FileFingerprint print;
#ifdef Q_OS_UNIX
    struct stat st;
    if (::stat(QFile::encodeName(path).constData(), &st) != 0)
        return print;
    print.exists = true;
    print.device = quint64(st.st_dev);
    print.inode = quint64(st.st_ino);
    print.size = qint64(st.st_size);
    print.modifiedNs = qint64(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec;
#else
    const QFileInfo info(path);
    if (!info.exists())
        return print;
    print.exists = true;
    print.size = info.size();
    print.modifiedNs = info.lastModified(QTimeZone::UTC).toMSecsSinceEpoch() * 1000000;
#endif
    return print;
}
