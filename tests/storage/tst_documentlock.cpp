#include "storage/documentlock.h"
#include "storage/filefingerprint.h"
#include "support/filebytes.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

class TestDocumentLock : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void oneHolderAtATimeUnderEveryName();
    void unwritableFolderLocksTheFileItself();
    void fingerprintSeesEveryKindOfChange_data();
    void fingerprintSeesEveryKindOfChange();
};

void TestDocumentLock::oneHolderAtATimeUnderEveryName()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("a.qbx");
    const QString link = dir.filePath("link.qbx");
    QVERIFY(FileBytes::write(path, "doc"));
    QVERIFY(QFile::link(QStringLiteral("a.qbx"), link));
    DocumentLock first(path);
    DocumentLock second(path);
    DocumentLock byLink(link);
    QVERIFY(first.lock(0));
    QVERIFY(first.lock(0)); // the holder asking again
    QVERIFY(!second.lock(100));
    QVERIFY(!byLink.lock(50));
    QCOMPARE(DocumentLock::lockPath(link), dir.filePath(QStringLiteral(".a.qbx.lock")));
    first.unlock();
    QVERIFY(second.lock(0));
    second.unlock();
    // Nothing is left beside the document once the lock is given back.
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList({"a.qbx", "link.qbx"}));
}

void TestDocumentLock::unwritableFolderLocksTheFileItself()
{
    if (::geteuid() == 0)
        QSKIP("root writes into any folder; run as an ordinary user to check the fallback");
    QTemporaryDir dir;
    const QString path = dir.filePath("a.qbx");
    QVERIFY(FileBytes::write(path, "doc"));
    QCOMPARE(::chmod(QFile::encodeName(dir.path()).constData(), 0555), 0);
    DocumentLock first(path);
    DocumentLock second(path);
    const bool firstLocked = first.lock(0);
    const bool secondLocked = second.lock(50);
    ::chmod(QFile::encodeName(dir.path()).constData(), 0755);
    QVERIFY(firstLocked && !secondLocked);
}

void TestDocumentLock::fingerprintSeesEveryKindOfChange_data()
{
    QTest::addColumn<QString>("change");
    QTest::newRow("replaced by a file of the same size and time") << "replace";
    QTest::newRow("rewritten in place, same size") << "rewrite";
    QTest::newRow("grown, the time put back") << "append";
    QTest::newRow("removed") << "remove";
    QTest::newRow("untouched") << "none";
}

void TestDocumentLock::fingerprintSeesEveryKindOfChange()
{
    QFETCH(QString, change);
    QTemporaryDir dir;
    const QString path = dir.filePath("a.qbx");
    const QString other = dir.filePath("b.qbx");
    QVERIFY(FileBytes::write(path, "content"));
    const FileFingerprint loaded = FileFingerprint::of(path);
    QVERIFY(loaded.exists);
    struct stat before;
    QCOMPARE(::stat(QFile::encodeName(path).constData(), &before), 0);
    const timespec times[2] = {before.st_atim, before.st_mtim};
    if (change == QLatin1String("replace")) {
        QVERIFY(FileBytes::write(other, "CONTENT"));
        QCOMPARE(::utimensat(AT_FDCWD, QFile::encodeName(other).constData(), times, 0), 0);
        QCOMPARE(::rename(QFile::encodeName(other).constData(), QFile::encodeName(path).constData()), 0);
    } else if (change == QLatin1String("rewrite")) {
        QThread::msleep(20);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite) && file.write("CONTENT") == 7);
    } else if (change == QLatin1String("append")) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::Append) && file.write("!") == 1);
        file.close();
        QCOMPARE(::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0), 0);
    } else if (change == QLatin1String("remove")) {
        QVERIFY(QFile::remove(path));
    }
    QCOMPARE(loaded.matches(path), change == QLatin1String("none"));
}

QTEST_GUILESS_MAIN(TestDocumentLock)
#include "tst_documentlock.moc"
