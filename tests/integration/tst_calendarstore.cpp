#include "support/icalobject.h"
#include "support/outline.h"

#include "integration/caldavcalendar.h"
#include "integration/calendarobject.h"
#include "integration/foldercalendar.h"
#include "notes/notetext.h"
#include "platform/clock.h"
#include "platform/collation.h"
#include "platform/messages.h"

#include <QDir>
#include <QFile>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

namespace {

// A store that keeps what it is given in memory and refuses chosen objects.
class MemoryStore : public CalendarStore {
public:
    QList<QByteArray> added;
    int refuseAt = -1; // the n-th addObject call (0-based) that fails
    int calls = 0;
    int fetches = 0;
    bool reachable = true;
    QList<QByteArray> stored;

    QString location() const override { return QStringLiteral("memory"); }
    bool connect(QString *) override { return reachable; }
    bool addObject(const QString &, const QByteArray &ics, QString *error) override
    {
        if (calls++ == refuseAt) {
            *error = QStringLiteral("refused");
            return false;
        }
        added.append(ics);
        return true;
    }
    bool fetchObjects(QList<QByteArray> *objects, QString *error) override
    {
        ++fetches;
        if (!reachable) {
            *error = QStringLiteral("gone");
            return false;
        }
        *objects = stored;
        return true;
    }
};

QStringList summaries(const QList<QByteArray> &objects)
{
    QStringList out;
    for (const QByteArray &ics : objects)
        out.append(IcalObject::parse(ics).summary);
    return out;
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

// Answers every connection with one scripted HTTP response, or never
// answers when the response is empty.
class ScriptedHttp : public QObject {
public:
    explicit ScriptedHttp(const QByteArray &response) : m_response(response)
    {
        m_server.listen(QHostAddress::LocalHost, 0);
        QObject::connect(&m_server, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *socket = m_server.nextPendingConnection()) {
                QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                    m_request += socket->readAll();
                    if (!m_response.isEmpty() && m_request.contains("\r\n\r\n")) {
                        socket->write(m_response);
                        socket->disconnectFromHost();
                    }
                });
            }
        });
    }
    QString url(const char *path) const
    {
        return QStringLiteral("http://127.0.0.1:%1%2").arg(m_server.serverPort()).arg(QLatin1String(path));
    }

private:
    QTcpServer m_server;
    QByteArray m_response;
    QByteArray m_request;
};

QByteArray response(const char *statusLine, const QByteArray &extraHeaders = QByteArray(),
                    const QByteArray &body = QByteArray())
{
    return QByteArray("HTTP/1.1 ") + statusLine + "\r\n" + extraHeaders +
           "Content-Length: " + QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" + body;
}

QString message(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

class TestCalendarStore : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        Clock::setFixed(QDateTime(QDate(2026, 11, 24), QTime(10, 20, 30), Qt::UTC));
        Collation::instance().setLocale(QLocale(QStringLiteral("en_US")));
    }

    void cleanupTestCase() { Clock::reset(); }

    void objectBytes()
    {
        Item item(QStringLiteral("Call Ann, today"));
        item.setDueDate(Outline::date(QStringLiteral("2024-03-05T09:30")));
        item.setCategory(QStringLiteral("Phone calls"));
        item.setNote(NoteText::toPlainNote(QStringLiteral("Bring the list;\nand the keys")));
        const QByteArray ics =
            CalendarObject::fromItem(item, Document::PlainText, CalendarObject::Task, QStringLiteral("u1@test"),
                                     QDateTime(QDate(2026, 1, 2), QTime(3, 4, 5), Qt::UTC));
        QCOMPARE(ics, QByteArray("BEGIN:VCALENDAR\r\n"
                                 "VERSION:2.0\r\n"
                                 "PRODID:-//Quillbox//Quillbox " QUILLBOX_VERSION "//EN\r\n"
                                 "BEGIN:VTODO\r\n"
                                 "UID:u1@test\r\n"
                                 "DTSTAMP:20260102T030405Z\r\n"
                                 "SUMMARY:Call Ann\\, today\r\n"
                                 "DUE;VALUE=DATE:20240305\r\n"
                                 "CATEGORIES:Phone calls\r\n"
                                 "DESCRIPTION:Bring the list\\;\\nand the keys\r\n"
                                 "END:VTODO\r\n"
                                 "END:VCALENDAR\r\n"));
        item.setDueDate({2024, 2, 0, 30, 0, 0, 0, 0}); // a date the calendar cannot hold is left out
        QVERIFY(!CalendarObject::fromItem(item, 0, CalendarObject::Task, QStringLiteral("u2"), {}).contains("DUE"));
    }

    void mapping_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("noteType");
        QTest::addColumn<QString>("due");
        QTest::addColumn<QString>("category");
        QTest::addColumn<QString>("note");

        const auto row = [](const char *tag, CalendarObject::Kind kind, int noteType, const char *due,
                            const char *category, const char *note) {
            QTest::newRow(tag) << int(kind) << noteType << QString::fromUtf8(due) << QString::fromUtf8(category)
                               << QString::fromUtf8(note);
        };
        row("appointment with everything", CalendarObject::Appointment, 0, "2024-12-31T23:59", "Büro später", "x");
        row("task without date, category or note", CalendarObject::Task, 0, "", "", "");
        row("appointment without date", CalendarObject::Appointment, 0, "", "", "");
        row("rich text note", CalendarObject::Appointment, 2, "", "", "Bold\nplain");
        row("rich ink note", CalendarObject::Task, 1, "", "", "ink\ntext");
    }

    void mapping()
    {
        QFETCH(int, kind);
        QFETCH(int, noteType);
        QFETCH(QString, due);
        QFETCH(QString, category);
        QFETCH(QString, note);

        QTemporaryDir dir;
        FolderCalendar store(dir.filePath(QStringLiteral("cal")));
        QString error;
        QVERIFY(store.connect(&error));
        Item item(QStringLiteral("Ünïcode name"));
        if (!due.isEmpty())
            item.setDueDate(Outline::date(due));
        item.setCategory(category);
        item.setNote(NoteText::fromText(note, quint16(noteType)));
        for (int i = 0; i < 2; ++i)
            QVERIFY2(store.create(item, quint16(noteType), CalendarObject::Kind(kind), &error), qPrintable(error));

        const QStringList files = QDir(store.location()).entryList({QStringLiteral("*.ics")}, QDir::Files);
        QCOMPARE(files.size(), 2);
        QStringList uids;
        for (const QString &name : files) {
            QFile file(QDir(store.location()).filePath(name));
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QByteArray ics = file.readAll();
            const IcalObject object = IcalObject::parse(ics);
            QVERIFY(object.valid);
            QCOMPARE(object.kind, kind == CalendarObject::Task ? QStringLiteral("VTODO") : QStringLiteral("VEVENT"));
            QCOMPARE(object.prodId, CalendarObject::productId());
            QCOMPARE(name, object.uid + QLatin1String(".ics"));
            uids.append(object.uid);
            QCOMPARE(object.stamp, Clock::now().toUTC());
            QCOMPARE(object.summary, item.name());
            const QDate date = due.isEmpty() ? QDate() : Outline::date(due).toDate();
            QCOMPARE(kind == CalendarObject::Task ? object.due : object.start, date);
            QCOMPARE(kind == CalendarObject::Task ? object.dueIsDate : object.startIsDate, !due.isEmpty());
            QVERIFY(!(kind == CalendarObject::Task ? object.start : object.due).isValid());
            QCOMPARE(object.categories, category.isEmpty() ? QStringList() : QStringList{category});
            QCOMPARE(object.description, note);
            if (noteType == Document::RichInk) {
                QCOMPARE(object.attachment, item.note());
                QCOMPARE(object.attachmentEncoding, QStringLiteral("BASE64"));
                QVERIFY(ics.contains(";VALUE=BINARY"));
            } else {
                QVERIFY(object.attachment.isEmpty());
            }
        }
        QVERIFY(uids[0] != uids[1]);
    }

    void eachChildRule_data()
    {
        QTest::addColumn<QString>("item");
        QTest::addColumn<bool>("eachChild");
        QTest::addColumn<int>("refuseAt");
        QTest::addColumn<QStringList>("created");

        QTest::newRow("yes: each direct child, in order") << "Parent" << true << -1 << QStringList{"A", "B", "C"};
        QTest::newRow("no: the item alone") << "Parent" << false << -1 << QStringList{"Parent"};
        QTest::newRow("no children: the item") << "Leaf" << true << -1 << QStringList{"Leaf"};
        QTest::newRow("a refused object is skipped") << "Parent" << true << 1 << QStringList{"A", "C"};
        QTest::newRow("the item refused") << "Leaf" << false << 0 << QStringList{};
    }

    void eachChildRule()
    {
        QFETCH(QString, item);
        QFETCH(bool, eachChild);
        QFETCH(int, refuseAt);
        QFETCH(QStringList, created);

        Document document;
        Outline::build(document.root(), "Parent\n  A\n    A1\n  B\n  C\nLeaf\n");
        MemoryStore store;
        store.refuseAt = refuseAt;
        const CalendarStore::CreateResult result =
            store.createFor(*Outline::find(document.root(), item), 0, CalendarObject::Task, eachChild);
        QCOMPARE(summaries(store.added), created);
        QCOMPARE(result.created, int(created.size()));
        QCOMPARE(result.errors, refuseAt < 0 ? QStringList() : QStringList{QStringLiteral("refused")});
        QCOMPARE(result.allCreated(), refuseAt < 0);
    }

    void storeCategories()
    {
        QTemporaryDir dir;
        writeFile(dir.filePath(QStringLiteral("a.ics")),
                  "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Other//EN\r\nBEGIN:VTODO\r\nUID:a\r\n"
                  "DTSTAMP:20240101T000000Z\r\nCATEGORIES:Work,Errands\r\nEND:VTODO\r\nEND:VCALENDAR\r\n");
        writeFile(dir.filePath(QStringLiteral("b.ics")),
                  "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Other//EN\r\nBEGIN:VEVENT\r\nUID:b\r\n"
                  "DTSTAMP:20240101T000000Z\r\nDTSTART;VALUE=DATE:20240101\r\nCATEGORIES:home\r\n"
                  "CATEGORIES:Work\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n");
        writeFile(dir.filePath(QStringLiteral("c.ics")),
                  "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Other//EN\r\nBEGIN:VJOURNAL\r\nUID:c\r\n"
                  "DTSTAMP:20240101T000000Z\r\nCATEGORIES:Journal\r\nEND:VJOURNAL\r\nEND:VCALENDAR\r\n");
        writeFile(dir.filePath(QStringLiteral("d.ics")), "not a calendar at all");
        writeFile(dir.filePath(QStringLiteral("bare.ics")), "BEGIN:VTODO\r\nUID:f\r\nCATEGORIES:Bare\r\nEND:VTODO\r\n");
        writeFile(dir.filePath(QStringLiteral("e.txt")),
                  "BEGIN:VCALENDAR\r\nBEGIN:VTODO\r\nUID:e\r\nCATEGORIES:Elsewhere\r\nEND:VTODO\r\nEND:VCALENDAR\r\n");

        FolderCalendar store(dir.path());
        QStringList categories;
        QString error;
        QVERIFY(store.categories(&categories, &error));
        QCOMPARE(categories, QStringList({"Bare", "Errands", "home", "Work"}));

        FolderCalendar missing(dir.filePath(QStringLiteral("none")));
        QVERIFY(!missing.categories(&categories, &error));
        QCOMPARE(error, message(Messages::CalendarFolderMissing).arg(missing.location()));
        FolderCalendar file(dir.filePath(QStringLiteral("d.ics"))); // a file, not a folder
        QVERIFY(!file.connect(&error));
        QCOMPARE(error, message(Messages::CalendarFolderUnusable).arg(dir.filePath(QStringLiteral("d.ics"))));
    }

    void categoryListAsksTheStoreOnlyWhenOn()
    {
        Document document;
        document.categories = QStringList{"Work"};
        MemoryStore store;
        store.stored = {"BEGIN:VCALENDAR\r\nBEGIN:VTODO\r\nUID:x\r\nCATEGORIES:Calls,Work,work\r\nEND:VTODO\r\n"
                        "END:VCALENDAR\r\n"};
        QCOMPARE(CalendarStore::categoryList(document, false, &store), QStringList{"Work"});
        QCOMPARE(store.fetches, 0);
        QCOMPARE(CalendarStore::categoryList(document, true, &store), QStringList({"Work", "Calls", "work"}));
        store.reachable = false;
        QCOMPARE(CalendarStore::categoryList(document, true, &store), QStringList{"Work"});
        QCOMPARE(CalendarStore::categoryList(document, true, nullptr), QStringList{"Work"});
    }

    void caldavRefusals_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("expected"); // %1 stands for the collection

        QTest::newRow("redirect") << response("301 Moved Permanently", "Location: https://example.org/cal/\r\n")
                                  << message(Messages::CalendarRedirected).arg("%1", "https://example.org/cal/");
        QTest::newRow("401") << response("401 Unauthorized", "WWW-Authenticate: Basic realm=\"x\"\r\n")
                             << message(Messages::CalendarAuthFailed).arg("127.0.0.1");
        QTest::newRow("403") << response("403 Forbidden") << message(Messages::CalendarForbidden);
        QTest::newRow("404") << response("404 Not Found") << message(Messages::CalendarNotFound);
        QTest::newRow("500") << response("500 Internal Server Error")
                             << message(Messages::CalendarServerError).arg(QStringLiteral("%1"), QStringLiteral("500"));
        QTest::newRow("a plain collection") << response("207 Multi-Status", "Content-Type: application/xml\r\n",
                        "<?xml version=\"1.0\"?><multistatus xmlns=\"DAV:\"><response><href>/cal/</href><propstat>"
                        "<prop><resourcetype><collection/></resourcetype></prop><status>HTTP/1.1 200 OK</status>"
                        "</propstat></response></multistatus>")
            << message(Messages::CalendarNotACalendar);
        QTest::newRow("no answer") << QByteArray()
                                   << message(Messages::CalendarTimeout).arg(QStringLiteral("%1"), QStringLiteral("1"));
    }

    void caldavRefusals()
    {
        QFETCH(QByteArray, answer);
        QFETCH(QString, expected);
        ScriptedHttp server(answer);
        CalDavCalendar store(QUrl(server.url("/cal")), QStringLiteral("alice"), QStringLiteral("secret"));
        store.setTimeout(400);
        QString error;
        QVERIFY(!store.connect(&error));
        QCOMPARE(error, expected.replace(QLatin1String("%1"), server.url("/cal/")));
    }
};

QTEST_GUILESS_MAIN(TestCalendarStore)
#include "tst_calendarstore.moc"
