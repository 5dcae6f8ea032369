#include "shell/app/singleinstance.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QTest>

/// How the quillbox program starts: what it answers by itself and what it
/// hands to a Quillbox that is already running. A running instance is played
/// by a SingleInstance listening under the name a start looks for.
class TestStartup : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void answeredAlone_data();
    void answeredAlone();
    void pathHandedOver();

private:
    /// Runs quillbox with the temporary home, serving the running instance
    /// meanwhile; returns the exit code (-1 when it did not end).
    int start(const QStringList &arguments);

    QTemporaryDir *m_home = nullptr;
    SingleInstance *m_running = nullptr;
    QStringList m_received;
    QByteArray m_out;
    QByteArray m_err;
};

void TestStartup::init()
{
    m_home = new QTemporaryDir;
    QVERIFY(m_home->isValid());
    m_running = new SingleInstance(SingleInstance::nameForHome(m_home->path()));
    QVERIFY(m_running->listen());
    m_received.clear();
    connect(m_running, &SingleInstance::pathReceived, this, [this](const QString &path) { m_received << path; });
    connect(m_running, &SingleInstance::raiseRequested, this, [this] { m_received << QStringLiteral("(raise)"); });
}

void TestStartup::cleanup()
{
    delete m_running;
    m_running = nullptr;
    delete m_home;
    m_home = nullptr;
}

int TestStartup::start(const QStringList &arguments)
{
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("HOME"), m_home->path());
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    process.setProcessEnvironment(env);
    process.setWorkingDirectory(m_home->path());
    process.start(QStringLiteral(QUILLBOX_BINARY_DIR "/quillbox"), arguments);
    if (!process.waitForStarted())
        return -1;
    // The event loop runs meanwhile, so the running instance can answer.
    QDeadlineTimer deadline(30000);
    while (process.state() != QProcess::NotRunning && !deadline.hasExpired())
        QTest::qWait(10);
    if (process.state() != QProcess::NotRunning) {
        process.kill();
        process.waitForFinished();
        return -1;
    }
    m_out = process.readAllStandardOutput();
    m_err = process.readAllStandardError();
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

void TestStartup::answeredAlone_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QByteArray>("out");
    QTest::addColumn<QByteArray>("err");

    QTest::newRow("--version") << QStringList{QStringLiteral("--version")} << 0
                               << QByteArray("quillbox " QUILLBOX_VERSION "\n") << QByteArray();
    QTest::newRow("--help") << QStringList{QStringLiteral("--help")} << 0
                            << QByteArray("Usage: quillbox [OPTION] [FILE]...\n") << QByteArray();
    QTest::newRow("-h, before a file") << QStringList{QStringLiteral("-h"), QStringLiteral("Plan.qbx")} << 0
                                       << QByteArray("Usage: quillbox [OPTION] [FILE]...\n") << QByteArray();
    QTest::newRow("unknown option") << QStringList{QStringLiteral("--frobnicate")} << 2 << QByteArray()
                                    << QByteArray("quillbox: unknown option '--frobnicate'\n");
}

void TestStartup::answeredAlone()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QByteArray, out);
    QFETCH(QByteArray, err);

    QCOMPARE(start(arguments), exitCode);
    QVERIFY2(m_out.startsWith(out), m_out.constData());
    QVERIFY2(m_err.contains(err), m_err.constData());
    // Whatever the instance might receive arrives while the start runs.
    QCOMPARE(m_received, QStringList());
}

void TestStartup::pathHandedOver()
{
    // The harness itself: a plain start does reach the running instance,
    // with the path made absolute.
    QCOMPARE(start({QStringLiteral("Plan.qbx")}), 0);
    QCOMPARE(m_received, QStringList{QDir(m_home->path()).filePath(QStringLiteral("Plan.qbx"))});

    m_received.clear();
    QCOMPARE(start({QStringLiteral("--"), QStringLiteral("-dash.qbx")}), 0);
    QCOMPARE(m_received, QStringList{QDir(m_home->path()).filePath(QStringLiteral("-dash.qbx"))});
}

QTEST_MAIN(TestStartup)
#include "tst_startup.moc"
