#include "support/icalobject.h"
#include "support/outline.h"

#include "integration/caldavcalendar.h"
#include "integration/calendarobject.h"
#include "integration/foldercalendar.h"
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
struct MemoryStore : CalendarStore {
    QList<QByteArray> added, stored;
    int refuseAt = -1, calls = 0, fetches = 0; // refuseAt: the addObject call, counted from 0, that fails
    bool reachable = true;

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
    bool fetchObjects(QList<QByteArray> *objects, QString *) override
    {
        ++fetches;
        *objects = reachable ? stored : QList<QByteArray>();
        return reachable;
    }
};

// Answers every request with one scripted HTTP response, or never when the response is empty.
struct ScriptedHttp : QTcpServer {
    explicit ScriptedHttp(const QByteArray &response)
    {
        listen(QHostAddress::LocalHost, 0);
        QObject::connect(this, &QTcpServer::newConnection, this, [this, response] {
            while (QTcpSocket *socket = nextPendingConnection()) {
                QObject::connect(socket, &QTcpSocket::readyRead, socket,
                                 [socket, response, request = QByteArray()]() mutable {
                                     request += socket->readAll();
                                     if (!response.isEmpty() && request.contains("\r\n\r\n")) {
                                         socket->write(response);
                                         socket->disconnectFromHost();
                                     }
                                 });
            }
        });
    }
    QString url(const char *path) const
    {
        return QStringLiteral("http://127.0.0.1:%1%2").arg(serverPort()).arg(QLatin1String(path));
    }
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

    void objectBytes()
    {
        Item item(QStringLiteral("Call Ann, today"));
        item.setDueDate(Outline::date(QStringLiteral("2024-03-05T09:30")));
        item.setCategory(QStringLiteral("Phone calls"));
        item.setNote(NoteText::toPlainNote(QStringLiteral("Bring the list;\nand the keys")));
        const QByteArray ics =
            CalendarObject::fromItem(item, Document::PlainText, CalendarObject::Task, QStringLiteral("u1@test"),
                                     QDateTime(QDate(2026, 1, 2), QTime(3, 4, 5), Qt::UTC));
        QCOMPARE(ics, QByteArray("BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Quillbox//Quillbox " QUILLBOX_VERSION
                                 "//EN\r\nBEGIN:VTODO\r\nUID:u1@test\r\nDTSTAMP:20260102T030405Z\r\n"
                                 "SUMMARY:Call Ann\\, today\r\nDUE;VALUE=DATE:20240305\r\nCATEGORIES:Phone calls\r\n"
                                 "DESCRIPTION:Bring the list\\;\\nand the keys\r\nEND:VTODO\r\nEND:VCALENDAR\r\n"));
        item.setDueDate({2024, 2, 0, 30, 0, 0, 0, 0}); // a date the calendar cannot hold is left out
        QVERIFY(!CalendarObject::fromItem(item, 0, CalendarObject::Task, QStringLiteral("u2"), {}).contains("DUE"));
    }

    void mapping()
    {
        const struct {
            CalendarObject::Kind kind;
            int noteType;
            const char *due, *category, *note;
        } cases[] = {{CalendarObject::Appointment, 0, "2024-12-31T23:59", "Büro später", "x"},
                     {CalendarObject::Task, 0, "", "", ""},
                     {CalendarObject::Appointment, 0, "", "", ""},
                     {CalendarObject::Appointment, 2, "", "", "Bold\nplain"}, // rich text
                     {CalendarObject::Task, 1, "", "", "ink\ntext"}};         // rich ink: the note attached too
        for (const auto &c : cases) {
            Item item(QStringLiteral("Ünïcode name"));
            Outline::setFields(&item, *c.due ? QStringLiteral("due=") + QLatin1String(c.due) : QString());
            item.setCategory(QString::fromUtf8(c.category));
            item.setNote(NoteText::fromText(QString::fromUtf8(c.note), quint16(c.noteType)));
            const IcalObject object =
                IcalObject::parse(CalendarObject::fromItem(item, quint16(c.noteType), c.kind, "u", Clock::now()));
            const bool task = c.kind == CalendarObject::Task;
            QCOMPARE(object.kind, task ? QStringLiteral("VTODO") : QStringLiteral("VEVENT"));
            QCOMPARE(object.summary, item.name());
            QCOMPARE(task ? object.due : object.start, item.hasDueDate() ? item.dueDate().toDate() : QDate());
            QCOMPARE(task ? object.dueIsDate : object.startIsDate, item.hasDueDate());
            QCOMPARE(object.categories, *c.category ? QStringList{item.category()} : QStringList());
            QCOMPARE(object.description, QString::fromUtf8(c.note));
            QCOMPARE(object.attachment, c.noteType == Document::RichInk ? item.note() : QByteArray());
        }
    }

    void eachChildRule()
    {
        const struct {
            const char *item;
            bool eachChild;
            int refuseAt;
            QStringList created;
        } cases[] = {{"Parent", true, -1, {"A", "B", "C"}}, // each direct child, in order
                     {"Parent", false, -1, {"Parent"}},
                     {"Leaf", true, -1, {"Leaf"}},    // no children: the item
                     {"Parent", true, 1, {"A", "C"}}, // a refused object is skipped
                     {"Leaf", false, 0, {}}};
        for (const auto &c : cases) {
            Outline::Doc document("Parent\n  A\n    A1\n  B\n  C\nLeaf\n");
            MemoryStore store;
            store.refuseAt = c.refuseAt;
            const auto result = store.createFor(*document[c.item], 0, CalendarObject::Task, c.eachChild);
            QStringList created;
            for (const QByteArray &ics : store.added)
                created.append(IcalObject::parse(ics).summary);
            QCOMPARE(created, c.created);
            QCOMPARE(result.created, int(c.created.size()));
            QCOMPARE(result.errors, c.refuseAt < 0 ? QStringList() : QStringList{QStringLiteral("refused")});
            QCOMPARE(result.allCreated(), c.refuseAt < 0);
        }
    }

    void folderStore()
    {
        QTemporaryDir dir;
        const auto object = [](const char *component, const char *lines) {
            return QByteArray("BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Other//EN\r\nBEGIN:") + component +
                   "\r\nUID:x\r\nDTSTAMP:20240101T000000Z\r\n" + lines + "END:" + component + "\r\nEND:VCALENDAR\r\n";
        };
        const std::pair<const char *, QByteArray> written[] = {
            {"a.ics", object("VTODO", "CATEGORIES:Work,Errands\r\n")},
            {"b.ics", object("VEVENT", "DTSTART;VALUE=DATE:20240101\r\nCATEGORIES:home\r\nCATEGORIES:Work\r\n")},
            {"c.ics", object("VJOURNAL", "CATEGORIES:Journal\r\n")},
            {"d.ics", "not a calendar at all"},
            {"bare.ics", "BEGIN:VTODO\r\nUID:f\r\nCATEGORIES:Bare\r\nEND:VTODO\r\n"},
            {"e.txt", object("VTODO", "CATEGORIES:Elsewhere\r\n")}};
        for (const auto &[name, bytes] : written) {
            QFile file(dir.filePath(QLatin1String(name)));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        }
        QStringList categories;
        QString error;
        QVERIFY(FolderCalendar(dir.path()).categories(&categories, &error));
        QCOMPARE(categories, QStringList({"Bare", "Errands", "home", "Work"}));

        FolderCalendar missing(dir.filePath(QStringLiteral("none")));
        QVERIFY(!missing.categories(&categories, &error));
        QCOMPARE(error, message(Messages::CalendarFolderMissing).arg(missing.location()));
        FolderCalendar notAFolder(dir.filePath(QStringLiteral("d.ics")));
        QVERIFY(!notAFolder.connect(&error));
        QCOMPARE(error, message(Messages::CalendarFolderUnusable).arg(notAFolder.location()));

        // A new folder is made, and each object written to a file named by its new uid, stamped now.
        FolderCalendar store(dir.filePath(QStringLiteral("cal")));
        const Item item(QStringLiteral("a"));
        QVERIFY(store.connect(&error) && store.createTask(item, 0, &error) && store.createTask(item, 0, &error));
        const QDir folder(store.location());
        const QStringList files = folder.entryList({QStringLiteral("*.ics")}, QDir::Files);
        QCOMPARE(files.size(), 2);
        for (const QString &name : files) {
            QFile file(folder.filePath(name));
            QVERIFY(file.open(QIODevice::ReadOnly));
            const IcalObject object = IcalObject::parse(file.readAll());
            QCOMPARE(name, object.uid + QLatin1String(".ics"));
            QCOMPARE(object.stamp, Clock::now().toUTC());
        }
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
    }

    void caldavAnswers()
    {
        const auto multistatus = [](const char *resourceType) {
            return response("207 Multi-Status", "Content-Type: application/xml\r\n",
                            QByteArray("<?xml version=\"1.0\"?><multistatus xmlns=\"DAV:\" xmlns:C=\"urn:ietf:params:"
                                       "xml:ns:caldav\"><response><href>/cal/</href><propstat><prop><resourcetype>") +
                                resourceType +
                                "</resourcetype></prop><status>HTTP/1.1 200 OK</status></propstat>"
                                "</response></multistatus>");
        };
        // The answer, and the error it gives (%1 for the collection; none for a calendar).
        const std::pair<QByteArray, QString> cases[] = {
            {response("301 Moved Permanently", "Location: https://example.org/cal/\r\n"),
             message(Messages::CalendarRedirected).arg("%1", "https://example.org/cal/")},
            {response("401 Unauthorized", "WWW-Authenticate: Basic realm=\"x\"\r\n"),
             message(Messages::CalendarAuthFailed).arg("127.0.0.1")},
            {response("403 Forbidden"), message(Messages::CalendarForbidden)},
            {response("404 Not Found"), message(Messages::CalendarNotFound)},
            {response("500 Internal Server Error"), message(Messages::CalendarServerError).arg("%1", "500")},
            {multistatus("<collection/>"), message(Messages::CalendarNotACalendar)},
            {multistatus("<collection/><C:calendar/>"), QString()},
            {multistatus("</resourcetype><C:calendar/><resourcetype>"), message(Messages::CalendarNotACalendar)},
            {QByteArray(), message(Messages::CalendarTimeout).arg("%1", "1")}}; // no answer at all
        for (auto [answer, expected] : cases) {
            ScriptedHttp server(answer);
            CalDavCalendar store(QUrl(server.url("/cal")), QStringLiteral("alice"), QStringLiteral("secret"));
            store.setTimeout(400);
            QString error;
            QCOMPARE(store.connect(&error), expected.isEmpty());
            QCOMPARE(error, expected.replace(QLatin1String("%1"), server.url("/cal/")));
        }
    }
};

QTEST_GUILESS_MAIN(TestCalendarStore)
#include "tst_calendarstore.moc"
