#include "storage/safesave.h"
#include "support/filebytes.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

// A save killed at any moment leaves the whole old document or the whole new one, and nothing that looks like one.
class TestCrashSave : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void killedSavesLeaveOldOrNew();
};

namespace {

const QString Qbx = QStringLiteral(QUILLBOX_BINARY_DIR "/qbx");

QStringList generate(const QString &path, int items, int seed)
{
    return {"generate", "--items", QString::number(items), "--seed", QString::number(seed), path};
}

} // namespace

void TestCrashSave::killedSavesLeaveOldOrNew()
{
    QVERIFY2(QFile::exists(Qbx), "build the qbx target first");
    QTemporaryDir reference;
    QTemporaryDir work;
    const QString oldPath = reference.filePath("old.qbx");
    const int newItems = 40000;
    QCOMPARE(QProcess::execute(Qbx, generate(oldPath, 2000, 1)), 0);
    const QByteArray oldBytes = FileBytes::read(oldPath);

    const QString target = work.filePath("document.qbx");
    const QStringList arguments = generate(target, newItems, 2);
    // How long a whole run takes, so the kills spread over all of it.
    QVERIFY(QFile::copy(oldPath, target));
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(QProcess::execute(Qbx, arguments), 0);
    const qint64 runMicroseconds = timer.nsecsElapsed() / 1000;
    const QByteArray newBytes = FileBytes::read(target);
    QVERIFY(oldBytes != newBytes && !oldBytes.isEmpty());

    const quint32 seed = QRandomGenerator::global()->generate();
    qInfo("kill moments from seed %u over %lld us", seed, runMicroseconds);
    QRandomGenerator random(seed);
    int keptOld = 0;
    int gotNew = 0;
    const int kills = 200;
    for (int i = 0; i < kills; ++i) {
        QFile::remove(target);
        QVERIFY(QFile::copy(oldPath, target));
        QProcess process;
        process.start(Qbx, arguments);
        QVERIFY(process.waitForStarted());
        // Up to three times the measured run: on a loaded machine a run takes longer than it did when measured, and
        // some kills must still land after the replacement.
        QThread::usleep(random.bounded(quint64(runMicroseconds * 3) + 1));
        process.kill(); // SIGKILL
        QVERIFY(process.waitForFinished());

        const QByteArray onDisk = FileBytes::read(target);
        QVERIFY2(onDisk == oldBytes || onDisk == newBytes, qPrintable(QStringLiteral("kill %1").arg(i)));
        (onDisk == oldBytes ? keptOld : gotNew)++;

        // A killed save leaves at most a hidden temporary file no listing of documents shows; cleared for the next
        // round.
        for (const QString &file : QDir(work.path()).entryList(QDir::Files | QDir::Hidden)) {
            QVERIFY2(file == "document.qbx" || (SafeSave::isTemporaryName(file) && !file.endsWith(".qbx")),
                     qPrintable(file));
            QVERIFY(file == "document.qbx" || QDir(work.path()).remove(file));
        }
    }
    qInfo("%d kills kept the old document, %d found the new one", keptOld, gotNew);
    // The kills must have landed both before and after the replacement.
    QVERIFY(keptOld > 0 && gotNew > 0);
}

QTEST_GUILESS_MAIN(TestCrashSave)
#include "tst_crashsave.moc"
