#include "reminders/remindersounds.h"

#include "platform/messages.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QSet>
#include <QStandardPaths>
#include <algorithm>

namespace ReminderSounds {

QStringList folders()
{
    QStringList system;
    const QString user = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    const QStringList shared = QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation);
    for (const QString &folder : shared) {
        if (folder != user)
            system.append(folder + QLatin1String("/sounds"));
    }
    if (!user.isEmpty())
        system.append(user + QLatin1String("/sounds"));
    return system;
}

QList<Choice> choices(const QStringList &folders)
{
    QList<Choice> found;
    QSet<QString> seen;
    for (const QString &folder : folders) {
        QDirIterator it(folder, {QStringLiteral("*.wav")}, QDir::Files | QDir::Readable,
                        QDirIterator::Subdirectories | QDirIterator::FollowSymlinks);
        while (it.hasNext()) {
            const QFileInfo file(it.next());
            const QString path = file.canonicalFilePath();
            if (path.isEmpty() || seen.contains(path))
                continue;
            seen.insert(path);
            found.append({file.completeBaseName(), file.absoluteFilePath()});
        }
    }
    std::stable_sort(found.begin(), found.end(), [](const Choice &a, const Choice &b) {
        return a.label.compare(b.label, Qt::CaseInsensitive) < 0;
    });
    const QString none = QString::fromLatin1(Messages::NoSound);
    found.prepend({none, none});
    return found;
}

QString fileFor(const QString &setting, const QStringList &folders)
{
    if (setting.isEmpty() || setting.contains(QLatin1String(Messages::NoSound)))
        return {};
    const QFileInfo direct(setting);
    if (direct.isAbsolute())
        return direct.isFile() ? direct.absoluteFilePath() : QString();
    const QStringList names = {setting, setting + QLatin1String(".wav")};
    for (const QString &folder : folders) {
        QDirIterator it(folder, names, QDir::Files | QDir::Readable,
                        QDirIterator::Subdirectories | QDirIterator::FollowSymlinks);
        if (it.hasNext())
            return QFileInfo(it.next()).absoluteFilePath();
    }
    return {};
}

} // namespace ReminderSounds
