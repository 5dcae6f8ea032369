#include "support/outline.h"
#include "support/qbxprocess.h"

#include "storage/documentfile.h"

#include <QTemporaryDir>

class TestQbxReminders : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void reminders()
    {
        QTemporaryDir dir;
        Document document;
        Outline::build(document.root(),
                       "Plan | exp\n  Call Ann | rem=2024-03-01T10:00\n  Pay rent | rem0=2024-03-01T09:00"
                       "\nTrip | rem=2024-03-16T08:30\n  Pack | rem=2024-03-01T09:30\nOld | "
                       "rem=2024-02-20T07:00\nCall Bob | rem=2024-03-01T09:45\n");
        const QString path = dir.filePath(QStringLiteral("plan.qbx"));
        QVERIFY(DocumentFile::save(document, path));
        const QString at = QStringLiteral("--at=2024-03-01 09:00:00");
        const QByteArray list = "2\t2024-03-01 10:00\tCall Ann\n4\t2024-03-16 08:30\tTrip\n5\t2024-03-01 09:30\tPack\n"
                                "6\t2024-02-20 07:00\tOld\n7\t2024-03-01 09:45\tCall Bob\n";
        // Pack and Old wait for Call Bob; Trip is in reach once the ten-day timer runs; until is exclusive.
        const std::tuple<QStringList, int, QByteArray> cases[] = {
            {{at}, 0, list},
            {{at, "--until=2024-03-31 00:00:00"},
             0,
             list + "bubble\t2024-03-01 09:45\t5,6,7\nbubble\t2024-03-01 10:00\t2\n"
                    "bubble\t2024-03-16 08:30\t4\n"},
            {{at, "--until=2024-03-01 09:45:00"}, 0, list},
            {{"--at=2024-03-01 9:00"}, 2, ""},
            {{at, "--until=2024-02-01 00:00:00"}, 2, ""},
        };
        for (const auto &[options, status, out] : cases) {
            const QbxRun run = qbx(QStringList({QStringLiteral("reminders"), path}) + options);
            QCOMPARE(std::pair(run.status, run.out), std::pair(status, out));
        }
    }
};

QBX_SUITE(TestQbxReminders)
#include "qbxreminders.moc"
