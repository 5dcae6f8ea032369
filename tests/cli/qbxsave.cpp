// Around the files qbx writes: its own document, failing outputs, two writers, a terminal.
#include "support/qbxprocess.h"

#include "storage/documentlock.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>

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

    static int itemCount(const QString &path)
    {
        return qbx({QStringLiteral("check"), path}).out.trimmed().split(' ').value(4).toInt();
    }

private Q_SLOTS:
    // Each command that prints a document checks its output to the end.
    void standardOutputFailures()
    {
        if (!QFileInfo::exists(QStringLiteral("/dev/full")))
            QSKIP("this system has no /dev/full");
        const QString path = document(QStringLiteral("output.qbx"));
        for (const QStringList &arguments :
             {QStringList{"dump", path}, QStringList{"find", path, "--name", "e"}, QStringList{"view", path}}) {
            QCOMPARE(qbx(arguments, {{}, QStringLiteral("/dev/full")}),
                     refused(5, "qbx: cannot write the standard output: disk full\n"));
            QCOMPARE(qbx(arguments, {{}, QStringLiteral("/dev/null")}).status, 0);
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
            QVERIFY2(run.status == 5 && run.err.contains("is the document being read"), run.err.constData());
            QCOMPARE(fileBytes(path), before);
        }
    }

    void twoWritersBothSurvive()
    {
        // Two imports into one document at once: neither one's 5 items may be lost.
        const QString path = document(QStringLiteral("shared.qbx"), 20);
        const QStringList arguments{"import", "doc", path, document(QStringLiteral("other.qbx"), 5), "--into", "0"};
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
        const QbxOptions lockWait{{}, {}, {{QStringLiteral("QBX_LOCK_TIMEOUT"), QStringLiteral("1")}}};
        const QStringList apply{"apply", path, "--to", "1", "--priority", "3"};
        QCOMPARE(qbx(apply, lockWait), refused(6, "qbx: " + QFile::encodeName(path) +
                                                      " is being changed by another program; try again when it "
                                                      "is done\n"));
        QCOMPARE(fileBytes(path), before);
        lock.unlock();
        QCOMPARE(qbx(apply, lockWait).status, 0);
        QVERIFY(fileBytes(path) != before);
    }

    void exportWithDeleteSaysWhatStayed()
    {
        // Item 1 keeps children not chosen, so it stays; the last item has none, so it goes.
        const QString path = document(QStringLiteral("partial.qbx"));
        const QString out = m_dir.filePath(QStringLiteral("partial-out.qbx"));
        QCOMPARE(qbx(QStringList{"export", "items", path, out, "--choice", "3", "--select", "1,30", "--delete"}),
                 printed("2 item(s) exported. 1 exported item(s) stayed in the document because they hold items "
                         "that were not exported.\n"));
        QCOMPARE(itemCount(path), 29);
        QCOMPARE(itemCount(out), 2);
    }

    void passwordOnATerminal()
    {
        const QString script = QStandardPaths::findExecutable(QStringLiteral("script"));
        if (script.isEmpty())
            QSKIP("the script tool, which gives qbx a terminal, is not installed");
        QProcess process;
        process.start(script, {"-qec", QbxProgram + " password " + document(QStringLiteral("pw.qbx")), "/dev/null"});
        QVERIFY(process.waitForStarted());
        // Each line only once its prompt is there, as a person would type it.
        QByteArray seen;
        for (const char *answer : {"", "hunter22", "hunter22"}) {
            const qsizetype prompts = seen.count(':');
            QTRY_VERIFY_WITH_TIMEOUT((seen += process.readAll()).count(':') > prompts, 10000);
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
