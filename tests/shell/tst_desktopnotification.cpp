#include "shell/widgets/desktopnotification.h"

#include <QProcess>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#ifdef QUILLBOX_HAVE_DBUS
#include <QDBusConnection>
#include <QDBusMessage>

namespace {

const QString Service = QStringLiteral("org.freedesktop.Notifications");
const QString Path = QStringLiteral("/org/freedesktop/Notifications");

/// A notification service that keeps what it was asked and hands out ids from 7.
class FakeNotifications : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")
public:
    QStringList calls; // app, replaced id, summary, body, actions, timeout: one line per call
    QList<uint> closed;

public Q_SLOTS:
    uint Notify(const QString &app, uint replaces, const QString &, const QString &summary, const QString &body,
                const QStringList &actions, const QVariantMap &, int timeout)
    {
        calls.append(QStringList{app, QString::number(replaces), summary, body, actions.join(QLatin1Char(',')),
                                 QString::number(timeout)}
                         .join(QLatin1Char('|')));
        return replaces ? replaces : 6 + calls.size();
    }
    void CloseNotification(uint id) { closed.append(id); }
};

} // namespace
#endif

/// The notification as it goes over a private bus of the test's own to a notification service of its own.
class TestDesktopNotification : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void notifyReplaceActAndClose()
    {
#ifndef QUILLBOX_HAVE_DBUS
        QSKIP("built without D-Bus");
#else
        const QString daemon = QStandardPaths::findExecutable(QStringLiteral("dbus-daemon"));
        QVERIFY2(!daemon.isEmpty(), "dbus-daemon comes with scripts/setup");
        QTemporaryDir dir;
        QProcess bus;
        bus.start(daemon, {"--session", "--nofork", "--print-address", "--address=unix:path=" + dir.filePath("bus")});
        while (bus.waitForStarted() && !bus.canReadLine())
            QVERIFY(bus.waitForReadyRead(10000));
        const QString address = QString::fromUtf8(bus.readLine()).trimmed();
        QDBusConnection server = QDBusConnection::connectToBus(address, QStringLiteral("server"));
        FakeNotifications fake;
        QVERIFY(server.registerObject(Path, &fake, QDBusConnection::ExportAllSlots) && server.registerService(Service));
        auto notification = std::make_unique<DesktopNotification>(QDBusConnection::connectToBus(address, "client"));
        QSignalSpy commands(notification.get(), &DesktopNotification::commandRequested);
        const auto signal = [&](const char *name, uint id, const QVariant &argument) {
            QVERIFY(
                server.send(QDBusMessage::createSignal(Path, Service, QString::fromLatin1(name)) << id << argument));
        };

        notification->show(QStringLiteral("Quillbox Reminder"), QStringLiteral("<b>a</b> 3/5/24"));
        QTRY_COMPARE(notification->currentId(), 7u);
        notification->show(QStringLiteral("Quillbox Reminder"), QStringLiteral("There are 3 reminders."));
        QTRY_COMPARE(fake.calls.size(), 2);
        QCOMPARE(fake.calls, (QStringList{"Quillbox|0|Quillbox Reminder|<b>a</b> 3/5/24|cmd:1990,Dismiss All,cmd:1991,"
                                          "View Reminders|3600000",
                                          "Quillbox|7|Quillbox Reminder|There are 3 reminders.|cmd:1990,Dismiss All,"
                                          "cmd:1991,View Reminders|3600000"}));
        // Another program's notification is none of ours.
        signal("ActionInvoked", 8, QStringLiteral("cmd:1990"));
        signal("ActionInvoked", 7, QStringLiteral("cmd:1991"));
        QTRY_COMPARE(commands.count(), 1);
        QCOMPARE(commands.at(0).at(0).toInt(), 1991);
        notification->close();
        QTRY_COMPARE(fake.closed, QList<uint>{7u});
        QCOMPARE(notification->currentId(), 0u);

        // Closed by the desktop, ours is forgotten, another's is not; a close asked before the id came waits for it.
        notification->show(QStringLiteral("s"), QStringLiteral("b"));
        QTRY_COMPARE(notification->currentId(), 9u);
        signal("NotificationClosed", 8, 2u);
        signal("ActionInvoked", 9, QStringLiteral("cmd:1990"));
        QTRY_COMPARE(commands.count(), 2);
        QCOMPARE(notification->currentId(), 9u);
        signal("NotificationClosed", 9, 2u);
        QTRY_COMPARE(notification->currentId(), 0u);
        notification->show(QStringLiteral("s"), QStringLiteral("b"));
        notification->close();
        QTRY_COMPARE(fake.closed, (QList<uint>{7u, 10u}));
        notification.reset();
        QDBusConnection::disconnectFromBus(QStringLiteral("server"));
        QDBusConnection::disconnectFromBus(QStringLiteral("client"));
        bus.terminate();
        QVERIFY(bus.waitForFinished(5000));
#endif
    }
};

QTEST_MAIN(TestDesktopNotification)
#include "tst_desktopnotification.moc"
