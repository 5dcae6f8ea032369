#include "support/icalobject.h"
#include "support/outline.h"
#include "support/radicaleserver.h"

#include "integration/caldavcalendar.h"
#include "platform/collation.h"
#include "platform/messages.h"

#include <QTest>
#include <map>

namespace {

QString message(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

// Against a real CalDAV server: Radicale on the loopback address.
class TestCalDav : public QObject {
    Q_OBJECT

private:
    RadicaleServer m_server;

    CalDavCalendar store(const QString &calendar = QStringLiteral("tasks"),
                         const QString &password = QLatin1String(RadicaleServer::Password))
    {
        return CalDavCalendar(m_server.calendarUrl(calendar), QLatin1String(RadicaleServer::User), password);
    }

private Q_SLOTS:
    void initTestCase()
    {
        if (RadicaleServer::program().isEmpty())
            QSKIP("radicale is not installed; scripts/setup installs it");
        Collation::instance().setLocale(QLocale(QStringLiteral("en_US")));
        QString error;
        QVERIFY2(m_server.start(&error), qPrintable(error));
    }

    void objectsArriveWithTheirFields()
    {
        Document document;
        Outline::build(document.root(), "Move | cat=Home due=2024-03-01\n"
                                        "  Give notice | cat=Home due=2024-03-31 note=Registered_letter\n"
                                        "    Find the contract | cat=Papers\n"
                                        "  Book the van\n"
                                        "  Pack | cat=Errands\n");
        CalDavCalendar calendar = store();
        QString error;
        QVERIFY2(calendar.connect(&error), qPrintable(error));
        const CalendarStore::CreateResult result =
            calendar.createFor(*Outline::find(document.root(), QStringLiteral("Move")), 0, CalendarObject::Task, true);
        QVERIFY2(result.allCreated(), qPrintable(result.errors.join(QLatin1Char('\n'))));
        QCOMPARE(result.created, 3);
        QVERIFY(calendar.createAppointment(*Outline::find(document.root(), QStringLiteral("Move")), 0, &error));

        std::map<QString, IcalObject> arrived;
        for (const QByteArray &ics : m_server.storedObjects()) {
            const IcalObject object = IcalObject::parse(ics);
            arrived[object.summary] = object;
        }
        QCOMPARE(arrived.size(), size_t(4));
        const IcalObject &notice = arrived["Give notice"];
        QCOMPARE(notice.kind, QStringLiteral("VTODO"));
        QCOMPARE(notice.due, QDate(2024, 3, 31));
        QVERIFY(notice.dueIsDate);
        QCOMPARE(notice.categories, QStringList{"Home"});
        QCOMPARE(notice.description, QStringLiteral("Registered letter"));
        const IcalObject &van = arrived["Book the van"];
        QCOMPARE(van.kind, QStringLiteral("VTODO"));
        QVERIFY(!van.due.isValid());
        QVERIFY(van.categories.isEmpty());
        QCOMPARE(arrived["Pack"].categories, QStringList{"Errands"});
        const IcalObject &move = arrived["Move"];
        QCOMPARE(move.kind, QStringLiteral("VEVENT"));
        QCOMPARE(move.start, QDate(2024, 3, 1));
        QVERIFY(move.startIsDate);
    }

    void categoriesOfTasksAndEvents()
    {
        QString error;
        QVERIFY2(m_server.makeCalendar(QStringLiteral("mixed"), &error), qPrintable(error));
        const QByteArray type = "text/calendar; charset=utf-8";
        const auto put = [&](const char *name, const char *component, const char *categories) {
            const QByteArray ics = QByteArray("BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Other//EN\r\nBEGIN:") +
                                   component + "\r\nUID:" + name +
                                   "\r\nDTSTAMP:20240101T000000Z\r\nDTSTART;VALUE=DATE:20240101\r\nSUMMARY:s\r\n" +
                                   categories + "END:" + component + "\r\nEND:VCALENDAR\r\n";
            return m_server.request("PUT",
                                    m_server.calendarUrl(QStringLiteral("mixed"))
                                        .resolved(QUrl(QLatin1String(name) + QLatin1String(".ics"))),
                                    ics, type);
        };
        QCOMPARE(put("t1", "VTODO", "CATEGORIES:Work,Calls\r\n"), 201);
        QCOMPARE(put("e1", "VEVENT", "CATEGORIES:home\r\n"), 201);
        QCOMPARE(put("e2", "VEVENT", "CATEGORIES:Work\r\n"), 201);
        QCOMPARE(put("j1", "VJOURNAL", "CATEGORIES:Diary\r\n"), 201);

        CalDavCalendar calendar = store(QStringLiteral("mixed"));
        QStringList categories;
        QVERIFY2(calendar.categories(&categories, &error), qPrintable(error));
        QCOMPARE(categories, QStringList({"Calls", "home", "Work"}));
    }

    void refusals()
    {
        Item item(QStringLiteral("Once"));
        QString error;

        CalDavCalendar wrongPassword = store(QStringLiteral("tasks"), QStringLiteral("guess"));
        QVERIFY(!wrongPassword.connect(&error));
        QCOMPARE(error, message(Messages::CalendarAuthFailed).arg(QStringLiteral("127.0.0.1")));
        QVERIFY(!wrongPassword.createTask(item, 0, &error));
        QCOMPARE(error, message(Messages::CalendarAuthFailed).arg(QStringLiteral("127.0.0.1")));

        CalDavCalendar calendar = store();
        const QByteArray ics = CalendarObject::fromItem(item, 0, CalendarObject::Task, QStringLiteral("twice"),
                                                        QDateTime::currentDateTimeUtc());
        QVERIFY2(calendar.addObject(QStringLiteral("twice"), ics, &error), qPrintable(error));
        QVERIFY(!calendar.addObject(QStringLiteral("twice"), ics, &error));
        QCOMPARE(error, message(Messages::CalendarObjectExists).arg(calendar.location()));

        CalDavCalendar unencrypted(QUrl(QStringLiteral("http://192.0.2.1/cal/")), QStringLiteral("alice"),
                                   QStringLiteral("secret"));
        QVERIFY(!unencrypted.connect(&error));
        QCOMPARE(error, message(Messages::CalendarHttpsRequired).arg(QStringLiteral("http://192.0.2.1/cal/")));
        for (const char *address : {"https:///cal/", "ftp://example.org/cal/"}) {
            CalDavCalendar bad(QUrl(QString::fromLatin1(address)), QStringLiteral("alice"), QStringLiteral("secret"));
            QVERIFY(!bad.connect(&error));
            QCOMPARE(error, message(Messages::CalendarBadAddress).arg(bad.location()));
        }
    }

    void stoppedServer()
    {
        m_server.stop();
        CalDavCalendar calendar = store();
        QString error;
        QVERIFY(!calendar.connect(&error));
        QVERIFY2(error.startsWith(message(Messages::CalendarNoConnection).arg(calendar.location(), QString())),
                 qPrintable(error));
        Item item(QStringLiteral("Lost"));
        QVERIFY(!calendar.createTask(item, 0, &error));
    }
};

QTEST_GUILESS_MAIN(TestCalDav)
#include "tst_caldav.moc"
