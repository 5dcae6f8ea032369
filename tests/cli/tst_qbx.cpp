#include "support/filebytes.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {

struct Run {
    int status = -1;
    QByteArray out;
    QByteArray err;
};

Run qbx(const QStringList &arguments, const QByteArray &input = QByteArray())
{
    QProcess process;
    process.start(QStringLiteral(QUILLBOX_BINARY_DIR "/qbx"), arguments);
    Run run;
    if (!process.waitForStarted())
        return run;
    process.write(input);
    process.closeWriteChannel();
    process.waitForFinished(120000);
    run.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString writeFile(const QTemporaryDir &dir, const QString &name, const QByteArray &bytes)
{
    const QString path = dir.filePath(name);
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
    return path;
}

QJsonArray times(std::initializer_list<int> fields)
{
    QJsonArray array;
    for (int f : fields)
        array.append(f);
    return array;
}

} // namespace

class TestQbx : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void dumpPrintsEveryField();
    void loadFailuresGiveMessageAndStatus_data();
    void loadFailuresGiveMessageAndStatus();
    void resaveWritesTheCurrentVersion();
    void passwordCommand();
    void generateIsRepeatable();
    void helpForEveryCommand();

private:
    QTemporaryDir m_dir;
};

void TestQbx::initTestCase()
{
    QVERIFY2(QFile::exists(QStringLiteral(QUILLBOX_BINARY_DIR "/qbx")), "build the qbx target first");
}

void TestQbx::dumpPrintsEveryField()
{
    FileBytes f;
    f.u32(551).u16(2).hex("00ff").u32(0x8D).u16(1).u16(2).u16(3).u32(0x30).u32(8);
    f.u16(0xFFFF).str(QStringLiteral("Wurzel")).u32(9).u32(3).u16(0);
    f.u32(1).u32(8).u16(4).str(QStringLiteral("Tâche \"1\"")).u32(0xFFFFFFFF).u32(0).u16(15);
    f.str(QStringLiteral("3")).u16(0xFFFF).time(2020, 1, 3, 1, 2, 3, 4, 5).u16(40).u16(2).u32(6);
    f.str(QStringLiteral("Büro")).u16(3).time(2021, 2, 1, 1, 0, 0, 0, 0).time(2021, 2, 1, 1, 9, 0, 0, 0);
    f.u32(3).hex("616263").u32(3).str(QStringLiteral("!9")).str(QStringLiteral("!4")).str(QStringLiteral("tel:123"));
    f.u32(2).u32(9).u16(0).str(QString()).u32(0).u32(2).u16(15);
    f.str(QString()).u16(0).zeroTime().u16(0).u16(0).u32(1).str(QString()).u16(10).zeroTime().zeroTime();
    f.u32(0).u32(0);
    const QString path = writeFile(m_dir, QStringLiteral("dump.qbx"), f);

    const Run run = qbx({QStringLiteral("dump"), path});
    QCOMPARE(run.status, 0);
    QVERIFY(run.err.isEmpty());
    QJsonParseError error;
    const QJsonObject dump = QJsonDocument::fromJson(run.out, &error).object();
    QCOMPARE(error.error, QJsonParseError::NoError);

    QJsonObject second{{"Image", 0},
                       {"Sort", 15},
                       {"Name", ""},
                       {"ExtraWord", 0},
                       {"Expanded", false},
                       {"Ascending", true},
                       {"TaskTime", ""},
                       {"TaskTimeType", 0},
                       {"Colour", 0},
                       {"Created", times({0, 0, 0, 0, 0, 0, 0, 0})},
                       {"Progress", 0},
                       {"StatusType", 0},
                       {"ShowIcon", true},
                       {"AutoProgress", false},
                       {"Italic", false},
                       {"Category", ""},
                       {"Priority", 10},
                       {"DueDate", times({0, 0, 0, 0, 0, 0, 0, 0})},
                       {"ReminderTime", times({0, 0, 0, 0, 0, 0, 0, 0})},
                       {"Note", ""},
                       {"Links", QJsonArray()},
                       {"Children", QJsonArray()}};
    QJsonObject first{{"Image", 4},
                      {"Sort", 15},
                      {"Name", QStringLiteral("Tâche \"1\"")},
                      {"ExtraWord", 4294967295.0},
                      {"Expanded", false},
                      {"Ascending", false},
                      {"TaskTime", "3"},
                      {"TaskTimeType", 0},
                      {"Colour", 0},
                      {"Created", times({2020, 1, 3, 1, 2, 3, 4, 5})},
                      {"Progress", 40},
                      {"StatusType", 2},
                      {"ShowIcon", false},
                      {"AutoProgress", true},
                      {"Italic", true},
                      {"Category", QStringLiteral("Büro")},
                      {"Priority", 3},
                      {"DueDate", times({2021, 2, 1, 1, 0, 0, 0, 0})},
                      {"ReminderTime", times({2021, 2, 1, 1, 9, 0, 0, 0})},
                      {"Note", "YWJj"},
                      {"Links", QJsonArray{"!2", "!0", "tel:123"}},
                      {"Children", QJsonArray{second}}};
    QJsonObject expected{{"Version", 551},
                         {"PasswordHash", "00ff"},
                         {"NoteType", 1},
                         {"ViewMode", 2},
                         {"ViewOrder", 3},
                         {"ViewAscending", true},
                         {"HideCompleted", true},
                         {"ShowNoteWindow", false},
                         {"ShowDueDate", true},
                         {"ShowStatistics", true},
                         {"HideByStatus", 48},
                         {"Current", 1},
                         {"Categories", QJsonArray{QStringLiteral("Büro")}},
                         {"Root", QJsonObject{{"Image", 826},
                                              {"Sort", 0},
                                              {"Name", "Wurzel"},
                                              {"ExtraWord", 9},
                                              {"Expanded", true},
                                              {"Ascending", true},
                                              {"Children", QJsonArray{first}}}}};
    QCOMPARE(dump, expected);

    const Run check = qbx({QStringLiteral("check"), path});
    QCOMPARE(check.status, 0);
    QCOMPARE(check.out, (path + QStringLiteral(": loaded, version 551, 2 items, password protected\n")).toUtf8());
}

void TestQbx::loadFailuresGiveMessageAndStatus_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QByteArray>("file"); // empty name: the file is absent
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("message");
    const QString damaged = QStringLiteral("Unable to load file. The file may be corrupted.\n");
    const QString unsupported = QStringLiteral("This file was created either prior to version 5.0 or by a newer "
                                               "version. These file formats are not supported.\n");
    for (const char *command : {"dump", "check", "resave", "password"}) {
        QTest::addRow("%s damaged", command) << command << QByteArray::fromHex("2702000000") << 1 << damaged;
        QTest::addRow("%s version 600", command) << command << QByteArray::fromHex("58020000") << 2 << unsupported;
        QTest::addRow("%s absent", command)
            << command << QByteArray() << 4 << QStringLiteral("File '%1' does not exist.\n");
    }
}

void TestQbx::loadFailuresGiveMessageAndStatus()
{
    QFETCH(QString, command);
    QFETCH(QByteArray, file);
    QFETCH(int, status);
    QFETCH(QString, message);
    const QString path = file.isEmpty() ? m_dir.filePath(QStringLiteral("absent.qbx"))
                                        : writeFile(m_dir, QStringLiteral("bad.qbx"), file);
    const Run run = qbx({command, path});
    QCOMPARE(run.status, status);
    QCOMPARE(QString::fromUtf8(run.err), message.contains(QLatin1String("%1")) ? message.arg(path) : message);
    QVERIFY(run.out.isEmpty());
    if (!file.isEmpty())
        QCOMPARE(readAll(path), file); // a file that did not load is never written
}

void TestQbx::resaveWritesTheCurrentVersion()
{
    FileBytes f;
    f.u32(500).str(QStringLiteral("pw")).u32(0x181).u16(0).u16(0).u32(0).u32(0);
    f.u16(1).str(QStringLiteral("R")).u32(0).u32(2).u16(5);
    f.u32(1).u32(3).u16(2).str(QStringLiteral("a")).u32(0).u32(2).u16(5).str(QString()).u16(0).zeroTime();
    f.u16(0).u16(1).u32(1).str(QString()).u16(10).zeroTime().u32(0).u32(0);
    const QString path = writeFile(m_dir, QStringLiteral("old.qbx"), f);
    const QString out = m_dir.filePath(QStringLiteral("new.qbx"));

    FileBytes e;
    e.u32(551).u16(16).hex("d29e9e1676c2b9d01b1e10adce084822").u32(0x81).u16(1).u16(0).u16(0).u32(0).u32(0);
    e.u16(1).str(QStringLiteral("R")).u32(0).u32(2).u16(15);
    e.u32(1).u32(1).u16(2).str(QStringLiteral("a")).u32(0).u32(2).u16(15).str(QString()).u16(0).zeroTime();
    e.u16(0).u16(1).u32(1).str(QString()).u16(10).zeroTime().zeroTime().u32(0).u32(0);

    QCOMPARE(qbx({QStringLiteral("resave"), path, out}).status, 0);
    QCOMPARE(readAll(out), e.data());
    QCOMPARE(readAll(path), f.data());
    QCOMPARE(qbx({QStringLiteral("resave"), path}).status, 0);
    QCOMPARE(readAll(path), e.data());
}

void TestQbx::passwordCommand()
{
    const QString path = m_dir.filePath(QStringLiteral("pw.qbx"));
    QCOMPARE(qbx({QStringLiteral("generate"), QStringLiteral("--items"), QStringLiteral("3"), path}).status, 0);
    const auto hash = [&path]() {
        return QJsonDocument::fromJson(qbx({QStringLiteral("dump"), path}).out)
            .object()
            .value("PasswordHash")
            .toString();
    };
    const QString notCorrect =
        QStringLiteral("The password is not correct. Please enter the password and try again.\n");
    const QString mismatch = QStringLiteral("The new password and confirmation do not match. Please try again.\n");

    Run run = qbx({QStringLiteral("password"), path}, "\nabc\nABC\n");
    QCOMPARE(run.status, 3);
    QCOMPARE(QString::fromUtf8(run.err), mismatch);
    QCOMPARE(hash(), QString());

    QCOMPARE(qbx({QStringLiteral("password"), path}, "ignored\nabc\nabc\n").status, 0);
    QCOMPARE(hash(), QStringLiteral("ce1473cf80c6b3fda8e3dfc006adc315"));

    run = qbx({QStringLiteral("password"), path}, "ABC\n\n\n");
    QCOMPARE(run.status, 3);
    QCOMPARE(QString::fromUtf8(run.err), notCorrect);

    run = qbx({QStringLiteral("password"), path}, "abc\n1234567890123456\n1234567890123456\n");
    QCOMPARE(run.status, 3);
    QCOMPARE(hash(), QStringLiteral("ce1473cf80c6b3fda8e3dfc006adc315"));

    // Windows line ends are read as line ends.
    QCOMPARE(qbx({QStringLiteral("password"), path}, "abc\r\n\r\n\r\n").status, 0);
    QCOMPARE(hash(), QString());
}

void TestQbx::generateIsRepeatable()
{
    const QString a = m_dir.filePath(QStringLiteral("g1.qbx"));
    const QString b = m_dir.filePath(QStringLiteral("g2.qbx"));
    const QString c = m_dir.filePath(QStringLiteral("g3.qbx"));
    QCOMPARE(qbx(QStringList{"generate", "--items", "200", "--seed", "5", a}).status, 0);
    QCOMPARE(qbx(QStringList{"generate", "--items", "200", "--seed", "5", b}).status, 0);
    QCOMPARE(qbx(QStringList{"generate", "--items", "200", "--seed", "6", c}).status, 0);
    QCOMPARE(readAll(a), readAll(b));
    QVERIFY(readAll(a) != readAll(c));
    QCOMPARE(qbx({QStringLiteral("check"), a}).out, (a + QStringLiteral(": loaded, version 551, 200 items\n")).toUtf8());

    const QString chain = m_dir.filePath(QStringLiteral("chain.qbx"));
    QCOMPARE(qbx(QStringList{"generate", "--items", "50", "--chain", "--note-type", "2", chain}).status, 0);
    const QJsonObject dump = QJsonDocument::fromJson(qbx({QStringLiteral("dump"), chain}).out).object();
    QCOMPARE(dump.value("NoteType").toInt(), 2);
    int depth = 0;
    QJsonArray children = dump.value("Root").toObject().value("Children").toArray();
    for (; !children.isEmpty(); ++depth) {
        QCOMPARE(children.size(), 1);
        children = children.at(0).toObject().value("Children").toArray();
    }
    QCOMPARE(depth, 50);

    QCOMPARE(qbx(QStringList{"generate", "--items", "-3", c}).status, 2);
    QCOMPARE(qbx(QStringList{"generate", "--items", "3", "--note-type", "3", c}).status, 2);
}

void TestQbx::helpForEveryCommand()
{
    for (const char *command : {"dump", "check", "resave", "password", "generate"}) {
        const Run run = qbx({QString::fromLatin1(command), QStringLiteral("--help")});
        QCOMPARE(run.status, 0);
        QVERIFY2(run.out.startsWith(QByteArray("Usage: qbx ") + command), run.out.constData());
        QVERIFY(qbx({QString::fromLatin1(command)}).status == 2); // the file is missing
    }
}

QTEST_GUILESS_MAIN(TestQbx)
#include "tst_qbx.moc"
