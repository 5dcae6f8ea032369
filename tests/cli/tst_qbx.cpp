#include "support/filebytes.h"
#include "support/qbxprocess.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <memory>

const char *const DumpJson = R"({"Version": 551, "PasswordHash": "00ff", "NoteType": 1, "ViewMode": 2, "ViewOrder": 3,
    "ViewAscending": true, "HideCompleted": true, "ShowNoteWindow": false, "ShowDueDate": true, "ShowStatistics": true,
    "HideByStatus": 48, "Current": 1, "Categories": ["Büro"], "Root": {"Image": 826, "Sort": 0, "Name": "Wurzel",
    "ExtraWord": 9, "Expanded": true, "Ascending": true, "Children": [{"Image": 4, "Sort": 15,
    "Name": "Tâche \u00221\u0022", "ExtraWord": 4294967295, "Expanded": false, "Ascending": false, "TaskTime": "3",
    "TaskTimeType": 0, "Colour": 0, "Created": [2020, 1, 3, 1, 2, 3, 4, 5], "Progress": 40, "StatusType": 2,
    "ShowIcon": false, "AutoProgress": true, "Italic": true, "Category": "Büro", "Priority": 3,
    "DueDate": [2021, 2, 1, 1, 0, 0, 0, 0], "ReminderTime": [2021, 2, 1, 1, 9, 0, 0, 0], "Note": "YWJj",
    "Links": ["!2", "!0", "tel:123"], "Children": [{"Image": 0, "Sort": 15, "Name": "", "ExtraWord": 0,
    "Expanded": false, "Ascending": true, "TaskTime": "", "TaskTimeType": 0, "Colour": 0,
    "Created": [0, 0, 0, 0, 0, 0, 0, 0], "Progress": 0, "StatusType": 0, "ShowIcon": true, "AutoProgress": false,
    "Italic": false, "Category": "", "Priority": 10, "DueDate": [0, 0, 0, 0, 0, 0, 0, 0],
    "ReminderTime": [0, 0, 0, 0, 0, 0, 0, 0], "Note": "", "Links": [], "Children": []}]}]}})";

// The commands on whole documents: dump, check, resave, password, generate.
class TestQbx : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;

private Q_SLOTS:
    void dumpPrintsEveryField()
    {
        FileBytes f;
        f.u32(551).u16(2).hex("00ff").u32(0x8D).u16(1).u16(2).u16(3).u32(0x30).u32(8);
        f.u16(0xFFFF).str(QStringLiteral("Wurzel")).u32(9).u32(3).u16(0);
        f.u32(1).u32(8).u16(4).str(QStringLiteral("Tâche \"1\"")).u32(0xFFFFFFFF).u32(0).u16(15);
        f.str(QStringLiteral("3")).u16(0xFFFF).time(2020, 1, 3, 1, 2, 3, 4, 5).u16(40).u16(2).u32(6);
        f.str(QStringLiteral("Büro")).u16(3).time(2021, 2, 1, 1, 0, 0, 0, 0).time(2021, 2, 1, 1, 9, 0, 0, 0);
        f.u32(3).hex("616263").u32(3).str(QStringLiteral("!9"));
        f.str(QStringLiteral("!4")).str(QStringLiteral("tel:123"));
        f.u32(2).u32(9).u16(0).str(QString()).u32(0).u32(2).u16(15);
        f.str(QString()).u16(0).zeroTime().u16(0).u16(0).u32(1).str(QString()).u16(10).zeroTime().zeroTime();
        f.u32(0).u32(0);
        const QString path = writeBytes(m_dir.filePath(QStringLiteral("dump.qbx")), f);

        const QbxRun run = qbx({QStringLiteral("dump"), path});
        QCOMPARE(run.status, 0);
        QCOMPARE(QJsonDocument::fromJson(run.out).object(), QJsonDocument::fromJson(DumpJson).object());

        QCOMPARE(qbx({QStringLiteral("check"), path}),
                 printed(path.toUtf8() + ": loaded, version 551, 2 items, password protected\n"));
    }

    void loadFailuresGiveMessageAndStatus()
    {
        const QString damaged = QStringLiteral("Unable to load file. The file may be corrupted.\n");
        // Every command loads through the same path: one failure kind each. No bytes: the file is absent.
        const std::tuple<const char *, QByteArray, int, QString> cases[] = {
            {"dump", QByteArray::fromHex("2702000000"), 1, damaged},
            {"resave", QByteArray::fromHex("58020000"), 2,
             "This file was created either prior to version 5.0 or by a newer version. These file formats are not "
             "supported.\n"},
            {"password", QByteArray::fromHex("2702000000"), 1, damaged},
            {"check", {}, 4, QStringLiteral("File '%1' does not exist.\n")},
        };
        for (const auto &[command, file, status, text] : cases) {
            const QString path = file.isEmpty() ? m_dir.filePath(QStringLiteral("absent.qbx"))
                                                : writeBytes(m_dir.filePath(QStringLiteral("bad.qbx")), file);
            const QString message = file.isEmpty() ? text.arg(path) : text;
            QCOMPARE(qbx({QString::fromLatin1(command), path}), refused(status, message.toUtf8()));
            if (!file.isEmpty())
                QCOMPARE(fileBytes(path), file); // a file that did not load is never written
        }
    }

    void resaveWritesTheCurrentVersion()
    {
        FileBytes f;
        f.u32(500).str(QStringLiteral("pw")).u32(0x181).u16(0).u16(0).u32(0).u32(0);
        f.u16(1).str(QStringLiteral("R")).u32(0).u32(2).u16(5);
        f.u32(1).u32(3).u16(2).str(QStringLiteral("a")).u32(0).u32(2).u16(5).str(QString()).u16(0).zeroTime();
        f.u16(0).u16(1).u32(1).str(QString()).u16(10).zeroTime().u32(0).u32(0);
        const QString path = writeBytes(m_dir.filePath(QStringLiteral("old.qbx")), f);
        // An existing other file is replaced; the source stays as it was.
        const QString out = writeBytes(m_dir.filePath(QStringLiteral("new.qbx")), "an older file");

        FileBytes e;
        e.u32(551).u16(16).hex("d29e9e1676c2b9d01b1e10adce084822").u32(0x81).u16(1).u16(0).u16(0).u32(0).u32(0);
        e.u16(1).str(QStringLiteral("R")).u32(0).u32(2).u16(15);
        e.u32(1).u32(1).u16(2).str(QStringLiteral("a")).u32(0).u32(2).u16(15).str(QString()).u16(0).zeroTime();
        e.u16(0).u16(1).u32(1).str(QString()).u16(10).zeroTime().zeroTime().u32(0).u32(0);

        QCOMPARE(qbx({QStringLiteral("resave"), path, out}).status, 0);
        QCOMPARE(fileBytes(out), e.data());
        QCOMPARE(fileBytes(path), f.data());
        QCOMPARE(qbx({QStringLiteral("resave"), path}).status, 0);
        QCOMPARE(fileBytes(path), e.data());
    }

    void passwordCommand()
    {
        const QString path = m_dir.filePath(QStringLiteral("pw.qbx"));
        QCOMPARE(qbx({QStringLiteral("generate"), QStringLiteral("--items"), QStringLiteral("3"), path}).status, 0);
        const QByteArray notCorrect = "The password is not correct. Please enter the password and try again.\n";
        const QByteArray mismatch = "The new password and confirmation do not match. Please try again.\n";
        const QString abc = QStringLiteral("ce1473cf80c6b3fda8e3dfc006adc315");
        // Typed lines: the current password, the new one, its confirmation; a new password too long; Windows line ends.
        const std::tuple<QByteArray, int, QByteArray, QString> cases[] = {
            {"\nabc\nABC\n", 3, mismatch, {}}, {"ignored\nabc\nabc\n", 0, {}, abc},
            {"ABC\n\n\n", 3, notCorrect, abc}, {"abc\n1234567890123456\n1234567890123456\n", 3, {}, abc},
            {"abc\r\n\r\n\r\n", 0, {}, {}},
        };
        for (const auto &[typed, status, error, hash] : cases) {
            const QbxRun run = qbx({QStringLiteral("password"), path}, {typed});
            QCOMPARE(run.status, status);
            if (!error.isEmpty())
                QCOMPARE(run.err, error);
            const QJsonObject dump = QJsonDocument::fromJson(qbx({QStringLiteral("dump"), path}).out).object();
            QCOMPARE(dump.value("PasswordHash").toString(), hash);
        }
    }

    void generateAndUsage()
    {
        const QString a = m_dir.filePath(QStringLiteral("g1.qbx"));
        QCOMPARE(qbx(QStringList{"generate", "--items", "50", "--chain", "--note-type", "2", a}).status, 0);
        QCOMPARE(qbx({QStringLiteral("check"), a}).out, a.toUtf8() + ": loaded, version 551, 50 items\n");
        const QJsonObject dump = QJsonDocument::fromJson(qbx({QStringLiteral("dump"), a}).out).object();
        QCOMPARE(dump.value("NoteType").toInt(), 2);
        QCOMPARE(QJsonDocument(dump).toJson(QJsonDocument::Compact).count("\"Children\":[{"), 50); // a chain
        QCOMPARE(qbx(QStringList{"generate", "--items", "-3", a}).status, 2);
        QCOMPARE(qbx(QStringList{"generate", "--items", "3", "--note-type", "3", a}).status, 2);
        QVERIFY(qbx({QStringLiteral("resave"), QStringLiteral("--help")}).out.startsWith("Usage: qbx resave"));
        QCOMPARE(qbx({QStringLiteral("resave")}).status, 2); // the file is missing
    }
};

QBX_SUITE(TestQbx)

// Every qbx suite of this folder in one program.
int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (!QFile::exists(QbxProgram))
        qFatal("build the qbx target first");
    // Test functions named on the command line run in the suites that have them.
    const auto named = [argc, argv](const QObject *suite) {
        for (int i = 1; i < argc; ++i) {
            if (suite->metaObject()->indexOfMethod((QByteArray(argv[i]).split(':').value(0) + "()").constData()) >= 0)
                return true;
        }
        return false;
    };
    std::vector<std::unique_ptr<QObject>> suites;
    for (const QbxSuites::Make &make : QbxSuites::all())
        suites.emplace_back(make());
    const bool any = std::any_of(suites.begin(), suites.end(), [&](const auto &suite) { return named(suite.get()); });
    int failed = 0;
    for (const auto &suite : suites)
        failed += (!any || named(suite.get())) && QTest::qExec(suite.get(), argc, argv) != 0;
    return failed;
}

#include "tst_qbx.moc"
