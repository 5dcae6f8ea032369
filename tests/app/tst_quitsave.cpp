#include "model/document.h"
#include "model/item.h"
#include "shell/app/singleinstance.h"
#include "storage/documentfile.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

/// A running quillbox with a document that needs writing (its file was
/// deleted under it), ended the ways a desktop ends programs: the quit
/// signals save and close normally, and even kill -9 finds the autosave done.
class TestQuitSave : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void quitSignalsSave_data();
    void quitSignalsSave();
    void killAfterTheAutosaveLosesNothing();

private:
    /// Starts quillbox on the document, waits until it is up, then deletes
    /// the file so that the open document is a change still to be written.
    bool startAndDelete();
    QStringList namesOnDisk() const;

    QTemporaryDir *m_home = nullptr;
    QProcess *m_process = nullptr;
    QString m_path;
};

void TestQuitSave::init()
{
    m_home = new QTemporaryDir;
    QVERIFY(m_home->isValid());
    QDir(m_home->path()).mkpath(QStringLiteral("Documents"));
    m_path = QDir(m_home->path()).filePath(QStringLiteral("Documents/Plan.qbx"));
    Document doc;
    doc.root()->appendChild(new Item(QStringLiteral("keep me")));
    doc.path = m_path;
    QVERIFY(DocumentFile::save(doc));
    m_process = new QProcess;
}

void TestQuitSave::cleanup()
{
    if (m_process->state() != QProcess::NotRunning) {
        m_process->kill();
        m_process->waitForFinished();
    }
    delete m_process;
    m_process = nullptr;
    delete m_home;
    m_home = nullptr;
}

bool TestQuitSave::startAndDelete()
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("HOME"), m_home->path());
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home->filePath(QStringLiteral(".config")));
    env.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_home->path());
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    m_process->setProcessEnvironment(env);
    m_process->setWorkingDirectory(m_home->path());
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

QStringList TestQuitSave::namesOnDisk() const
{
    Document doc;
    if (DocumentFile::load(m_path, &doc) != DocumentFile::Loaded)
        return {QStringLiteral("<unreadable>")};
    QStringList names;
    doc.root()->forEachDescendant([&](Item *item) { names.append(item->name()); });
    return names;
}

void TestQuitSave::quitSignalsSave_data()
{
    QTest::addColumn<int>("signalNumber");
    QTest::newRow("SIGTERM") << int(SIGTERM);
    QTest::newRow("SIGINT") << int(SIGINT);
    QTest::newRow("SIGHUP") << int(SIGHUP);
}

void TestQuitSave::quitSignalsSave()
{
    QFETCH(int, signalNumber);
    QVERIFY(startAndDelete());
    // Sooner than the autosave: only the signal's save can write it.
    QTest::qWait(600);
    QVERIFY(!QFileInfo::exists(m_path));
    ::kill(pid_t(m_process->processId()), signalNumber);
    QVERIFY(m_process->waitForFinished(20000));
    QCOMPARE(m_process->exitStatus(), QProcess::NormalExit);
    QCOMPARE(m_process->exitCode(), 0);
    QCOMPARE(namesOnDisk(), QStringList{QStringLiteral("keep me")});
    // A normal close: the next start reopens the document.
    QSettings store(m_home->filePath(QStringLiteral(".config/Quillbox/Quillbox.conf")), QSettings::IniFormat);
    QCOMPARE(store.value(QStringLiteral("DefFile")).toString(), m_path);
}

void TestQuitSave::killAfterTheAutosaveLosesNothing()
{
    QVERIFY(startAndDelete());
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(m_path), 10000);
    QTest::qWait(300);
    m_process->kill();
    QVERIFY(m_process->waitForFinished(10000));
    QCOMPARE(namesOnDisk(), QStringList{QStringLiteral("keep me")});
}

QTEST_MAIN(TestQuitSave)
#include "tst_quitsave.moc"
