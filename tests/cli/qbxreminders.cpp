#include "support/outline.h"
#include "support/qbxprocess.h"

#include "storage/documentfile.h"

#include <QTemporaryDir>
#include <QTest>

namespace {

const char *const Sample = R"(
Plan | exp
  Call Ann | rem=2024-03-01T10:00
  Pay rent | rem0=2024-03-01T09:00
Trip | rem=2024-03-16T08:30
  Pack | rem=2024-03-01T09:30
Old | rem=2024-02-20T07:00
Call Bob | rem=2024-03-01T09:45
)";

const char *const List = "2\t2024-03-01 10:00\tCall Ann\n"
                         "4\t2024-03-16 08:30\tTrip\n"
                         "5\t2024-03-01 09:30\tPack\n"
                         "6\t2024-02-20 07:00\tOld\n"
                         "7\t2024-03-01 09:45\tCall Bob\n";

} // namespace

class TestQbxReminders : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void reminders_data();
    void reminders();

private:
    QTemporaryDir m_dir;
    QString m_path;
};

void TestQbxReminders::initTestCase()
{
    QVERIFY(m_dir.isValid());
    Document document;
    Outline::build(document.root(), Sample);
    m_path = m_dir.filePath(QStringLiteral("plan.qbx"));
    QVERIFY(DocumentFile::save(document, m_path));
}

void TestQbxReminders::reminders_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("out");

    const QString at = QStringLiteral("--at=2024-03-01 09:00:00");
    QTest::newRow("list") << QStringList({at}) << 0 << List;
    // Call Bob is last in the list: Pack and Old wait for him; Trip comes in
    // reach when the ten-day timer runs on 03-11.
    QTest::newRow("bubbles") << QStringList({at, QStringLiteral("--until=2024-03-31 00:00:00")}) << 0
                             << QString::fromLatin1(List) + "bubble\t2024-03-01 09:45\t5,6,7\n"
                                                            "bubble\t2024-03-01 10:00\t2\n"
                                                            "bubble\t2024-03-16 08:30\t4\n";
    QTest::newRow("until is exclusive of a later wake")
        << QStringList({at, QStringLiteral("--until=2024-03-01 09:45:00")}) << 0 << List;
    QTest::newRow("bad time") << QStringList({QStringLiteral("--at=2024-03-01 9:00")}) << 2 << "";
    QTest::newRow("until before at") << QStringList({at, QStringLiteral("--until=2024-02-01 00:00:00")}) << 2 << "";
}

void TestQbxReminders::reminders()
{
    QFETCH(QStringList, options);
    QFETCH(int, status);
    QFETCH(QString, out);
    const QbxRun run = qbx(QStringList({QStringLiteral("reminders"), m_path}) + options);
    QCOMPARE(run.status, status);
    QCOMPARE(run.text(), out);
}

QBX_SUITE(TestQbxReminders)
#include "qbxreminders.moc"
