#include "model/document.h"
#include "model/item.h"
#include "shell/app/singleinstance.h"
#include "storage/documentfile.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

/// The quillbox program in a home of its own: what it answers by itself, what it hands to a Quillbox already
/// running, and how a desktop ends it without losing the open document.
class TestStartup : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<QTemporaryDir>();
        QVERIFY(m_home->isValid() && QDir(m_home->path()).mkpath(QStringLiteral("Documents")));
        m_path = m_home->filePath(QStringLiteral("Documents/Plan.qbx"));
        Document doc;
        doc.root()->appendChild(new Item(QStringLiteral("keep me")));
        doc.path = m_path;
        QVERIFY(DocumentFile::save(doc));
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        for (const char *name : {"HOME", "XDG_RUNTIME_DIR"})
            env.insert(QString::fromLatin1(name), m_home->path());
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home->filePath(QStringLiteral(".config")));
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        m_process = std::make_unique<QProcess>();
        m_process->setProcessEnvironment(env);
        m_process->setWorkingDirectory(m_home->path());
    }

    void cleanup()
    {
        m_process->kill();
        m_process->waitForFinished();
    }

    void answeredWithoutAWindow()
    {
        // A running instance is played by a SingleInstance listening under the name a start looks for.
        SingleInstance running(SingleInstance::nameForHome(m_home->path()));
        QVERIFY(running.listen());
        QStringList received;
        connect(&running, &SingleInstance::pathReceived, this, [&](const QString &path) { received << path; });
        connect(&running, &SingleInstance::raiseRequested, this, [&] { received << QStringLiteral("(raise)"); });
        const struct {
            QStringList arguments;
            int exitCode;
            QByteArray out, err;
            QStringList received;
        } rows[] = {
            {{"--version"}, 0, "quillbox " QUILLBOX_VERSION "\n", "", {}},
            {{"-h", "Plan.qbx"}, 0, "Usage: quillbox [OPTION] [FILE]...\n", "", {}},
            {{"--frobnicate"}, 2, "", "quillbox: unknown option '--frobnicate'\n", {}},
            // A plain start hands the path, made absolute, to the running instance.
            {{"Plan.qbx"}, 0, "", "", {m_home->filePath(QStringLiteral("Plan.qbx"))}},
            {{"--", "-dash.qbx"}, 0, "", "", {m_home->filePath(QStringLiteral("-dash.qbx"))}},
        };
        for (const auto &row : rows) {
            received.clear();
            m_process->start(QStringLiteral(QUILLBOX_BINARY_DIR "/quillbox"), row.arguments);
            QVERIFY(m_process->waitForStarted());
            QTRY_VERIFY_WITH_TIMEOUT(m_process->state() == QProcess::NotRunning, 30000);
            QCOMPARE(m_process->exitCode(), row.exitCode);
            QVERIFY(m_process->readAllStandardOutput().startsWith(row.out));
            QVERIFY(m_process->readAllStandardError().contains(row.err));
            QCOMPARE(received, row.received);
        }
    }

    void quitSignalsSave()
    {
        for (int signalNumber : {SIGTERM, SIGINT, SIGHUP}) {
            QVERIFY(startAndDelete());
            // Sooner than the autosave: only the signal's save can write it.
            QTest::qWait(600);
            QVERIFY(!QFileInfo::exists(m_path));
            ::kill(pid_t(m_process->processId()), signalNumber);
            QVERIFY(m_process->waitForFinished(20000));
            QVERIFY(m_process->exitStatus() == QProcess::NormalExit && m_process->exitCode() == 0);
            QCOMPARE(savedName(), QStringLiteral("keep me"));
            // A normal close: the next start reopens the document.
            QSettings store(m_home->filePath(QStringLiteral(".config/Quillbox/Quillbox.conf")), QSettings::IniFormat);
            QCOMPARE(store.value(QStringLiteral("DefFile")).toString(), m_path);
        }
    }

    void killAfterTheAutosaveLosesNothing()
    {
        QVERIFY(startAndDelete());
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(m_path), 10000);
        QTest::qWait(300);
        m_process->kill();
        QVERIFY(m_process->waitForFinished(10000));
        QCOMPARE(savedName(), QStringLiteral("keep me"));
    }

private:
    /// Starts quillbox on the document, waits until it is up, then deletes the file so that the open document is
    /// a change still to be written.
    bool startAndDelete()
    {
        m_process->start(QStringLiteral(QUILLBOX_BINARY_DIR "/quillbox"), {m_path});
        if (!m_process->waitForStarted())
            return false;
        // Up once it answers a second start (a bare raise).
        SingleInstance probe(SingleInstance::nameForHome(m_home->path()));
        QDeadlineTimer deadline(20000);
        while (!probe.handOver(QString(), 200)) {
            if (deadline.hasExpired() || m_process->state() == QProcess::NotRunning)
                return false;
            QTest::qWait(100);
        }
        QTest::qWait(500);
        return QFile::remove(m_path);
    }

    QString savedName() const
    {
        Document doc;
        return DocumentFile::load(m_path, &doc) == DocumentFile::Loaded ? doc.root()->child(0)->name() : QString();
    }

    std::unique_ptr<QTemporaryDir> m_home;
    std::unique_ptr<QProcess> m_process;
    QString m_path;
};

QTEST_MAIN(TestStartup)
#include "tst_startup.moc"
