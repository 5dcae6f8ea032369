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
    QTemporaryDir m_dir;

    QString document(const QString &name, int items = 30)
    {
        const QString path = m_dir.filePath(name);
        QFile::remove(path);
        qbx({QStringLiteral("generate"), QStringLiteral("--items"), QString::number(items), path});
        return path;
    }

private Q_SLOTS:
    // What stands in the way of a write is the safe save's to judge; each
    // command reports it with its status and leaves the target as it was.
    void fifoTarget()
    {
        const QString path = document(QStringLiteral("device.qbx"));
        const QString pipe = m_dir.filePath(QStringLiteral("pipe"));
        QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        for (const QStringList &arguments :
             {QStringList{"resave", path, pipe},
              QStringList{"export", "items", path, pipe, "--choice", "3", "--select", "1"}}) {
            QCOMPARE(qbx(arguments),
                     (QbxRun{5, "", "qbx: " + QFile::encodeName(pipe) + ": is a FIFO, not a regular file\n"}));
            struct stat info;
            QCOMPARE(::stat(QFile::encodeName(pipe).constData(), &info), 0);
            QVERIFY(S_ISFIFO(info.st_mode));
        }
    }

    // Each command that prints a document checks its output to the end.
    void standardOutputFailures()
    {
        if (!QFileInfo::exists(QStringLiteral("/dev/full")))
            QSKIP("this system has no /dev/full");
        const QString path = document(QStringLiteral("output.qbx"));
        for (const QStringList &arguments :
             {QStringList{"dump", path}, QStringList{"find", path, "--name", "e"}, QStringList{"view", path}}) {
            QCOMPARE(qbx(arguments, {{}, QStringLiteral("/dev/full"), {}, {}}),
                     (QbxRun{5, "", "qbx: cannot write the standard output: disk full\n"}));
            QCOMPARE(qbx(arguments, {{}, QStringLiteral("/dev/null"), {}, {}}).status, 0);
        }
    }

    // Every command that writes a file names its own document as the source.
    void exportOntoItsOwnDocument()
    {
        const QString path = document(QStringLiteral("own.qbx"));
        const QByteArray before = fileBytes(path);
        for (const QStringList &arguments :
             {QStringList{"export", "xml", path, path},
              QStringList{"export", "items", path, path, "--choice", "3", "--select", "1", "--delete"},
              QStringList{"export", "branch", path, "1", path}}) {
            const QbxRun run = qbx(arguments);
            QCOMPARE(run.status, 5);
            QVERIFY2(run.err.contains("is the document being read"), run.err.constData());
            QCOMPARE(fileBytes(path), before);
        }
    }

    void twoWritersBothSurvive()
    {
        // Two imports into one document at the same moment: each adds the other
        // document's 5 items, and neither addition may be lost.
        const QString path = document(QStringLiteral("shared.qbx"), 20);
        const QString other = document(QStringLiteral("other.qbx"), 5);
        const QStringList arguments{QStringLiteral("import"), QStringLiteral("doc"), path, other,
                                    QStringLiteral("--into"), QStringLiteral("0")};
        for (int round = 0; round < 6; ++round) {
            const int before = itemCount(path);
            QProcess first;
            QProcess second;
            startQbx(first, arguments);
            startQbx(second, arguments);
            QCOMPARE(finishQbx(first).status, 0);
            QCOMPARE(finishQbx(second).status, 0);
            QCOMPARE(itemCount(path), before + 10);
        }
        QCOMPARE(QDir(m_dir.path()).entryList({QStringLiteral(".shared.qbx.*")}, QDir::Files | QDir::Hidden),
                 QStringList());
    }

    void heldDocumentTimesOut()
    {
        const QString path = document(QStringLiteral("held.qbx"));
        const QByteArray before = fileBytes(path);
        DocumentLock lock(path);
        QVERIFY(lock.lock(0));
        const QbxOptions lockWait{{}, {}, {}, {{QStringLiteral("QBX_LOCK_TIMEOUT"), QStringLiteral("1")}}};
        const QStringList apply{"apply", path, "--to", "1", "--priority", "3"};
        QCOMPARE(qbx(apply, lockWait),
                 (QbxRun{6, "",
                         "qbx: " + QFile::encodeName(path) +
                             " is being changed by another program; try again when it is done\n"}));
        QCOMPARE(fileBytes(path), before);
        lock.unlock();
        QCOMPARE(qbx(apply, lockWait).status, 0);
        QVERIFY(fileBytes(path) != before);
    }

    void exportWithDeleteSaysWhatStayed()
    {
        // Item 1 has children that are not chosen: it is written but stays.
        // The last item in file order has no children: it goes.
        const QString path = document(QStringLiteral("partial.qbx"));
        const QString out = m_dir.filePath(QStringLiteral("partial-out.qbx"));
        QCOMPARE(qbx(QStringList{"export", "items", path, out, "--choice", "3", "--select", "1,30", "--delete"}),
                 (QbxRun{0,
                         "2 item(s) exported. 1 exported item(s) stayed in the document because they hold items "
                         "that were not exported.\n",
                         ""}));
        QCOMPARE(itemCount(path), 29);
        QCOMPARE(itemCount(out), 2);
    }

    void passwordOnATerminal()
    {
        const QString script = QStandardPaths::findExecutable(QStringLiteral("script"));
        if (script.isEmpty())
            QSKIP("the script tool, which gives qbx a terminal, is not installed");
        const QString path = document(QStringLiteral("password.qbx"));
        QProcess process;
        process.start(script, {QStringLiteral("-qec"), qbxProgram() + QStringLiteral(" password ") + path,
                               QStringLiteral("/dev/null")});
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
        for (const char *shown : {"Current password:", "New password:", "Confirm:", "Password set"})
            QVERIFY2(seen.contains(shown), seen.constData());
        QVERIFY2(!seen.contains("hunter22"), seen.constData()); // typed without echo
    }
};

QBX_SUITE(TestQbxSave)
#include "qbxsave.moc"
