#include "reminders/remindersounds.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class TestReminderSounds : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_folders = {m_dir.filePath(QStringLiteral("system")), m_dir.filePath(QStringLiteral("user"))};
        for (const char *name :
             {"system/alarms/Alarm1.wav", "system/bell.wav", "system/bell.oga", "user/Chime.wav", "user/(None).wav"}) {
            QFile file(m_dir.filePath(QLatin1String(name)));
            QVERIFY(QDir().mkpath(QFileInfo(file).absolutePath()) && file.open(QIODevice::WriteOnly));
        }
        // The same sound reached twice, through a link to its folder, is offered once.
        QVERIFY(QFile::link(m_dir.filePath(QStringLiteral("system/alarms")),
                            m_dir.filePath(QStringLiteral("user/alarms"))));
    }

    void choices()
    {
        const QList<ReminderSounds::Choice> found = ReminderSounds::choices(m_folders);
        QStringList labels;
        for (const ReminderSounds::Choice &choice : found)
            labels.append(choice.label);
        QCOMPARE(labels, QStringList({"(None)", "(None)", "Alarm1", "bell", "Chime"}));
        QCOMPARE(found[0].value, QStringLiteral("(None)"));
        QCOMPARE(found[3].value, m_dir.filePath(QStringLiteral("system/bell.wav")));
    }

    void fileFor()
    {
        // A setting, and the file it plays below the temporary folder ("" for silence); "@" for the folder.
        const char *const cases[][2] = {{"(None)", ""},
                                        {"@user/(None).wav", ""},
                                        {"Alarm1", "system/alarms/Alarm1.wav"}, // a bare name in a subfolder
                                        {"Chime.wav", "user/Chime.wav"},
                                        {"@system/bell.wav", "system/bell.wav"},
                                        {"@system/gone.wav", ""},
                                        {"Alarm2", ""},
                                        {"", ""}};
        for (const auto &c : cases) {
            QString setting = QString::fromLatin1(c[0]);
            if (setting.startsWith(u'@'))
                setting = m_dir.filePath(setting.mid(1));
            QCOMPARE(ReminderSounds::fileFor(setting, m_folders),
                     *c[1] ? m_dir.filePath(QLatin1String(c[1])) : QString());
        }
    }

private:
    QTemporaryDir m_dir;
    QStringList m_folders;
};

QTEST_GUILESS_MAIN(TestReminderSounds)
#include "tst_remindersounds.moc"
