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

/// A notification service that keeps what it was asked.
class FakeNotifications : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")
public:
    struct Call {
        QString app;
        uint replaces;
        QString summary;
        QString body;
        QStringList actions;
        int timeout;
    };
    QList<Call> calls;
    QList<uint> closed;

public Q_SLOTS:
    uint Notify(const QString &app, uint replaces, const QString &, const QString &summary, const QString &body,
                const QStringList &actions, const QVariantMap &, int timeout)
    {
        calls.append({app, replaces, summary, body, actions, timeout});
        return replaces ? replaces : 7;
    }
    void CloseNotification(uint id) { closed.append(id); }
    QStringList GetCapabilities() { return {QStringLiteral("actions"), QStringLiteral("body-markup")}; }
};

} // namespace
#endif

class TestDesktopNotification : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void notifyReplaceActAndClose();

private:
    QTemporaryDir m_dir;
    QProcess m_daemon;
    QString m_address;
};

void TestDesktopNotification::initTestCase()
{
#ifndef QUILLBOX_HAVE_DBUS
    QSKIP("built without D-Bus");
#else
    const QString daemon = QStandardPaths::findExecutable(QStringLiteral("dbus-daemon"));
    if (daemon.isEmpty())
        QSKIP("dbus-daemon is not installed");
    QVERIFY(m_dir.isValid());
    m_daemon.start(daemon, {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                            QStringLiteral("--address=unix:path=") + m_dir.filePath(QStringLiteral("bus"))});
    QVERIFY(m_daemon.waitForStarted());
    while (!m_daemon.canReadLine())
        QVERIFY(m_daemon.waitForReadyRead(10000));
    m_address = QString::fromUtf8(m_daemon.readLine()).trimmed();
    QVERIFY(!m_address.isEmpty());
#endif
}

void TestDesktopNotification::cleanupTestCase()
{
    if (m_daemon.state() != QProcess::NotRunning) {
        m_daemon.terminate();
        m_daemon.waitForFinished(5000);
    }
}

void TestDesktopNotification::notifyReplaceActAndClose()
{
#ifdef QUILLBOX_HAVE_DBUS
    QDBusConnection server = QDBusConnection::connectToBus(m_address, QStringLiteral("server"));
    QVERIFY(server.isConnected());
    FakeNotifications fake;
    QVERIFY(server.registerObject(Path, &fake, QDBusConnection::ExportAllSlots));
    QVERIFY(server.registerService(Service));

    DesktopNotification notification(QDBusConnection::connectToBus(m_address, QStringLiteral("client")));
    QSignalSpy commands(&notification, &DesktopNotification::commandRequested);
    notification.show(QStringLiteral("Quillbox Reminder"), QStringLiteral("<b>a</b> 3/5/24"));
    QTRY_COMPARE(notification.currentId(), 7u);
    QCOMPARE(fake.calls.size(), 1);
    const FakeNotifications::Call &first = fake.calls[0];
    QCOMPARE(first.app, QStringLiteral("Quillbox"));
    QCOMPARE(first.replaces, 0u);
    QCOMPARE(first.summary, QStringLiteral("Quillbox Reminder"));
    QCOMPARE(first.body, QStringLiteral("<b>a</b> 3/5/24"));
    QCOMPARE(first.actions, QStringList({"cmd:1990", "Dismiss All", "cmd:1991", "View Reminders"}));
    QCOMPARE(first.timeout, 3600000);

    notification.show(QStringLiteral("Quillbox Reminder"), QStringLiteral("There are 3 reminders."));
    QTRY_COMPARE(fake.calls.size(), 2);
    QCOMPARE(fake.calls[1].replaces, 7u);

    // Another program's notification is none of ours.
    for (uint id : {8u, 7u}) {
        QDBusMessage signal = QDBusMessage::createSignal(Path, Service, QStringLiteral("ActionInvoked"));
        signal << id << QString::fromLatin1(id == 7 ? "cmd:1991" : "cmd:1990");
        QVERIFY(server.send(signal));
    }
    QTRY_COMPARE(commands.count(), 1);
    QCOMPARE(commands.at(0).at(0).toInt(), 1991);

    notification.close();
    QTRY_COMPARE(fake.closed, QList<uint>({7u}));
    QCOMPARE(notification.currentId(), 0u);
    server.unregisterService(Service);
    QDBusConnection::disconnectFromBus(QStringLiteral("server"));
    QDBusConnection::disconnectFromBus(QStringLiteral("client"));
#endif
}

QTEST_MAIN(TestDesktopNotification)
#include "tst_desktopnotification.moc"
