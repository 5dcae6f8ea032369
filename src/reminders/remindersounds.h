#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// The files behind the "Reminder sound:" choice and the `Sound` setting.
namespace ReminderSounds {

struct Choice {
    QString label; ///< what the list shows: "(None)" or the file's name without ".wav"
    QString value; ///< what the setting keeps: "(None)" or the file's path
};

/// The sound folders: the system's ("sounds" under each shared data folder)
/// first, then the user's own (~/.local/share/sounds on Linux).
QStringList folders();

/// "(None)" first, then the .wav files found in folders (and their
/// subfolders), ordered by label; a path met twice is listed once.
QList<Choice> choices(const QStringList &folders);

/// The file to play for a `Sound` value, or empty for silence: a value
/// containing "(None)" is silence; a path to a file plays that file; a bare
/// name ("Alarm1") plays the first file of that name, with or without
/// ".wav", in the folders; anything else is silence.
QString fileFor(const QString &setting, const QStringList &folders);

} // namespace ReminderSounds
