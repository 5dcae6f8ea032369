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
        touch(m_dir.filePath(QStringLiteral("system/alarms/Alarm1.wav")));
        touch(m_dir.filePath(QStringLiteral("system/bell.wav")));
        touch(m_dir.filePath(QStringLiteral("system/bell.oga")));
        touch(m_dir.filePath(QStringLiteral("user/Chime.wav")));
        touch(m_dir.filePath(QStringLiteral("user/(None).wav")));
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

    void fileFor_data()
    {
        QTest::addColumn<QString>("setting");
        QTest::addColumn<QString>("file"); // below the temporary folder; empty for silence

        const auto row = [](const char *tag, const char *setting, const char *file) {
            QTest::newRow(tag) << QString::fromLatin1(setting) << QString::fromLatin1(file);
        };
        row("none", "(None)", "");
        row("a path holding (None)", "@user/(None).wav", "");
        row("bare name in a subfolder", "Alarm1", "system/alarms/Alarm1.wav");
        row("name with extension", "Chime.wav", "user/Chime.wav");
        row("path", "@system/bell.wav", "system/bell.wav");
        row("missing path", "@system/gone.wav", "");
        row("unknown name", "Alarm2", "");
        row("empty", "", "");
    }

    void fileFor()
    {
        QFETCH(QString, setting);
        QFETCH(QString, file);
        if (setting.startsWith(u'@'))
            setting = m_dir.filePath(setting.mid(1));
        QCOMPARE(ReminderSounds::fileFor(setting, m_folders), file.isEmpty() ? QString() : m_dir.filePath(file));
    }

private:
    void touch(const QString &path)
    {
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
    }

    QTemporaryDir m_dir;
    QStringList m_folders;
};

QTEST_GUILESS_MAIN(TestReminderSounds)
#include "tst_remindersounds.moc"
