#include "model/document.h"
#include "model/item.h"
#include "storage/documentfile.h"
#include "storage/safesave.h"
#include "tools/documentgenerator.h"

#include <QDir>
#include <QFile>
#include <QIODevice>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <QDateTime>
#include <QProcess>
#include <QStandardPaths>

#include <csignal>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <thread>
#include <unistd.h>

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
    void failedSaveLeavesTheOldFile();
    void refusedTargets_data();
    void refusedTargets();
    void keepsWhatTheFileIs_data();
    void keepsWhatTheFileIs();
    void inPlaceWriteFailingRestoresTheOldContent();
    void readersWaitForARewriteInPlace();
    void privateWhileSaving();
    void staleTemporariesOfItsOwnName();
    void aLongSaveKeepsItsTemporary();
    void interruptedSaveLeavesNoTemporary_data();
    void interruptedSaveLeavesNoTemporary();
    void temporaryNames();
};

void TestSafeSave::failedSaveLeavesTheOldFile()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("doc.qbx"));
    writeAll(path, "old content");
    QVERIFY(!SafeSave::write(path, [](QIODevice &out) {
        out.write(QByteArray(100000, 'x'));
        return false; // gives up halfway
    }));
    QCOMPARE(readAll(path), QByteArray("old content"));
    QCOMPARE(filesIn(dir.path()), QStringList{QStringLiteral("doc.qbx")});

    // A file size limit makes the writes fail partway, as a full disk would.
    Document large;
    DocumentGenerator::generate(&large, {20000, 2, false, 0});
    QVERIFY(DocumentFile::toBytes(large).size() > 4 * 1000000);
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
    QCOMPARE(readAll(path), QByteArray("old content"));
    QCOMPARE(filesIn(dir.path()), QStringList{QStringLiteral("doc.qbx")});
}

// What is in the way of a save, and what the failure says.
void TestSafeSave::refusedTargets_data()
{
    QTest::addColumn<QString>("setup");
    QTest::addColumn<QString>("target"); // relative to the folder
    QTest::addColumn<int>("failure");
    QTest::addColumn<QString>("says");

    using F = SafeSave::Failure;
    // A device node of the test's own: under a fault, no device of the machine is replaced.
    QTest::newRow("device") << "device"
                            << "null" << int(F::NotRegular) << "null: is a device";
    QTest::newRow("FIFO") << "fifo"
                          << "pipe" << int(F::NotRegular) << "pipe: is a FIFO";
    QTest::newRow("link chain to a FIFO") << "fifo"
                                          << "link2" << int(F::NotRegular) << "pipe: is a FIFO";
    QTest::newRow("directory") << "folder"
                               << "sub" << int(F::IsDirectory) << "sub: is a directory";
    QTest::newRow("folder missing") << ""
                                    << "missing/a.qbx" << int(F::FolderMissing) << "missing/a.qbx: folder missing";
    QTest::newRow("link loop") << "loop"
                               << "loop1" << int(F::LinkLoop) << "loop1: too many links";
    QTest::newRow("the source itself") << "source"
                                       << "doc.qbx" << int(F::SameAsSource) << "doc.qbx: is the document being read";
    QTest::newRow("the source through a link")
        << "source"
        << "link.qbx" << int(F::SameAsSource) << "link.qbx: is the document being read";
    QTest::newRow("the source by a hard link")
        << "source"
        << "hard.qbx" << int(F::SameAsSource) << "hard.qbx: is the document being read";
}

void TestSafeSave::refusedTargets()
{
    QFETCH(QString, setup);
    QFETCH(QString, target);
    QFETCH(int, failure);
    QFETCH(QString, says);
    QTemporaryDir dir;
    const QDir folder(dir.path());
    const auto at = [&](const char *name) { return QFile::encodeName(folder.filePath(QLatin1String(name))); };
    if (setup == QLatin1String("device")) {
        if (::mknod(at("null").constData(), S_IFCHR | 0666, makedev(1, 3)) != 0)
            QSKIP("making a device node takes root");
    } else if (setup == QLatin1String("fifo")) {
        QCOMPARE(::mkfifo(at("pipe").constData(), 0644), 0);
        QCOMPARE(::symlink("pipe", at("link1").constData()), 0);
        QCOMPARE(::symlink("link1", at("link2").constData()), 0);
    } else if (setup == QLatin1String("folder")) {
        QVERIFY(folder.mkdir(QStringLiteral("sub")));
    } else if (setup == QLatin1String("loop")) {
        QCOMPARE(::symlink("loop2", at("loop1").constData()), 0);
        QCOMPARE(::symlink("loop1", at("loop2").constData()), 0);
    } else if (setup == QLatin1String("source")) {
        writeAll(folder.filePath(QStringLiteral("doc.qbx")), "the document");
        QCOMPARE(::symlink("doc.qbx", at("link.qbx").constData()), 0);
        QCOMPARE(::link(at("doc.qbx").constData(), at("hard.qbx").constData()), 0);
    }
    const QStringList before = filesIn(dir.path());
    const QString path = target.startsWith(QLatin1Char('/')) ? target : folder.filePath(target);
    QString error;
    SafeSave::Options options;
    options.source = folder.filePath(QStringLiteral("doc.qbx"));
    QVERIFY(!SafeSave::write(path, QByteArray("new content"), &error, options));
    QCOMPARE(int(SafeSave::lastFailure()), failure);
    QVERIFY2(error.contains(says), qPrintable(error));
    // Nothing was created, replaced or turned into a regular file.
    QCOMPARE(filesIn(dir.path()), before);
    if (setup == QLatin1String("fifo")) {
        struct stat info;
        QCOMPARE(::lstat(at("pipe").constData(), &info), 0);
        QVERIFY(S_ISFIFO(info.st_mode));
    }
    if (setup == QLatin1String("source"))
        QCOMPARE(readAll(options.source), QByteArray("the document"));
}

// A save changes the content and nothing else about the file.
void TestSafeSave::keepsWhatTheFileIs_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("mode 0640") << "mode";
    QTest::newRow("link chain a -> b -> c") << "chain";
    QTest::newRow("relative link in another folder") << "relative";
    QTest::newRow("hard link") << "hard";
    QTest::newRow("user attribute") << "xattr";
    QTest::newRow("ACL") << "acl";
    QTest::newRow("another owner and group") << "owner";
}

void TestSafeSave::keepsWhatTheFileIs()
{
    QFETCH(QString, kind);
    QTemporaryDir dir;
    const QDir folder(dir.path());
    const QString file = folder.filePath(QStringLiteral("c.qbx"));
    const QByteArray name = QFile::encodeName(file);
    writeAll(file, "old");
    QString path = file;
    if (kind == QLatin1String("mode")) {
        QCOMPARE(::chmod(name.constData(), 0640), 0);
    } else if (kind == QLatin1String("chain")) {
        QCOMPARE(::symlink("c.qbx", QFile::encodeName(folder.filePath(QStringLiteral("b.qbx"))).constData()), 0);
        QCOMPARE(::symlink("b.qbx", QFile::encodeName(folder.filePath(QStringLiteral("a.qbx"))).constData()), 0);
        path = folder.filePath(QStringLiteral("a.qbx"));
    } else if (kind == QLatin1String("relative")) {
        QVERIFY(folder.mkdir(QStringLiteral("links")));
        QCOMPARE(::symlink("../c.qbx", QFile::encodeName(folder.filePath(QStringLiteral("links/b.qbx"))).constData()),
                 0);
        QCOMPARE(::symlink("links/b.qbx", QFile::encodeName(folder.filePath(QStringLiteral("a.qbx"))).constData()), 0);
        path = folder.filePath(QStringLiteral("a.qbx"));
    } else if (kind == QLatin1String("hard")) {
        path = folder.filePath(QStringLiteral("other.qbx"));
        QCOMPARE(::link(name.constData(), QFile::encodeName(path).constData()), 0);
        // Another owner, which a new file could be given, must not make a
        // file with two names lose one of them.
        if (::geteuid() == 0)
            QCOMPARE(::chown(name.constData(), 12345, 23456), 0);
    } else if (kind == QLatin1String("xattr")) {
        if (::setxattr(name.constData(), "user.colour", "blue", 4, 0) != 0)
            QSKIP("this file system takes no user attributes");
        QCOMPARE(::setxattr(name.constData(), "user.empty", "", 0, 0), 0); // an empty value is copied too
    } else if (kind == QLatin1String("acl")) {
        if (QStandardPaths::findExecutable(QStringLiteral("setfacl")).isEmpty())
            QSKIP("setfacl is not installed");
        if (QProcess::execute(QStringLiteral("setfacl"), {QStringLiteral("-m"), QStringLiteral("u:12345:r--"), file}) !=
            0)
            QSKIP("this file system takes no ACL");
    } else if (kind == QLatin1String("owner")) {
        if (::geteuid() != 0)
            QSKIP("giving a file to another owner needs root; run as root to check it");
        QCOMPARE(::chown(name.constData(), 12345, 23456), 0);
    }
    struct stat before;
    QCOMPARE(::stat(name.constData(), &before), 0);
    QString acl;
    const auto aclOf = [&] {
        QProcess getfacl;
        getfacl.start(QStringLiteral("getfacl"), {QStringLiteral("-c"), file});
        getfacl.waitForFinished();
        return QString::fromUtf8(getfacl.readAllStandardOutput());
    };
    if (kind == QLatin1String("acl"))
        acl = aclOf();

    QString error;
    QVERIFY2(SafeSave::write(path, QByteArray("new content"), &error), qPrintable(error));

    QCOMPARE(readAll(file), QByteArray("new content"));
    QCOMPARE(readAll(path), QByteArray("new content"));
    struct stat after;
    QCOMPARE(::stat(name.constData(), &after), 0);
    QCOMPARE(after.st_mode, before.st_mode);
    QCOMPARE(after.st_uid, before.st_uid);
    QCOMPARE(after.st_gid, before.st_gid);
    if (kind == QLatin1String("owner"))
        QVERIFY(after.st_uid == 12345 && after.st_gid == 23456);
    if (kind == QLatin1String("chain") || kind == QLatin1String("relative")) {
        QVERIFY(QFileInfo(path).isSymLink());
        QVERIFY(QFileInfo(folder.filePath(kind == QLatin1String("chain") ? QStringLiteral("b.qbx")
                                                                         : QStringLiteral("links/b.qbx")))
                    .isSymLink());
    }
    // A new file took the old one's place, all it was carried over; only a
    // file with two names is written in place, to stay one file.
    QCOMPARE(after.st_ino == before.st_ino, kind == QLatin1String("hard"));
    if (kind == QLatin1String("hard"))
        QCOMPARE(after.st_nlink, nlink_t(2));
    if (kind == QLatin1String("xattr")) {
        char value[16] = {};
        QCOMPARE(::getxattr(name.constData(), "user.colour", value, sizeof value), ssize_t(4));
        QCOMPARE(QByteArray(value), QByteArray("blue"));
        QCOMPARE(::getxattr(name.constData(), "user.empty", value, sizeof value), ssize_t(0));
    }
    if (kind == QLatin1String("acl")) {
        QVERIFY(acl.contains(QLatin1String("user:12345:r--")));
        QCOMPARE(aclOf(), acl);
    }
    QCOMPARE(filesIn(dir.path()).filter(QStringLiteral(".part")), QStringList());
}

void TestSafeSave::inPlaceWriteFailingRestoresTheOldContent()
{
    // A second name makes the save write in place; a writer that fails after
    // overwriting the start must leave the old content, under both names.
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.qbx"));
    const QString other = dir.filePath(QStringLiteral("b.qbx"));
    writeAll(path, QByteArray(3000000, 'o') + "end");
    QCOMPARE(::link(QFile::encodeName(path).constData(), QFile::encodeName(other).constData()), 0);
    QVERIFY(!SafeSave::write(path, [](QIODevice &out) {
        out.write(QByteArray(2500000, 'n')); // more than one block reaches the file
        return false;
    }));
    const QByteArray expected = QByteArray(3000000, 'o') + "end";
    QCOMPARE(readAll(path), expected);
    QCOMPARE(readAll(other), expected);
    QCOMPARE(filesIn(dir.path()), QStringList({QStringLiteral("a.qbx"), QStringLiteral("b.qbx")}));
}

void TestSafeSave::readersWaitForARewriteInPlace()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.qbx"));
    Document small;
    DocumentGenerator::generate(&small, {10, 1, false, 0});
    QVERIFY(DocumentFile::save(small, path));
    QCOMPARE(::link(QFile::encodeName(path).constData(),
                    QFile::encodeName(dir.filePath(QStringLiteral("b.qbx"))).constData()),
             0);
    Document large;
    DocumentGenerator::generate(&large, {2000, 2, false, 0});
    const QByteArray bytes = DocumentFile::toBytes(large);

    // A reader starts while only half of the new document is in the file.
    std::thread reader;
    DocumentFile::LoadResult result = DocumentFile::Damaged;
    qsizetype items = 0;
    QVERIFY(SafeSave::write(path, [&](QIODevice &out) {
        const qsizetype half = bytes.size() / 2;
        if (out.write(bytes.first(half)) != half)
            return false;
        reader = std::thread([&] {
            Document doc;
            result = DocumentFile::load(path, &doc);
            doc.root()->forEachDescendant([&items](Item *) { ++items; });
        });
        QThread::msleep(300);
        return out.write(bytes.sliced(half)) == bytes.size() - half;
    }));
    reader.join();
    QCOMPARE(result, DocumentFile::Loaded);
    QCOMPARE(items, qsizetype(2000));
}

void TestSafeSave::privateWhileSaving()
{
    // A 0600 document is never readable by others, not even while it is saved.
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("private.qbx"));
    writeAll(path, "secret");
    QCOMPARE(::chmod(QFile::encodeName(path).constData(), 0600), 0);
    const mode_t oldMask = ::umask(0);
    mode_t during = 0777;
    const bool saved = SafeSave::write(path, [&](QIODevice &out) {
        for (const QString &name : filesIn(dir.path())) {
            struct stat info;
            if (SafeSave::isTemporaryName(name) &&
                ::stat(QFile::encodeName(dir.filePath(name)).constData(), &info) == 0)
                during = info.st_mode & 0777;
        }
        return out.write("still secret") == 12;
    });
    ::umask(oldMask);
    QVERIFY(saved);
    QCOMPARE(during, mode_t(0600));

    // A new file is born as the umask says, no wider.
    const QString fresh = dir.filePath(QStringLiteral("new.qbx"));
    const mode_t mask = ::umask(027);
    QVERIFY(SafeSave::write(fresh, QByteArray("x")));
    ::umask(mask);
    struct stat info;
    QCOMPARE(::stat(QFile::encodeName(fresh).constData(), &info), 0);
    QCOMPARE(info.st_mode & 0777, mode_t(0640));
}

void TestSafeSave::staleTemporariesOfItsOwnName()
{
    QTemporaryDir dir;
    const QDir folder(dir.path());
    const QString path = folder.filePath(QStringLiteral("a.qbx"));
    writeAll(path, "old");
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    const auto leftover = [&](const char *name, qint64 age) {
        const QString file = folder.filePath(QLatin1String(name));
        writeAll(file, "left over");
        const timespec times[2] = {{time_t(now - age), 0}, {time_t(now - age), 0}};
        QCOMPARE(::utimensat(AT_FDCWD, QFile::encodeName(file).constData(), times, 0), 0);
    };
    leftover(".a.qbx.old111.part", 2 * 24 * 3600);   // older than a day
    leftover(".a.qbx.gone22.part", 10 * 60);         // no one holds it
    leftover(".a.qbx.olderv88.part", 2 * 24 * 3600); // an earlier version's eight letters
    leftover(".a.qbx.OLD999.part", 2 * 24 * 3600);   // not a tag this program writes
    leftover(".a.qbx.fresh3.part", 5);               // may be a save just begun
    leftover(".a.qbx.held44.part", 10 * 60);         // a save in progress holds it
    leftover(".ab.qbx.old555.part", 2 * 24 * 3600);  // another document's
    leftover(".a.qbx.x.old666.part", 2 * 24 * 3600); // the document "a.qbx.x"
    leftover(".a.qbx.old777.backup", 2 * 24 * 3600); // not a temporary file
    const int held =
        ::open(QFile::encodeName(folder.filePath(QStringLiteral(".a.qbx.held44.part"))).constData(), O_RDONLY);
    QVERIFY(held >= 0);
    QCOMPARE(::flock(held, LOCK_EX), 0);

    QVERIFY(SafeSave::write(path, QByteArray("new")));
    ::close(held);
    QCOMPARE(filesIn(dir.path()),
             QStringList({QStringLiteral(".a.qbx.OLD999.part"), QStringLiteral(".a.qbx.fresh3.part"),
                          QStringLiteral(".a.qbx.held44.part"), QStringLiteral(".a.qbx.old777.backup"),
                          QStringLiteral(".a.qbx.x.old666.part"), QStringLiteral(".ab.qbx.old555.part"),
                          QStringLiteral("a.qbx")}));
}

void TestSafeSave::aLongSaveKeepsItsTemporary()
{
    // A save that has run for minutes holds its temporary file: the clean-up
    // of another save of the same document leaves it alone.
    QTemporaryDir dir;
    const QDir folder(dir.path());
    const QString path = folder.filePath(QStringLiteral("a.qbx"));
    writeAll(path, "old");
    const bool saved = SafeSave::write(path, [&](QIODevice &device) {
        const QStringList temporaries =
            folder.entryList({QStringLiteral(".a.qbx.*.part")}, QDir::Files | QDir::Hidden);
        if (temporaries.size() != 1)
            return false;
        const QByteArray temporary = QFile::encodeName(folder.filePath(temporaries.constFirst()));
        const time_t tenMinutesAgo = time_t(QDateTime::currentSecsSinceEpoch() - 600);
        const timespec times[2] = {{tenMinutesAgo, 0}, {tenMinutesAgo, 0}};
        ::utimensat(AT_FDCWD, temporary.constData(), times, 0);
        SafeSave::removeStaleTemporaries(path);
        return QFile::exists(QFile::decodeName(temporary)) && device.write("new") == 3;
    });
    QVERIFY(saved);
    QCOMPARE(readAll(path), QByteArray("new"));
}

void TestSafeSave::interruptedSaveLeavesNoTemporary_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGINT") << int(SIGINT);
    QTest::newRow("SIGTERM") << int(SIGTERM);
    QTest::newRow("SIGHUP") << int(SIGHUP);
}

void TestSafeSave::interruptedSaveLeavesNoTemporary()
{
    QFETCH(int, signal);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.qbx"));
    writeAll(path, "old");
    const QString hard = dir.filePath(QStringLiteral("hard.qbx"));
    // A child process saves and is interrupted halfway through its writer,
    // once by a rename save and once by a save in place (a second name).
    for (const bool inPlace : {false, true}) {
        if (inPlace)
            QCOMPARE(::link(QFile::encodeName(path).constData(), QFile::encodeName(hard).constData()), 0);
        const pid_t child = ::fork();
        if (child == 0) {
            SafeSave::removeTemporaryOnSignals();
            SafeSave::write(path, [signal](QIODevice &out) {
                out.write(QByteArray(3000000, 'n'));
                ::raise(signal);
                return out.write("end") == 3;
            });
            ::_exit(0);
        }
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY(WIFSIGNALED(status) && WTERMSIG(status) == signal);
        // Held until the file is whole in place: the new content, then the signal.
        QCOMPARE(readAll(path), inPlace ? QByteArray(3000000, 'n') + "end" : QByteArray("old"));
        QCOMPARE(filesIn(dir.path()), inPlace ? QStringList({QStringLiteral("a.qbx"), QStringLiteral("hard.qbx")})
                                              : QStringList{QStringLiteral("a.qbx")});
    }
}

void TestSafeSave::temporaryNames()
{
    QVERIFY(SafeSave::isTemporaryName(QStringLiteral(".a.qbx.k3j4h5g6.part")));
    QVERIFY(!SafeSave::isTemporaryName(QStringLiteral("a.qbx")));
    QVERIFY(!SafeSave::isTemporaryName(QStringLiteral(".hidden.qbx")));

    // While the writer runs, the document keeps its old bytes, and the one
    // extra file is hidden and not a document: a save killed at any moment
    // leaves the old document whole and nothing that looks like another.
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.qbx"));
    writeAll(path, "old");
    QStringList during;
    QByteArray old;
    QVERIFY(SafeSave::write(path, [&](QIODevice &out) {
        during = filesIn(dir.path());
        const bool written = out.write("new") == 3;
        old = readAll(path);
        return written;
    }));
    QCOMPARE(old, QByteArray("old"));
    QCOMPARE(during.size(), 2);
    QVERIFY(SafeSave::isTemporaryName(during[0]));
    QVERIFY(!during[0].endsWith(QLatin1String(".qbx")));
    QCOMPARE(filesIn(dir.path()), QStringList{QStringLiteral("a.qbx")});
    QCOMPARE(readAll(path), QByteArray("new"));
    QVERIFY(SafeSave::write(path, QByteArray()));
    QCOMPARE(readAll(path), QByteArray());
}

QTEST_GUILESS_MAIN(TestSafeSave)
#include "tst_safesave.moc"
