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
    if (!process.waitForStarted() || !process.waitForFinished(600000))
        return {-1, QByteArray()};
    return {process.exitCode(), process.readAll()};
}

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// `cmake --install` of this build into a staging folder, looked at the way a desktop looks at an installed program,
/// and the Debian package made from this build, unpacked and run.
class TestInstall : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        m_prefix = m_dir.filePath(QStringLiteral("stage"));
        const auto install = run(QStringLiteral(QUILLBOX_CMAKE_COMMAND),
                                 {"--install", QStringLiteral(QUILLBOX_BINARY_DIR), "--prefix", m_prefix});
        QVERIFY2(install.first == 0, install.second.constData());
    }

    void installedFiles()
    {
        QStringList files{"bin/qbx", "share/man/man1/qbx.1"};
        if (QUILLBOX_WITH_GUI)
            files << "bin/quillbox"
                  << "share/man/man1/quillbox.1"
                  << "share/doc/quillbox/Quillbox.htm"
                  << "share/icons/hicolor/scalable/mimetypes/application-x-quillbox.svg"
                  << "share/icons/hicolor/scalable/apps/org.quillbox.Quillbox.svg";
        for (const QString &path : files) {
            const QFileInfo info(m_prefix + QLatin1Char('/') + path);
            QVERIFY2(info.isFile() && info.size() > 0, qPrintable(path));
            QCOMPARE(info.isExecutable(), path.startsWith(QLatin1String("bin/")));
        }
    }

    void desktopEntryAndFileType()
    {
        if (!QUILLBOX_WITH_GUI)
            QSKIP("built without the desktop application");
        const QString entry = m_prefix + QStringLiteral("/share/applications/org.quillbox.Quillbox.desktop");
        const auto validate = run(QStringLiteral("desktop-file-validate"), {entry}); // from scripts/setup
        QVERIFY2(validate.first == 0 && validate.second.isEmpty(), validate.second.constData());
        // Start the installed program with the chosen files, show its icon, offer it for our file type.
        const QList<QByteArray> lines = readAll(entry).split('\n');
        for (const char *line : {"Exec=quillbox %F", "MimeType=application/x-quillbox;", "Icon=org.quillbox.Quillbox"})
            QVERIFY2(lines.contains(line), line);

        // The type is known by the first bytes of each version's header, or by the name, once the staged database is
        // compiled as update-mime-database does it for the desktop, with the desktop's own database left out.
        const QString mimeDir = m_prefix + QStringLiteral("/share/mime");
        const QString update = QStandardPaths::findExecutable(QStringLiteral("update-mime-database"));
        QVERIFY2(!update.isEmpty() && run(update, {mimeDir}).first == 0, "run scripts/setup (shared-mime-info)");
        qputenv("XDG_DATA_HOME", m_dir.filePath(QStringLiteral("nothing")).toLocal8Bit());
        qputenv("XDG_DATA_DIRS", (m_prefix + QStringLiteral("/share")).toLocal8Bit());
        const QByteArray rest("\x00\x00\x05\x00\x00\x00\x00\x00\x00\x00\x00\x00", 12);
        const std::pair<const char *, QByteArray> rows[] = {// the names with a space are not our type
                                                            {"551", QByteArray("\x27\x02\x00\x00", 4)},
                                                            {"410", QByteArray("\x9A\x01\x00\x00", 4)},
                                                            {"552 is no version", QByteArray("\x28\x02\x00\x00", 4)},
                                                            {"551 big-endian", QByteArray("\x00\x00\x02\x27", 4)},
                                                            {"Plan.qbx", QByteArray(4, '\0')}};
        for (const auto &[name, head] : rows) {
            QFile file(m_dir.filePath(QString::fromLatin1(name)));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(head + rest) > 0);
            file.close();
            const QString type = QMimeDatabase().mimeTypeForFile(file.fileName()).name();
            QVERIFY2((type == QLatin1String("application/x-quillbox")) == !QByteArray(name).contains(' '), name);
        }
    }

    void debianPackage()
    {
        // Packed from what the build holds: nothing is compiled again (dpkg-shlibdeps comes with scripts/setup).
        const QString out = m_dir.filePath(QStringLiteral("deb")), root = m_dir.filePath(QStringLiteral("root"));
        const auto pack = run(QStringLiteral(QUILLBOX_CPACK_COMMAND),
                              {"-G", "DEB", "--config", QUILLBOX_BINARY_DIR "/CPackConfig.cmake", "-B", out});
        QVERIFY2(pack.first == 0, pack.second.constData());
        const QStringList packages = QDir(out).entryList({QStringLiteral("*.deb")}, QDir::Files);
        QCOMPARE(packages.size(), 1);
        const QString package = out + QLatin1Char('/') + packages.first();
        QCOMPARE(run(QStringLiteral("dpkg-deb"), {"-x", package, root}).first, 0);
        // The libraries the programs link are found and named.
        const auto fields = run(QStringLiteral("dpkg-deb"), {"--field", package, "Package", "Version", "Depends"});
        QVERIFY2(fields.second.startsWith("Package: quillbox\nVersion: " QUILLBOX_VERSION "\n"),
                 fields.second.constData());
        QVERIFY(fields.second.contains(" libqt6core6 ("));
        QCOMPARE(fields.second.contains(" libqt6widgets6 ("), bool(QUILLBOX_WITH_GUI));
        QStringList files{"usr/share/man/man1/qbx.1"}, programs{"qbx"};
        if (QUILLBOX_WITH_GUI) {
            files << "usr/share/applications/org.quillbox.Quillbox.desktop"
                  << "usr/share/mime/packages/org.quillbox.Quillbox.xml"
                  << "usr/share/doc/quillbox/Quillbox.htm";
            programs << "quillbox";
        }
        for (const QString &path : files)
            QVERIFY2(QFileInfo(root + QLatin1Char('/') + path).isFile(), qPrintable(path));
        for (const QString &program : programs) {
            const QString path = root + QStringLiteral("/usr/bin/") + program;
            QCOMPARE(run(path, {"--version"}), std::make_pair(0, program.toLatin1() + " " QUILLBOX_VERSION "\n"));
            // Installed stripped: the debugging information stays in the build.
            const QByteArray sections = run(QStringLiteral("readelf"), {"-S", path}).second;
            QVERIFY(sections.contains(".text") && !sections.contains(".debug_info"));
        }
    }

private:
    QTemporaryDir m_dir;
    QString m_prefix;
};

QTEST_GUILESS_MAIN(TestInstall)
#include "tst_install.moc"
