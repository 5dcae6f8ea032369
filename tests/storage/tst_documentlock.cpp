#include "storage/documentlock.h"
#include "storage/filefingerprint.h"
#include "support/filebytes.h"

#include <QDir>
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

void TestDocumentLock::fingerprintSeesEveryKindOfChange()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("a.qbx");
    const QByteArray name = QFile::encodeName(path);
    QVERIFY(FileBytes::write(path, "content"));
    FileFingerprint print = FileFingerprint::of(path);
    QVERIFY(print.exists && print.matches(path));
    struct stat before;
    QCOMPARE(::stat(name.constData(), &before), 0);
    const timespec times[2] = {before.st_atim, before.st_mtim};
    // Replaced by another file of the same size and time.
    QVERIFY(FileBytes::write(dir.filePath("b.qbx"), "CONTENT"));
    QCOMPARE(::utimensat(AT_FDCWD, QFile::encodeName(dir.filePath("b.qbx")).constData(), times, 0), 0);
    QCOMPARE(::rename(QFile::encodeName(dir.filePath("b.qbx")).constData(), name.constData()), 0);
    QVERIFY(!print.matches(path));
    // Rewritten in place at the same size.
    print = FileFingerprint::of(path);
    QThread::msleep(20);
    QVERIFY(FileBytes::write(path, "CONTENX"));
    QVERIFY(!print.matches(path));
    // Grown, the time put back.
    print = FileFingerprint::of(path);
    QCOMPARE(::stat(name.constData(), &before), 0);
    QFile file(path);
    QVERIFY(file.open(QIODevice::Append) && file.write("!") == 1);
    file.close();
    const timespec grown[2] = {before.st_atim, before.st_mtim};
    QCOMPARE(::utimensat(AT_FDCWD, name.constData(), grown, 0), 0);
    QVERIFY(!print.matches(path));
    print = FileFingerprint::of(path);
    QVERIFY(QFile::remove(path));
    QVERIFY(!print.matches(path));
}

QTEST_GUILESS_MAIN(TestDocumentLock)
#include "tst_documentlock.moc"
