#pragma once

#include <QObject>
#include <QStringList>

class QSoundEffect;

/// Plays the reminder sound of the `Sound` setting; "(None)" is silence.
class ReminderSound : public QObject {
    Q_OBJECT
public:
    /// Looks for named sounds in the system's and the user's sound folders.
    explicit ReminderSound(QObject *parent = nullptr);
    ReminderSound(const QStringList &folders, QObject *parent);
    ~ReminderSound() override;

    /// Starts the sound and returns the file played, or empty when the
    /// setting means silence or names no file.
    QString play(const QString &setting);

private:
    QStringList m_folders;
    QSoundEffect *m_effect = nullptr;
};
