// What qbx does around the files it writes: targets that are no files, its
// own document as a target, outputs that fail, two writers at once.
#include "support/qbxprocess.h"

#include "storage/documentlock.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

namespace {

// "path: loaded, version 551, N items" -> N
int itemCount(const QString &path)
{
    const QByteArray line = qbx({QStringLiteral("check"), path}).out.trimmed();
    const qsizetype at = line.lastIndexOf(", ");
    return at < 0 ? -1 : line.mid(at + 2).split(' ').value(0).toInt();
}

} // namespace

class TestQbxSave : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void fifoTarget_data();
    void fifoTarget();
    void standardOutputFailures_data();
    void standardOutputFailures();
    void exportOntoItsOwnDocument_data();
    void exportOntoItsOwnDocument();
    void twoWritersBothSurvive();
    void heldDocumentTimesOut();
    void exportWithDeleteSaysWhatStayed();
    void passwordOnATerminal();

private:
    QString document(const QString &name, int items = 30);
    QTemporaryDir m_dir;
};

QString TestQbxSave::document(const QString &name, int items)
{
    const QString path = m_dir.filePath(name);
    QFile::remove(path);
    qbx({QStringLiteral("generate"), QStringLiteral("--items"), QString::number(items), path});
    return path;
}

// What stands in the way of a write is the safe save's to judge; each
// command reports it with its status and leaves the target as it was.
void TestQbxSave::fifoTarget_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("resave") << QStringList{"resave", "DOC", "OUT"};
    QTest::newRow("items export") << QStringList{"export", "items", "DOC", "OUT", "--choice", "3", "--select", "1"};
}

void TestQbxSave::fifoTarget()
{
    QFETCH(QStringList, arguments);
    const QString path = document(QStringLiteral("device.qbx"));
    const QString pipe = m_dir.filePath(QStringLiteral("pipe"));
    QFile::remove(pipe);
    QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    arguments.replaceInStrings(QStringLiteral("DOC"), path).replaceInStrings(QStringLiteral("OUT"), pipe);
    const QbxRun run = qbx(arguments);
    QCOMPARE(run.status, 5);
    QCOMPARE(run.err, "qbx: " + QFile::encodeName(pipe) + ": is a FIFO, not a regular file\n");
    struct stat info;
    QCOMPARE(::stat(QFile::encodeName(pipe).constData(), &info), 0);
    QVERIFY(S_ISFIFO(info.st_mode));
}

// Each command that prints a document checks its output to the end.
void TestQbxSave::standardOutputFailures_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("dump") << QStringList{"dump", "DOC"};
    QTest::newRow("find") << QStringList{"find", "DOC", "--name", "e"};
    QTest::newRow("view") << QStringList{"view", "DOC"};
}

void TestQbxSave::standardOutputFailures()
{
    QFETCH(QStringList, arguments);
    if (!QFileInfo::exists(QStringLiteral("/dev/full")))
        QSKIP("this system has no /dev/full");
    arguments.replaceInStrings(QStringLiteral("DOC"), document(QStringLiteral("output.qbx")));
    const QbxRun full = qbx(arguments, {{}, QStringLiteral("/dev/full"), {}, {}});
    QCOMPARE(full.status, 5);
    QCOMPARE(full.err, QByteArray("qbx: cannot write the standard output: disk full\n"));
    QCOMPARE(qbx(arguments, {{}, QStringLiteral("/dev/null"), {}, {}}).status, 0);
}

// Every command that writes a file names its own document as the source.
void TestQbxSave::exportOntoItsOwnDocument_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("xml") << QStringList{"export", "xml", "DOC", "DOC"};
    QTest::newRow("items with delete") << QStringList{"export", "items", "DOC", "DOC", "--choice", "3", "--select",
                                                      "1", "--delete"};
    QTest::newRow("branch") << QStringList{"export", "branch", "DOC", "1", "DOC"};
}

void TestQbxSave::exportOntoItsOwnDocument()
{
    QFETCH(QStringList, arguments);
    const QString path = document(QStringLiteral("own.qbx"));
    const QByteArray before = fileBytes(path);
    const QbxRun run = qbx(arguments.replaceInStrings(QStringLiteral("DOC"), path));
    QCOMPARE(run.status, 5);
    QVERIFY2(run.err.contains("is the document being read"), run.err.constData());
    QCOMPARE(fileBytes(path), before);
}

void TestQbxSave::twoWritersBothSurvive()
{
    // Two imports into one document at the same moment: each adds the other
    // document's 5 items, and neither addition may be lost.
    const QString path = document(QStringLiteral("shared.qbx"), 20);
    const QString other = document(QStringLiteral("other.qbx"), 5);
    for (int round = 0; round < 6; ++round) {
        const int before = itemCount(path);
        QProcess first;
        QProcess second;
        const QStringList arguments{QStringLiteral("import"), QStringLiteral("doc"), path, other,
                                    QStringLiteral("--into"), QStringLiteral("0")};
        startQbx(first, arguments);
        startQbx(second, arguments);
        const QbxRun a = finishQbx(first);
        const QbxRun b = finishQbx(second);
        QCOMPARE(a.status, 0);
        QCOMPARE(b.status, 0);
        QCOMPARE(itemCount(path), before + 10);
    }
    QCOMPARE(QDir(m_dir.path()).entryList({QStringLiteral(".shared.qbx.*")}, QDir::Files | QDir::Hidden),
             QStringList());
}

void TestQbxSave::heldDocumentTimesOut()
{
    const QString path = document(QStringLiteral("held.qbx"));
    const QByteArray before = fileBytes(path);
    DocumentLock lock(path);
    QVERIFY(lock.lock(0));
    const QbxOptions lockWait{{}, {}, {}, {{QStringLiteral("QBX_LOCK_TIMEOUT"), QStringLiteral("1")}}};
    const QStringList apply{QStringLiteral("apply"),      path,
                            QStringLiteral("--to"),       QStringLiteral("1"),
                            QStringLiteral("--priority"), QStringLiteral("3")};
    const QbxRun waited = qbx(apply, lockWait);
    QCOMPARE(waited.status, 6);
    QCOMPARE(waited.err,
             "qbx: " + QFile::encodeName(path) + " is being changed by another program; try again when it is done\n");
    QCOMPARE(fileBytes(path), before);
    lock.unlock();
    QCOMPARE(qbx(apply, lockWait).status, 0);
    QVERIFY(fileBytes(path) != before);
}

void TestQbxSave::exportWithDeleteSaysWhatStayed()
{
    // Item 1 has children that are not chosen: it is written but stays.
    // The last item in file order has no children: it goes.
    const QString path = document(QStringLiteral("partial.qbx"));
    const QString out = m_dir.filePath(QStringLiteral("partial-out.qbx"));
    const QbxRun kept =
        qbx({QStringLiteral("export"), QStringLiteral("items"), path, out, QStringLiteral("--choice"),
             QStringLiteral("3"), QStringLiteral("--select"), QStringLiteral("1,30"), QStringLiteral("--delete")});
    QCOMPARE(kept.status, 0);
    QCOMPARE(kept.out, QByteArray("2 item(s) exported. 1 exported item(s) stayed in the document because they "
                                  "hold items that were not exported.\n"));
    QCOMPARE(itemCount(path), 29);
    QCOMPARE(itemCount(out), 2);
}

void TestQbxSave::passwordOnATerminal()
{
    const QString script = QStandardPaths::findExecutable(QStringLiteral("script"));
    if (script.isEmpty())
        QSKIP("the script tool, which gives qbx a terminal, is not installed");
    const QString path = document(QStringLiteral("password.qbx"));
    QProcess process;
    process.start(
        script, {QStringLiteral("-qec"), qbxProgram() + QStringLiteral(" password ") + path, QStringLiteral("/dev/null")});
    QVERIFY(process.waitForStarted());
    // Each line only once its prompt is there, as a person would type it.
    QByteArray seen;
    for (const char *answer : {"", "hunter22", "hunter22"}) {
        QElapsedTimer timer;
        timer.start();
        const int prompts = seen.count(':');
        while (seen.count(':') == prompts && timer.elapsed() < 10000) {
            process.waitForReadyRead(200);
            seen += process.readAll();
        }
        process.write(QByteArray(answer) + "\n");
    }
    process.waitForFinished(10000);
    seen += process.readAll();
    QCOMPARE(process.exitCode(), 0);
    QVERIFY2(seen.contains("Current password:"), seen.constData());
    QVERIFY(seen.contains("New password:"));
    QVERIFY(seen.contains("Confirm:"));
    QVERIFY(seen.contains("Password set"));
    QVERIFY2(!seen.contains("hunter22"), seen.constData()); // typed without echo
}

QBX_SUITE(TestQbxSave)
#include "qbxsave.moc"
