#include "model/document.h"
#include "storage/documentfile.h"
#include "storage/safesave.h"
#include "support/filebytes.h"
#include "tools/documentgenerator.h"

#include <QDateTime>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <cerrno>
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

QStringList filesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
}

// The encoded path of name inside dir, for the system calls.
QByteArray at(const QTemporaryDir &dir, const char *name)
{
    return QFile::encodeName(dir.filePath(QLatin1String(name)));
}

void setAge(const QByteArray &path, qint64 seconds)
{
    const time_t then = time_t(QDateTime::currentSecsSinceEpoch() - seconds);
    const timespec times[2] = {{then, 0}, {then, 0}};
    QCOMPARE(::utimensat(AT_FDCWD, path.constData(), times, 0), 0);
}

} // namespace

class TestSafeSave : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void failedSavesAndRewritesInPlace();
    void refusedTargets();
    void keepsWhatTheFileIs();
    void privateWhileSaving();
    void staleTemporariesOfItsOwnName();
    void interruptedSaveLeavesNoTemporary();
};

void TestSafeSave::failedSavesAndRewritesInPlace()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("doc.qbx");
    QVERIFY(FileBytes::write(path, "old content"));
    // A writer that gives up halfway; then writes that fail partway under a file size limit, as on a full disk.
    rlimit saved;
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &saved), 0);
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    for (const bool full : {false, true}) {
        rlimit limited = saved;
        limited.rlim_cur = full ? 1000000 : saved.rlim_cur; // under a quarter of the new content
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &limited), 0);
        QString error;
        const bool ok = SafeSave::write(
            path, [full](QIODevice &out) { return out.write(QByteArray(4000000, 'n')) == 4000000 && full; }, &error);
        setrlimit(RLIMIT_FSIZE, &saved);
        QVERIFY(!ok);
        QCOMPARE(SafeSave::lastFailure(), full ? SafeSave::Failure::DiskFull : SafeSave::Failure::Abandoned);
        QCOMPARE(error, path + QLatin1String(full ? ": disk full" : ": the save was abandoned"));
        QCOMPARE(FileBytes::read(path), QByteArray("old content"));
        QCOMPARE(filesIn(dir.path()), QStringList{QStringLiteral("doc.qbx")});
    }
    std::signal(SIGXFSZ, oldHandler);

    // A second name makes the save write in place; a writer that fails after overwriting the start must leave the old
    // content, under both names, and report the save as abandoned whatever errno its own calls left.
    const QString other = dir.filePath("b.qbx");
    const QByteArray old = QByteArray(3000000, 'o') + "end";
    QVERIFY(FileBytes::write(path, old));
    QCOMPARE(::link(at(dir, "doc.qbx").constData(), at(dir, "b.qbx").constData()), 0);
    QVERIFY(!SafeSave::write(path, [](QIODevice &out) {
        out.write(QByteArray(2500000, 'n')); // more than one block reaches the file
        errno = EACCES;
        return false;
    }));
    QCOMPARE(SafeSave::lastFailure(), SafeSave::Failure::Abandoned);
    QVERIFY(FileBytes::read(path) == old && FileBytes::read(other) == old);
    QCOMPARE(filesIn(dir.path()), QStringList({"b.qbx", "doc.qbx"}));

    // A reader that starts while only half of the new document is in the file waits for the whole.
    Document large;
    DocumentGenerator::generate(&large, {2000, 2, false, 0});
    const QByteArray bytes = DocumentFile::toBytes(large);
    std::thread reader;
    DocumentFile::LoadResult result = DocumentFile::Damaged;
    QVERIFY(SafeSave::write(path, [&](QIODevice &out) {
        const qsizetype half = bytes.size() / 2;
        if (out.write(bytes.first(half)) != half)
            return false;
        reader = std::thread([&] {
            Document doc;
            result = DocumentFile::load(path, &doc);
        });
        QThread::msleep(300);
        return out.write(bytes.sliced(half)) == bytes.size() - half;
    }));
    reader.join();
    QCOMPARE(result, DocumentFile::Loaded);
    QVERIFY(FileBytes::read(other) == bytes);
    // Nothing at all is content too.
    QVERIFY(SafeSave::write(other, QByteArray()));
    QCOMPARE(FileBytes::read(path), QByteArray());
}

// What is in the way of a save, and what the failure says; nothing is created, replaced or made a regular file.
void TestSafeSave::refusedTargets()
{
    QTemporaryDir dir;
    QVERIFY(FileBytes::write(dir.filePath("doc.qbx"), "the document"));
    // A device node of the test's own: under a fault, no device of the machine is replaced. It takes root.
    const bool device = ::mknod(at(dir, "null").constData(), S_IFCHR | 0666, makedev(1, 3)) == 0;
    QCOMPARE(::mkfifo(at(dir, "pipe").constData(), 0644), 0);
    QCOMPARE(::symlink("pipe", at(dir, "link1").constData()), 0);
    QCOMPARE(::symlink("link1", at(dir, "link2").constData()), 0);
    QVERIFY(QDir(dir.path()).mkdir("sub"));
    QCOMPARE(::symlink("loop2", at(dir, "loop1").constData()), 0);
    QCOMPARE(::symlink("loop1", at(dir, "loop2").constData()), 0);
    QCOMPARE(::symlink("doc.qbx", at(dir, "link.qbx").constData()), 0);
    QCOMPARE(::link(at(dir, "doc.qbx").constData(), at(dir, "hard.qbx").constData()), 0);
    const QStringList before = filesIn(dir.path());
    using F = SafeSave::Failure;
    const struct {
        const char *target;
        F failure;
        const char *says;
    } rows[] = {
        {"null", F::NotRegular, "null: is a device"},
        {"link2", F::NotRegular, "pipe: is a FIFO"}, // at the end of a chain of links
        {"sub", F::IsDirectory, "sub: is a directory"},
        {"missing/a.qbx", F::FolderMissing, "missing/a.qbx: folder missing"},
        {"loop1", F::LinkLoop, "loop1: too many links"},
        {"link.qbx", F::SameAsSource, "link.qbx: is the document being read"},
        {"hard.qbx", F::SameAsSource, "hard.qbx: is the document being read"},
    };
    SafeSave::Options options;
    options.source = dir.filePath("doc.qbx");
    for (const auto &row : rows) {
        if (!device && QByteArray(row.target) == "null")
            continue;
        QString error;
        QVERIFY(!SafeSave::write(dir.filePath(QLatin1String(row.target)), QByteArray("new"), &error, options));
        QVERIFY2(SafeSave::lastFailure() == row.failure && error.contains(QLatin1String(row.says)), qPrintable(error));
        QCOMPARE(filesIn(dir.path()), before);
    }
    QCOMPARE(FileBytes::read(options.source), QByteArray("the document"));
}

// A save changes the content and nothing else about the file: its mode, owner, group and attributes, the links that
// lead to it. A new file takes the old one's place, all it was carried over; only a file with two names is written in
// place, to stay one file, even when a new one could be given its owner.
void TestSafeSave::keepsWhatTheFileIs()
{
    for (const char *target : {"c.qbx", "chain.qbx", "relative.qbx", "hard.qbx"}) {
        QTemporaryDir dir;
        const QByteArray name = at(dir, "c.qbx");
        QVERIFY(FileBytes::write(dir.filePath(QStringLiteral("c.qbx")), "old"));
        QCOMPARE(::chmod(name.constData(), 0640), 0);
        const bool root = ::geteuid() == 0; // only root can give a file to another owner
        QVERIFY(!root || ::chown(name.constData(), 12345, 23456) == 0);
        const bool xattr = ::setxattr(name.constData(), "user.colour", "blue", 4, 0) == 0;
        QVERIFY(!xattr || ::setxattr(name.constData(), "user.empty", "", 0, 0) == 0); // an empty value is copied too
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("links")));
        QCOMPARE(::symlink("c.qbx", at(dir, "b.qbx").constData()), 0);
        QCOMPARE(::symlink("b.qbx", at(dir, "chain.qbx").constData()), 0);
        QCOMPARE(::symlink("../c.qbx", at(dir, "links/b.qbx").constData()), 0);
        QCOMPARE(::symlink("links/b.qbx", at(dir, "relative.qbx").constData()), 0);
        const bool hard = QByteArray(target) == "hard.qbx";
        QVERIFY(!hard || ::link(name.constData(), at(dir, "hard.qbx").constData()) == 0);
        struct stat before;
        QCOMPARE(::stat(name.constData(), &before), 0);
        QString error;
        QVERIFY2(SafeSave::write(dir.filePath(QLatin1String(target)), QByteArray("new"), &error), qPrintable(error));

        QVERIFY2(FileBytes::read(dir.filePath(QStringLiteral("c.qbx"))) == "new", target);
        struct stat after;
        QCOMPARE(::stat(name.constData(), &after), 0);
        QVERIFY(after.st_mode == before.st_mode && after.st_uid == before.st_uid && after.st_gid == before.st_gid);
        QVERIFY(!root || (after.st_uid == 12345 && after.st_gid == 23456));
        QVERIFY(hard || target == QByteArray("c.qbx") || QFileInfo(dir.filePath(QLatin1String(target))).isSymLink());
        QCOMPARE(after.st_ino == before.st_ino, hard);
        QVERIFY(!hard || (after.st_nlink == 2 && FileBytes::read(dir.filePath(QLatin1String(target))) == "new"));
        char value[16] = {};
        QVERIFY(!xattr ||
                (::getxattr(name.constData(), "user.colour", value, sizeof value) == 4 && value == QByteArray("blue")));
        QVERIFY(!xattr || ::getxattr(name.constData(), "user.empty", value, sizeof value) == 0);
        QCOMPARE(filesIn(dir.path()).filter(QStringLiteral(".part")), QStringList());
    }
}

void TestSafeSave::privateWhileSaving()
{
    // While the writer runs, the document keeps its bytes; the one extra file is hidden, no document, and as private.
    QTemporaryDir dir;
    const QString path = dir.filePath("private.qbx");
    QVERIFY(FileBytes::write(path, "secret"));
    QCOMPARE(::chmod(QFile::encodeName(path).constData(), 0600), 0);
    const mode_t oldMask = ::umask(0);
    QStringList during;
    QByteArray old;
    struct stat info;
    const bool saved = SafeSave::write(path, [&](QIODevice &out) {
        during = filesIn(dir.path());
        const bool written = out.write("still secret") == 12;
        old = FileBytes::read(path);
        return written && ::stat(QFile::encodeName(dir.filePath(during[0])).constData(), &info) == 0;
    });
    ::umask(oldMask);
    QVERIFY(saved);
    QCOMPARE(old, QByteArray("secret"));
    QCOMPARE(during.size(), 2);
    QVERIFY(SafeSave::isTemporaryName(during[0]) && !during[0].endsWith(QLatin1String(".qbx")));
    QCOMPARE(info.st_mode & 0777, mode_t(0600));
    QCOMPARE(filesIn(dir.path()), QStringList{QStringLiteral("private.qbx")});
    QCOMPARE(FileBytes::read(path), QByteArray("still secret"));
    QVERIFY(!SafeSave::isTemporaryName(QStringLiteral(".hidden.qbx")));

    // A new file is born as the umask says, no wider; nothing at all is content too.
    const mode_t mask = ::umask(027);
    QVERIFY(SafeSave::write(dir.filePath(QStringLiteral("new.qbx")), QByteArray()));
    ::umask(mask);
    QCOMPARE(::stat(at(dir, "new.qbx").constData(), &info), 0);
    QCOMPARE(info.st_mode & 0777, mode_t(0640));
    QCOMPARE(FileBytes::read(dir.filePath(QStringLiteral("new.qbx"))), QByteArray());
}

void TestSafeSave::staleTemporariesOfItsOwnName()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("a.qbx");
    QVERIFY(FileBytes::write(path, "old"));
    // A save that has run for minutes holds its temporary file: another save's clean-up leaves it alone.
    QVERIFY(SafeSave::write(path, [&](QIODevice &device) {
        const QStringList temporaries = filesIn(dir.path()).filter(".part");
        if (temporaries.size() != 1)
            return false;
        const QByteArray temporary = QFile::encodeName(dir.filePath(temporaries.constFirst()));
        setAge(temporary, 600);
        SafeSave::removeStaleTemporaries(path);
        return QFile::exists(QFile::decodeName(temporary)) && device.write("new") == 3;
    }));

    const auto leftover = [&](const char *name, qint64 age) {
        QVERIFY(FileBytes::write(dir.filePath(QLatin1String(name)), "left over"));
        setAge(at(dir, name), age);
    };
    leftover(".a.qbx.oldz09.part", 2 * 24 * 3600);   // older than a day
    leftover(".a.qbx.gone22.part", 10 * 60);         // no one holds it
    leftover(".a.qbx.olderv88.part", 2 * 24 * 3600); // an earlier version's eight letters
    leftover(".a.qbx.OLD999.part", 2 * 24 * 3600);   // not a tag this program writes
    leftover(".a.qbx.fresh3.part", 5);               // may be a save just begun
    leftover(".a.qbx.held44.part", 10 * 60);         // a save in progress holds it
    leftover(".ab.qbx.old555.part", 2 * 24 * 3600);  // another document's
    leftover(".a.qbx.x.old666.part", 2 * 24 * 3600); // the document "a.qbx.x"
    leftover(".a.qbx.old777.backup", 2 * 24 * 3600); // not a temporary file
    const int held = ::open(at(dir, ".a.qbx.held44.part").constData(), O_RDONLY);
    QVERIFY(held >= 0);
    QCOMPARE(::flock(held, LOCK_EX), 0);
    QVERIFY(SafeSave::write(path, QByteArray("newer")));
    ::close(held);
    QCOMPARE(FileBytes::read(path), QByteArray("newer"));
    QCOMPARE(filesIn(dir.path()),
             QStringList({".a.qbx.OLD999.part", ".a.qbx.fresh3.part", ".a.qbx.held44.part", ".a.qbx.old777.backup",
                          ".a.qbx.x.old666.part", ".ab.qbx.old555.part", "a.qbx"}));
}

void TestSafeSave::interruptedSaveLeavesNoTemporary()
{
    // A child process is interrupted halfway through its writer, in a rename save and in a save in place.
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        QTemporaryDir dir;
        const QString path = dir.filePath("a.qbx");
        QVERIFY(FileBytes::write(path, "old"));
        for (const bool inPlace : {false, true}) {
            QVERIFY(!inPlace || ::link(at(dir, "a.qbx").constData(), at(dir, "hard.qbx").constData()) == 0);
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
            QCOMPARE(FileBytes::read(path), inPlace ? QByteArray(3000000, 'n') + "end" : QByteArray("old"));
            QCOMPARE(filesIn(dir.path()), inPlace ? QStringList({"a.qbx", "hard.qbx"}) : QStringList{"a.qbx"});
        }
    }
}

QTEST_GUILESS_MAIN(TestSafeSave)
#include "tst_safesave.moc"
