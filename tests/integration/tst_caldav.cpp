#include "support/radicaleserver.h"

#include "integration/caldavcalendar.h"
#include "model/item.h"
#include "platform/collation.h"
#include "platform/messages.h"

#include <QTest>

// Against a real CalDAV server: Radicale on the loopback address.
class TestCalDav : public QObject {
    Q_OBJECT

private:
    RadicaleServer m_server;

    CalDavCalendar store(const QString &password = QLatin1String(RadicaleServer::Password))
    {
        return CalDavCalendar(m_server.calendarUrl(), QLatin1String(RadicaleServer::User), password);
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

    void addsFetchesAndRefuses()
    {
        QString error;
        Item item(QStringLiteral("Once"));
        CalDavCalendar wrongPassword = store(QStringLiteral("guess"));
        QVERIFY(!wrongPassword.createTask(item, 0, &error));
        QCOMPARE(error, QString::fromUtf8(Messages::CalendarAuthFailed).arg(QStringLiteral("127.0.0.1")));

        CalDavCalendar calendar = store();
        QVERIFY2(calendar.connect(&error), qPrintable(error)); // the server's own answer names a calendar
        // Objects of other programs: the categories of tasks and events count, a journal's do not.
        const char *const others[][3] = {{"t1", "VTODO", "Work,Calls"},
                                         {"e1", "VEVENT", "home"},
                                         {"e2", "VEVENT", "Work"},
                                         {"j1", "VJOURNAL", "Diary"}};
        for (const auto &[uid, kind, categories] : others) {
            const QByteArray ics = QByteArray("BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Other//EN\r\nBEGIN:") +
                                   kind + "\r\nUID:" + uid +
                                   "\r\nDTSTAMP:20240101T000000Z\r\nDTSTART;VALUE=DATE:20240101\r\n" +
                                   "CATEGORIES:" + categories + "\r\nEND:" + kind + "\r\nEND:VCALENDAR\r\n";
            QVERIFY2(calendar.addObject(QLatin1String(uid), ics, &error), qPrintable(error));
        }
        QStringList categories;
        QVERIFY2(calendar.categories(&categories, &error), qPrintable(error));
        QCOMPARE(categories, QStringList({"Calls", "home", "Work"}));

        const QByteArray ics = CalendarObject::fromItem(item, 0, CalendarObject::Task, QStringLiteral("twice"),
                                                        QDateTime::currentDateTimeUtc());
        QVERIFY2(calendar.addObject(QStringLiteral("twice"), ics, &error), qPrintable(error));
        QCOMPARE(m_server.storedObjects().size(), 5);
        QVERIFY(!calendar.addObject(QStringLiteral("twice"), ics, &error));
        QCOMPARE(error, QString::fromUtf8(Messages::CalendarObjectExists).arg(calendar.location()));

        CalDavCalendar unencrypted(QUrl(QStringLiteral("http://192.0.2.1/cal/")), {}, {});
        QVERIFY(!unencrypted.connect(&error));
        QCOMPARE(error, QString::fromUtf8(Messages::CalendarHttpsRequired).arg(unencrypted.location()));
        for (const char *address : {"https:///cal/", "ftp://example.org/cal/"}) {
            CalDavCalendar bad(QUrl(QString::fromLatin1(address)), {}, {});
            QVERIFY(!bad.connect(&error));
            QCOMPARE(error, QString::fromUtf8(Messages::CalendarBadAddress).arg(bad.location()));
        }
    }

    void stoppedServer()
    {
        m_server.stop();
        CalDavCalendar calendar = store();
        QString error;
        QVERIFY(!calendar.connect(&error));
        QVERIFY2(
            error.startsWith(QString::fromUtf8(Messages::CalendarNoConnection).arg(calendar.location(), QString())),
            qPrintable(error));
    }
};

QTEST_GUILESS_MAIN(TestCalDav)
#include "tst_caldav.moc"
