#include "integration/foldercalendar.h"

#include "platform/messages.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

FolderCalendar::FolderCalendar(const QString &folder) : m_folder(folder) {}

bool FolderCalendar::connect(QString *error)
{
    if (!QDir().mkpath(m_folder) || !QFileInfo(m_folder).isDir() || !QFileInfo(m_folder).isWritable()) {
        *error = QString::fromUtf8(Messages::CalendarFolderUnusable).arg(m_folder);
        return false;
    }
    return true;
}

QString FolderCalendar::fileFor(const QString &uid) const
{
    // A UID may hold any character; the file name keeps only the safe ones.
    QString name;
    for (const QChar c : uid)
        name.append(c.isLetterOrNumber() || c == QLatin1Char('-') || c == QLatin1Char('@') || c == QLatin1Char('.')
                        ? c
                        : QLatin1Char('_'));
    return QDir(m_folder).filePath(name + QLatin1String(".ics"));
}

bool FolderCalendar::addObject(const QString &uid, const QByteArray &ics, QString *error)
{
    const QString path = fileFor(uid);
    if (QFileInfo::exists(path)) {
        *error = QString::fromUtf8(Messages::CalendarObjectExists).arg(m_folder);
        return false;
    }
    // Written whole or not at all: a reader never sees half an object.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(ics) != ics.size() || !file.commit()) {
        *error = QString::fromUtf8(Messages::CalendarFileNotWritten).arg(path, file.errorString());
        return false;
    }
    return true;
}

bool FolderCalendar::fetchObjects(QList<QByteArray> *objects, QString *error)
{
    const QDir dir(m_folder);
    if (!dir.exists()) {
        *error = QString::fromUtf8(Messages::CalendarFolderMissing).arg(m_folder);
        return false;
    }
    objects->clear();
    const QStringList names = dir.entryList({QStringLiteral("*.ics")}, QDir::Files | QDir::Readable, QDir::Name);
    for (const QString &name : names) {
        QFile file(dir.filePath(name));
        if (file.open(QIODevice::ReadOnly))
            objects->append(file.readAll());
    }
    return true;
}
