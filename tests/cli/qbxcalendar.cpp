#include "support/icalobject.h"
#include "support/outline.h"
#include "support/qbxprocess.h"
#include "support/radicaleserver.h"

#include "platform/messages.h"
#include "storage/documentfile.h"

#include <QTemporaryDir>
#include <QTest>

namespace {

// qbx with the calendar password in its environment.
QbxRun withPassword(const QStringList &arguments, const QString &password = QString())
{
    return qbx(arguments, {{}, {}, {}, {{QStringLiteral("QUILLBOX_CALDAV_PASSWORD"), password}}});
}

// Positions: 1 Move, 2 Give notice, 3 Find the contract, 4 Book the van, 5 Pack.
const char *const Plan = "Move | cat=Home due=2024-03-01\n"
                         "  Give notice | cat=Home due=2024-03-31 note=Registered_letter\n"
                         "    Find the contract | cat=Papers\n"
                         "  Book the van\n"
                         "  Pack | cat=Errands\n";

} // namespace

class TestQbxCalendar : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    QString m_path;
    const QByteArray m_created = "3 object(s) created in the calendar.\n";

private Q_SLOTS:
    void initTestCase()
    {
        Document document;
        Outline::build(document.root(), Plan);
        document.collectCategory(QStringLiteral("Home"));
        document.collectCategory(QStringLiteral("Papers"));
        m_path = m_dir.filePath(QStringLiteral("plan.qbx"));
        QVERIFY(DocumentFile::save(document, m_path));
    }

    void folderStore()
    {
        const QString folder = m_dir.filePath(QStringLiteral("calendar"));
        const QByteArray before = fileBytes(m_path);
        QCOMPARE(withPassword({"create", "task", m_path, "--to", "1", "--children", "--store", folder}),
                 (QbxRun{0, m_created, ""}));
        QCOMPARE(withPassword({"create", "appointment", m_path, "--to", "2", "--store", folder}),
                 (QbxRun{0, "1 object(s) created in the calendar.\n", ""}));
        QCOMPARE(fileBytes(m_path), before);
        QStringList summaries;
        const QDir dir(folder);
        for (const QString &name : dir.entryList({QStringLiteral("*.ics")}, QDir::Files)) {
            const IcalObject object = IcalObject::parse(fileBytes(dir.filePath(name)));
            summaries.append(object.kind + QLatin1Char(' ') + object.summary);
        }
        summaries.sort();
        QCOMPARE(summaries,
                 QStringList({"VEVENT Give notice", "VTODO Book the van", "VTODO Give notice", "VTODO Pack"}));

        writeBytes(dir.filePath(QStringLiteral("other.ics")),
                   "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Other//EN\r\nBEGIN:VTODO\r\nUID:o\r\n"
                   "DTSTAMP:20240101T000000Z\r\nCATEGORIES:home\r\nEND:VTODO\r\nEND:VCALENDAR\r\n");
        QCOMPARE(withPassword({"categories", m_path, "--store", folder}).text(),
                 QStringLiteral("Home\nPapers\nErrands\nhome\n"));
        QCOMPARE(withPassword({"categories", m_path}).text(), QStringLiteral("Home\nPapers\nErrands\n"));

        const QString http = QStringLiteral("http://192.0.2.1/cal/");
        const QString refused = QString::fromUtf8(Messages::CalendarUnreachable)
                                    .arg(QString::fromUtf8(Messages::CalendarHttpsRequired).arg(http));
        QCOMPARE(withPassword({"create", "task", m_path, "--to", "1", "--store", http}),
                 (QbxRun{9, "", refused.toUtf8() + '\n'}));
        QCOMPARE(withPassword({"create", "task", m_path, "--to", "9", "--store", folder}).status, 2);
    }

    void caldavStore()
    {
        if (RadicaleServer::program().isEmpty())
            QSKIP("radicale is not installed; scripts/setup installs it");
        RadicaleServer server;
        QString error;
        QVERIFY2(server.start(&error), qPrintable(error));
        const QString url = server.calendarUrl().toString();
        const QStringList create{"create",     "task",    m_path, "--to",   "1",
                                 "--children", "--store", url,    "--user", "alice"};
        QbxRun run = withPassword(create, QStringLiteral("wrong"));
        QCOMPARE(run.status, 9);
        QVERIFY2(run.error().contains(QString::fromUtf8(Messages::CalendarAuthFailed).arg("127.0.0.1")),
                 run.err.constData());
        QVERIFY(server.storedObjects().isEmpty());
        QCOMPARE(withPassword(create, QStringLiteral("secret")), (QbxRun{0, m_created, ""}));
        QCOMPARE(server.storedObjects().size(), 3);

        QCOMPARE(server.request("PUT", server.calendarUrl().resolved(QUrl(QStringLiteral("call.ics"))),
                                "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Other//EN\r\nBEGIN:VEVENT\r\nUID:call\r\n"
                                "DTSTAMP:20240101T000000Z\r\nDTSTART;VALUE=DATE:20240101\r\nCATEGORIES:Calls\r\n"
                                "END:VEVENT\r\nEND:VCALENDAR\r\n",
                                "text/calendar"),
                 201);
        run = withPassword({"categories", m_path, "--store", url, "--user", "alice"}, QStringLiteral("secret"));
        QCOMPARE(run.text(), QStringLiteral("Home\nPapers\nErrands\nCalls\n"));
    }
};

QBX_SUITE(TestQbxCalendar)
#include "qbxcalendar.moc"
