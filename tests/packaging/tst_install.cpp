#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMimeDatabase>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

namespace {

// The exit code and merged output of a program, -1 when it does not start.
std::pair<int, QByteArray> run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    if (!process.waitForStarted() || !process.waitForFinished(120000))
        return {-1, QByteArray()};
    return {process.exitCode(), process.readAll()};
}

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// `cmake --install` of this build into a staging folder, looked at the way a
/// desktop looks at an installed program.
class TestInstall : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_prefix = m_dir.filePath(QStringLiteral("stage"));
        const auto install = run(
            QStringLiteral(QUILLBOX_CMAKE_COMMAND),
            {QStringLiteral("--install"), QStringLiteral(QUILLBOX_BINARY_DIR), QStringLiteral("--prefix"), m_prefix});
        QVERIFY2(install.first == 0, install.second.constData());

        if (QUILLBOX_WITH_GUI) {
            // Compiled as update-mime-database does it for the desktop; the
            // desktop's own database stays out, so only the staged one is seen.
            const QString mimeDir = m_prefix + QStringLiteral("/share/mime");
            const QString update = QStandardPaths::findExecutable(QStringLiteral("update-mime-database"));
            m_mimeCompiled = !update.isEmpty() && run(update, {mimeDir}).first == 0 &&
                             QFileInfo::exists(mimeDir + QStringLiteral("/mime.cache"));
            qputenv("XDG_DATA_HOME", m_dir.filePath(QStringLiteral("nothing")).toLocal8Bit());
            qputenv("XDG_DATA_DIRS", (m_prefix + QStringLiteral("/share")).toLocal8Bit());
        }
    }

    void installedFiles_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("program");
        QTest::newRow("qbx") << "bin/qbx" << true;
        QTest::newRow("qbx man page") << "share/man/man1/qbx.1" << false;
        if (!QUILLBOX_WITH_GUI)
            return;
        QTest::newRow("quillbox") << "bin/quillbox" << true;
        QTest::newRow("quillbox man page") << "share/man/man1/quillbox.1" << false;
        QTest::newRow("help page") << "share/doc/quillbox/Quillbox.htm" << false;
        QTest::newRow("document icon") << "share/icons/hicolor/scalable/mimetypes/application-x-quillbox.svg" << false;
    }

    void installedFiles()
    {
        QFETCH(QString, path);
        QFETCH(bool, program);
        const QFileInfo info(m_prefix + QLatin1Char('/') + path);
        QVERIFY2(info.isFile(), qPrintable(path));
        QCOMPARE(info.isExecutable(), program);
        QVERIFY(info.size() > 0);
    }

    void manPageCoversEveryCommand()
    {
        // The commands as the installed qbx lists them: "  NAME   summary".
        const auto help = run(m_prefix + QStringLiteral("/bin/qbx"), {QStringLiteral("--help")});
        QCOMPARE(help.first, 0);
        const QByteArray list = help.second.mid(help.second.indexOf("Commands:\n"));
        QStringList commands;
        for (const QByteArray &line : list.split('\n')) {
            if (line.startsWith("  "))
                commands << QString::fromLatin1(line.trimmed().split(' ').first());
        }
        QVERIFY(commands.size() >= 10);

        const QByteArray page = readAll(m_prefix + QStringLiteral("/share/man/man1/qbx.1"));
        QVERIFY(page.startsWith(".TH QBX 1 \"\" \"Quillbox " QUILLBOX_VERSION "\""));
        for (const QString &command : commands) {
            // Dashes are escaped in the page's headings.
            const QByteArray heading = ".SS \"qbx " + command.toLatin1().replace("-", "\\-") + ' ';
            QVERIFY2(page.contains(heading), qPrintable(command));
        }
    }

    void desktopEntry()
    {
        if (!QUILLBOX_WITH_GUI)
            QSKIP("built without the desktop application");
        const QString entry = m_prefix + QStringLiteral("/share/applications/org.quillbox.Quillbox.desktop");
        const auto validate = run(QStringLiteral("desktop-file-validate"), {entry}); // from scripts/setup
        QVERIFY2(validate.first == 0 && validate.second.isEmpty(), validate.second.constData());

        // What the desktop does with the entry: start the installed program with
        // the chosen files, show the installed icon, offer it for our file type.
        const QList<QByteArray> lines = readAll(entry).split('\n');
        QVERIFY(lines.contains("Exec=quillbox %F"));
        QVERIFY(lines.contains("MimeType=application/x-quillbox;"));
        QVERIFY(lines.contains("Icon=org.quillbox.Quillbox"));
        QVERIFY(QFileInfo::exists(m_prefix +
                                  QStringLiteral("/share/icons/hicolor/scalable/apps/org.quillbox.Quillbox.svg")));
    }

    void fileType_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("known");

        // The first bytes of each version's header, then a little of what
        // follows, under names that say nothing of the type.
        const QByteArray rest("\x00\x00\x05\x00\x00\x00\x00\x00\x00\x00\x00\x00", 12);
        QTest::newRow("551") << "Plan copy" << QByteArray("\x27\x02\x00\x00", 4) + rest << true;
        QTest::newRow("550") << "Plan copy" << QByteArray("\x26\x02\x00\x00", 4) + rest << true;
        QTest::newRow("501") << "Plan copy" << QByteArray("\xF5\x01\x00\x00", 4) + rest << true;
        QTest::newRow("500") << "Plan copy" << QByteArray("\xF4\x01\x00\x00", 4) + rest << true;
        QTest::newRow("410") << "Plan copy" << QByteArray("\x9A\x01\x00\x00", 4) + rest << true;
        QTest::newRow("552 is no version") << "Plan copy" << QByteArray("\x28\x02\x00\x00", 4) + rest << false;
        QTest::newRow("551 big-endian") << "Plan copy" << QByteArray("\x00\x00\x02\x27", 4) + rest << false;
        QTest::newRow("551 one byte on") << "Plan copy" << QByteArray("\x00\x27\x02\x00\x00", 5) + rest << false;
        // The name alone is enough, whatever the bytes.
        QTest::newRow("by name") << "Plan.qbx" << QByteArray("\x00\x00\x00\x00", 4) + rest << true;
    }

    void fileType()
    {
        if (!QUILLBOX_WITH_GUI)
            QSKIP("built without the desktop application");
        QFETCH(QString, name);
        QFETCH(QByteArray, bytes);
        QFETCH(bool, known);

        QVERIFY2(m_mimeCompiled, "update-mime-database failed (package shared-mime-info: run scripts/setup)");

        const QString folder = m_dir.filePath(QString::fromLatin1(QTest::currentDataTag()));
        QVERIFY(QDir().mkpath(folder));
        QFile file(folder + QLatin1Char('/') + name);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.close();

        const QMimeType type = QMimeDatabase().mimeTypeForFile(file.fileName());
        QVERIFY2((type.name() == QLatin1String("application/x-quillbox")) == known, qPrintable(type.name()));
    }

private:
    QTemporaryDir m_dir;
    QString m_prefix;
    bool m_mimeCompiled = false;
};

QTEST_GUILESS_MAIN(TestInstall)
#include "tst_install.moc"
