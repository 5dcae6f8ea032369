#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {

// The exit code and standard output of a program, -1 when it does not start.
std::pair<int, QByteArray> run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForStarted() || !process.waitForFinished(600000))
        return {-1, process.readAllStandardError()};
    return {process.exitCode(), process.readAllStandardOutput() + process.readAllStandardError()};
}

} // namespace

/// The Debian package made from this build, unpacked into a temporary root
/// and run from there.
class TestDebianPackage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // Packed here rather than in the build folder, from what the build holds:
        // nothing is compiled again. dpkg-deb and dpkg-shlibdeps come with scripts/setup.
        const QString out = m_dir.filePath(QStringLiteral("out"));
        const auto pack = run(QStringLiteral(QUILLBOX_CPACK_COMMAND),
                              {QStringLiteral("-G"), QStringLiteral("DEB"), QStringLiteral("--config"),
                               QStringLiteral(QUILLBOX_BINARY_DIR "/CPackConfig.cmake"), QStringLiteral("-B"), out});
        QVERIFY2(pack.first == 0, pack.second.constData());
        const QStringList packages = QDir(out).entryList({QStringLiteral("*.deb")}, QDir::Files);
        QCOMPARE(packages.size(), 1);
        m_package = out + QLatin1Char('/') + packages.first();
        m_root = m_dir.filePath(QStringLiteral("root"));
        const auto extract = run(QStringLiteral("dpkg-deb"), {QStringLiteral("-x"), m_package, m_root});
        QVERIFY2(extract.first == 0, extract.second.constData());
    }

    void dependencies()
    {
        // dpkg-shlibdeps found the libraries the programs link.
        const auto depends =
            run(QStringLiteral("dpkg-deb"), {QStringLiteral("--field"), m_package, QStringLiteral("Package"),
                                             QStringLiteral("Version"), QStringLiteral("Depends")});
        QCOMPARE(depends.first, 0);
        QVERIFY2(depends.second.startsWith("Package: quillbox\nVersion: " QUILLBOX_VERSION "\n"),
                 depends.second.constData());
        QVERIFY(depends.second.contains(" libqt6core6 ("));
        QCOMPARE(depends.second.contains(" libqt6widgets6 ("), bool(QUILLBOX_WITH_GUI));
    }

    void contentsAndPrograms()
    {
        QStringList files{QStringLiteral("usr/share/man/man1/qbx.1")};
        QStringList programs{QStringLiteral("qbx")};
        if (QUILLBOX_WITH_GUI) {
            files << QStringLiteral("usr/share/applications/org.quillbox.Quillbox.desktop")
                  << QStringLiteral("usr/share/mime/packages/org.quillbox.Quillbox.xml")
                  << QStringLiteral("usr/share/icons/hicolor/scalable/apps/org.quillbox.Quillbox.svg")
                  << QStringLiteral("usr/share/doc/quillbox/Quillbox.htm");
            programs << QStringLiteral("quillbox");
        }
        for (const QString &path : files)
            QVERIFY2(QFileInfo(m_root + QLatin1Char('/') + path).isFile(), qPrintable(path));
        for (const QString &program : programs) {
            const QString path = m_root + QStringLiteral("/usr/bin/") + program;
            QCOMPARE(run(path, {QStringLiteral("--version")}),
                     std::make_pair(0, QByteArray(program.toLatin1() + " " QUILLBOX_VERSION "\n")));
            // Installed stripped: the debugging information stays in the build.
            const auto sections = run(QStringLiteral("readelf"), {QStringLiteral("-S"), path});
            QCOMPARE(sections.first, 0);
            QVERIFY(!sections.second.contains(".debug_info"));
        }
    }

private:
    QTemporaryDir m_dir;
    QString m_package;
    QString m_root;
};

QTEST_GUILESS_MAIN(TestDebianPackage)
#include "tst_debianpackage.moc"
