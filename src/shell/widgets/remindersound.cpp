#include "shell/widgets/remindersound.h"

#include "reminders/remindersounds.h"

#include <QSoundEffect>
#include <QUrl>

ReminderSound::ReminderSound(QObject *parent) : ReminderSound(ReminderSounds::folders(), parent) {}

ReminderSound::ReminderSound(const QStringList &folders, QObject *parent) : QObject(parent), m_folders(folders) {}

ReminderSound::~ReminderSound() = default;

QString ReminderSound::play(const QString &setting)
{
    const QString file = ReminderSounds::fileFor(setting, m_folders);
    if (file.isEmpty())
        return {};
    // Made on first use: a document that never rings opens no audio device.
    if (!m_effect)
        m_effect = new QSoundEffect(this);
    const QUrl source = QUrl::fromLocalFile(file);
    if (m_effect->source() != source)
        m_effect->setSource(source);
    m_effect->play();
    return file;
}
