#include "support/outline.h"
#include "support/qbxprocess.h"
#include "support/radicaleserver.h"

#include "platform/messages.h"
#include "storage/documentfile.h"

#include <QTemporaryDir>

namespace {

QbxRun withPassword(const QStringList &arguments, const QString &password = QString())
{
    return qbx(arguments, {{}, {}, {{QStringLiteral("QUILLBOX_CALDAV_PASSWORD"), password}}});
}

} // namespace

class TestQbxCalendar : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    const QString m_path = m_dir.filePath(QStringLiteral("plan.qbx"));
    const QByteArray m_created = "3 object(s) created in the calendar.\n";

private Q_SLOTS:
    void initTestCase()
    {
        // Positions: 1 Move, 2 Give notice, 3 Find the contract, 4 Book the van, 5 Pack.
        Document document;
        Outline::build(document.root(), "Move | cat=Home due=2024-03-01\n  Give notice | cat=Home due=2024-03-31\n"
                                        "    Find the contract | cat=Papers\n  Book the van\n  Pack | cat=Errands\n");
        document.collectCategory(QStringLiteral("Home"));
        document.collectCategory(QStringLiteral("Papers"));
        QVERIFY(DocumentFile::save(document, m_path));
    }

    void folderStore()
    {
        const QString folder = m_dir.filePath(QStringLiteral("calendar"));
        const QByteArray before = fileBytes(m_path);
        QCOMPARE(withPassword({"create", "task", m_path, "--to", "1", "--children", "--store", folder}),
                 printed(m_created));
        QCOMPARE(withPassword({"create", "appointment", m_path, "--to", "2", "--store", folder}),
                 printed("1 object(s) created in the calendar.\n"));
        QCOMPARE(fileBytes(m_path), before);
        QByteArray objects;
        const QDir dir(folder);
        for (const QString &name : dir.entryList({QStringLiteral("*.ics")}, QDir::Files))
            objects += fileBytes(dir.filePath(name));
        QCOMPARE(std::pair(objects.count("BEGIN:VTODO"), objects.count("BEGIN:VEVENT")),
                 std::pair(qsizetype(3), qsizetype(1)));

        writeBytes(dir.filePath(QStringLiteral("other.ics")),
                   "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Other//EN\r\nBEGIN:VTODO\r\nUID:o\r\n"
                   "DTSTAMP:20240101T000000Z\r\nCATEGORIES:home\r\nEND:VTODO\r\nEND:VCALENDAR\r\n");
        QCOMPARE(withPassword({"categories", m_path, "--store", folder}), printed("Home\nPapers\nErrands\nhome\n"));
        QCOMPARE(withPassword({"categories", m_path}), printed("Home\nPapers\nErrands\n"));

        const QString http = QStringLiteral("http://192.0.2.1/cal/");
        const QString unreachable = QString::fromUtf8(Messages::CalendarUnreachable)
                                        .arg(QString::fromUtf8(Messages::CalendarHttpsRequired).arg(http));
        QCOMPARE(withPassword({"create", "task", m_path, "--to", "1", "--store", http}),
                 refused(9, unreachable.toUtf8() + '\n'));
        QCOMPARE(withPassword({"create", "task", m_path, "--to", "9", "--store", folder}).status, 2);
    }

    // The user and the password reach the calendar server.
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
        const QbxRun run = withPassword(create, QStringLiteral("wrong"));
        QCOMPARE(run.status, 9);
        QVERIFY2(run.error().contains(QString::fromUtf8(Messages::CalendarAuthFailed).arg("127.0.0.1")),
                 run.err.constData());
        QVERIFY(server.storedObjects().isEmpty());
        QCOMPARE(withPassword(create, QStringLiteral("secret")), printed(m_created));
        QCOMPARE(server.storedObjects().size(), 3);
    }
};

QBX_SUITE(TestQbxCalendar)
#include "qbxcalendar.moc"
