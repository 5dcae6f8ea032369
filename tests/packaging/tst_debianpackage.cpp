#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

namespace {

struct Run {
    int status = -1;
    QByteArray out;
    QByteArray err;
};

Run runProgram(const QString &program, const QStringList &arguments, int timeoutMs = 120000)
{
    QProcess process;
    process.start(program, arguments);
    Run run;
    if (!process.waitForStarted())
        return run;
    process.waitForFinished(timeoutMs);
    run.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}

} // namespace

/// The Debian package made from this build, unpacked into a temporary root
/// and run from there.
class TestDebianPackage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void dependencies();
    void contents_data();
    void contents();
    void programsRun_data();
    void programsRun();

private:
    QTemporaryDir m_dir;
    QString m_package;
    QString m_root;
};

void TestDebianPackage::initTestCase()
{
    QVERIFY(m_dir.isValid());
    for (const char *tool : {"dpkg-deb", "dpkg-shlibdeps"}) {
        QVERIFY2(!QStandardPaths::findExecutable(QString::fromLatin1(tool)).isEmpty(),
                 qPrintable(QStringLiteral("%1 is missing: run scripts/setup").arg(QLatin1String(tool))));
    }

    // Packed here rather than in the build folder, from what the build holds:
    // nothing is compiled again.
    const QString out = m_dir.filePath(QStringLiteral("out"));
    const Run pack = runProgram(QStringLiteral(QUILLBOX_CPACK_COMMAND),
                                {QStringLiteral("-G"), QStringLiteral("DEB"), QStringLiteral("--config"),
                                 QStringLiteral(QUILLBOX_BINARY_DIR "/CPackConfig.cmake"), QStringLiteral("-B"), out},
                                600000);
    QVERIFY2(pack.status == 0, (pack.out + pack.err).constData());
    const QStringList packages = QDir(out).entryList({QStringLiteral("*.deb")}, QDir::Files);
    QCOMPARE(packages.size(), 1);
    m_package = out + QLatin1Char('/') + packages.first();

    m_root = m_dir.filePath(QStringLiteral("root"));
    const Run extract = runProgram(QStringLiteral("dpkg-deb"), {QStringLiteral("-x"), m_package, m_root});
    QVERIFY2(extract.status == 0, extract.err.constData());
}

void TestDebianPackage::dependencies()
{
    // dpkg-shlibdeps found the libraries the programs link.
    const Run depends = runProgram(QStringLiteral("dpkg-deb"),
                                   {QStringLiteral("--field"), m_package, QStringLiteral("Package"),
                                    QStringLiteral("Version"), QStringLiteral("Depends")});
    QCOMPARE(depends.status, 0);
    QVERIFY2(depends.out.startsWith("Package: quillbox\nVersion: " QUILLBOX_VERSION "\n"), depends.out.constData());
    for (const char *library : {"libc6", "libstdc++6", "libqt6core6"})
        QVERIFY2(depends.out.contains(QByteArray(" ") + library + " ("), library);
    if (QUILLBOX_WITH_GUI)
        QVERIFY(depends.out.contains(" libqt6widgets6 ("));
}

void TestDebianPackage::contents_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("qbx man page") << "usr/share/man/man1/qbx.1";
    if (!QUILLBOX_WITH_GUI)
        return;
    QTest::newRow("desktop entry") << "usr/share/applications/org.quillbox.Quillbox.desktop";
    QTest::newRow("file type") << "usr/share/mime/packages/org.quillbox.Quillbox.xml";
    QTest::newRow("icon") << "usr/share/icons/hicolor/scalable/apps/org.quillbox.Quillbox.svg";
    QTest::newRow("help page") << "usr/share/doc/quillbox/Quillbox.htm";
}

void TestDebianPackage::contents()
{
    QFETCH(QString, path);
    QVERIFY2(QFileInfo(m_root + QLatin1Char('/') + path).isFile(), qPrintable(path));
}

void TestDebianPackage::programsRun_data()
{
    QTest::addColumn<QString>("program");
    QTest::newRow("qbx") << "qbx";
    if (QUILLBOX_WITH_GUI)
        QTest::newRow("quillbox") << "quillbox";
}

void TestDebianPackage::programsRun()
{
    QFETCH(QString, program);
    const Run version = runProgram(m_root + QStringLiteral("/usr/bin/") + program, {QStringLiteral("--version")});
    QCOMPARE(version.status, 0);
    QCOMPARE(version.out, program.toLatin1() + " " QUILLBOX_VERSION "\n");
    // Installed stripped: the debugging information stays in the build.
    const Run sections = runProgram(QStringLiteral("readelf"),
                                    {QStringLiteral("-S"), m_root + QStringLiteral("/usr/bin/") + program});
    QCOMPARE(sections.status, 0);
    QVERIFY(!sections.out.contains(".debug_info"));
}

QTEST_GUILESS_MAIN(TestDebianPackage)
#include "tst_debianpackage.moc"
