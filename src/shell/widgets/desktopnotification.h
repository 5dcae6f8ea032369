#pragma once

#include <QObject>
#include <QString>

#ifdef QUILLBOX_HAVE_DBUS
#include <QDBusConnection>
#endif

/// The reminder news as a desktop notification (org.freedesktop.Notifications
/// on the session bus), with the bubble's two commands as its actions. Each
/// notification replaces the one before. Without a notification service
/// nothing happens; calls never block.
class DesktopNotification : public QObject {
    Q_OBJECT
public:
    /// On the session bus.
    explicit DesktopNotification(QObject *parent = nullptr);
#ifdef QUILLBOX_HAVE_DBUS
    explicit DesktopNotification(const QDBusConnection &bus, QObject *parent = nullptr);
#endif
    ~DesktopNotification() override;

    /// Shows summary and body (bold markup only), replacing our last one.
    void show(const QString &summary, const QString &body);
    /// Takes our notification away.
    void close();
    /// The service's id of our notification; 0 when none is known.
    quint32 currentId() const
    {
        return m_id;
    }

Q_SIGNALS:
    /// An action was chosen: 1990 "Dismiss All" or 1991 "View Reminders".
    void commandRequested(int id);

private Q_SLOTS:
    // Connected by name: QtDBus delivers bus signals only to slots named so.
    void onActionInvoked(uint id, const QString &action);
    void onClosed(uint id, uint reason);

private:
    void listen();

#ifdef QUILLBOX_HAVE_DBUS
    QDBusConnection m_bus;
#endif
    quint32 m_id = 0;
    int m_pending = 0; // Notify calls without a reply yet
    bool m_closeWanted = false;
};
