#include "model/document.h"
#include "storage/documentfile.h"
#include "tools/documentgenerator.h"
#include "storage/safesave.h"

#include <QDir>
#include <QFile>
#include <QIODevice>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

namespace {

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

void writeAll(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

QStringList filesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
}

} // namespace

class TestSafeSave : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writesAndReplaces();
    void writerFailingHalfwayLeavesTheOldFile();
    void diskFullHalfwayLeavesTheOldDocument();
    void unwritableTargets();
    void keepsPermissionsAndFollowsLinks();
    void temporaryNames();
};

void TestSafeSave::writesAndReplaces()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.qbx"));
    QVERIFY(SafeSave::write(path, QByteArray("first")));
    QCOMPARE(readAll(path), QByteArray("first"));
    QVERIFY(SafeSave::write(path, QByteArray("second, longer")));
    QCOMPARE(readAll(path), QByteArray("second, longer"));
    QVERIFY(SafeSave::write(path, QByteArray()));
    QCOMPARE(readAll(path), QByteArray());
    QCOMPARE(filesIn(dir.path()), QStringList{QStringLiteral("a.qbx")});
}

void TestSafeSave::writerFailingHalfwayLeavesTheOldFile()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.qbx"));
    writeAll(path, "old content");
    QString error;
    const bool saved = SafeSave::write(
        path,
        [](QIODevice &out) {
            out.write(QByteArray(100000, 'x'));
            return false; // gives up halfway
        },
        &error);
    QVERIFY(!saved);
    QCOMPARE(readAll(path), QByteArray("old content"));
    QCOMPARE(filesIn(dir.path()), QStringList{QStringLiteral("a.qbx")});
}

void TestSafeSave::diskFullHalfwayLeavesTheOldDocument()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("doc.qbx"));
    Document small;
    DocumentGenerator::generate(&small, {10, 1, false, 0});
    QVERIFY(DocumentFile::save(small, path));
    const QByteArray before = readAll(path);
    Document large;
    DocumentGenerator::generate(&large, {20000, 2, false, 0});

    // A file size limit makes the writes fail partway, as a full disk would.
    rlimit saved;
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &saved), 0);
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limited = saved;
    limited.rlim_cur = 1000000; // under a quarter of the new document
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &limited), 0);
    const bool ok = DocumentFile::save(large, path);
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, oldHandler);

    QVERIFY(!ok);
    QCOMPARE(readAll(path), before);
    QCOMPARE(filesIn(dir.path()), QStringList{QStringLiteral("doc.qbx")});
    QVERIFY(DocumentFile::toBytes(large).size() > 4 * 1000000);
}

void TestSafeSave::unwritableTargets()
{
    QTemporaryDir dir;
    QString error;
    QVERIFY(!SafeSave::write(dir.filePath(QStringLiteral("missing/a.qbx")), QByteArray("x"), &error));
    QVERIFY(!error.isEmpty());
    // A folder in the way of the target is left alone.
    QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("b.qbx")));
    QVERIFY(!SafeSave::write(dir.filePath(QStringLiteral("b.qbx")), QByteArray("x")));
    QVERIFY(QFileInfo(dir.filePath(QStringLiteral("b.qbx"))).isDir());
    QCOMPARE(filesIn(dir.path()), QStringList());
}

void TestSafeSave::keepsPermissionsAndFollowsLinks()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.qbx"));
    writeAll(path, "old");
    QVERIFY(QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner));
    QVERIFY(SafeSave::write(path, QByteArray("new")));
    struct stat info;
    QCOMPARE(::stat(QFile::encodeName(path).constData(), &info), 0);
    QCOMPARE(info.st_mode & 0777, mode_t(0600));

    const QString link = dir.filePath(QStringLiteral("link.qbx"));
    QVERIFY(QFile::link(path, link));
    QVERIFY(SafeSave::write(link, QByteArray("through the link")));
    QVERIFY(QFileInfo(link).isSymLink());
    QCOMPARE(readAll(path), QByteArray("through the link"));
}

void TestSafeSave::temporaryNames()
{
    QVERIFY(SafeSave::isTemporaryName(QStringLiteral(".a.qbx.k3j4h5g6.part")));
    QVERIFY(!SafeSave::isTemporaryName(QStringLiteral("a.qbx")));
    QVERIFY(!SafeSave::isTemporaryName(QStringLiteral(".hidden.qbx")));

    // While the writer runs, the one extra file is hidden and not a document.
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.qbx"));
    QStringList during;
    QVERIFY(SafeSave::write(path, [&](QIODevice &out) {
        during = filesIn(dir.path());
        return out.write("x") == 1;
    }));
    QCOMPARE(during.size(), 1);
    QVERIFY(SafeSave::isTemporaryName(during[0]));
    QVERIFY(!during[0].endsWith(QLatin1String(".qbx")));
    QCOMPARE(filesIn(dir.path()), QStringList{QStringLiteral("a.qbx")});
}

QTEST_GUILESS_MAIN(TestSafeSave)
#include "tst_safesave.moc"
