#include "shell/widgets/desktopnotification.h"

#include "platform/messages.h"
#include "reminders/bubblecontent.h"

#ifdef QUILLBOX_HAVE_DBUS
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#endif

namespace {
const QString Service = QStringLiteral("org.freedesktop.Notifications");
const QString Path = QStringLiteral("/org/freedesktop/Notifications");
const QString Interface = QStringLiteral("org.freedesktop.Notifications");
// The bubble stays an hour; so does the notification.
constexpr int ExpireMs = 3600 * 1000;
} // namespace

#ifdef QUILLBOX_HAVE_DBUS
DesktopNotification::DesktopNotification(QObject *parent) : DesktopNotification(QDBusConnection::sessionBus(), parent)
{
}

DesktopNotification::DesktopNotification(const QDBusConnection &bus, QObject *parent) : QObject(parent), m_bus(bus)
{
    listen();
}
#else
DesktopNotification::DesktopNotification(QObject *parent) : QObject(parent) {}
#endif

DesktopNotification::~DesktopNotification() = default;

void DesktopNotification::listen()
{
#ifdef QUILLBOX_HAVE_DBUS
    if (!m_bus.isConnected())
        return;
    m_bus.connect(Service, Path, Interface, QStringLiteral("ActionInvoked"), this,
                  SLOT(onActionInvoked(uint, QString)));
    m_bus.connect(Service, Path, Interface, QStringLiteral("NotificationClosed"), this, SLOT(onClosed(uint, uint)));
#endif
}

void DesktopNotification::show(const QString &summary, const QString &body)
{
#ifdef QUILLBOX_HAVE_DBUS
    if (!m_bus.isConnected())
        return;
    QDBusMessage call = QDBusMessage::createMethodCall(Service, Path, Interface, QStringLiteral("Notify"));
    const QStringList actions = {QStringLiteral("cmd:1990"), QString::fromLatin1(Messages::DismissAll),
                                 QStringLiteral("cmd:1991"), QString::fromLatin1(Messages::ViewReminders)};
    const QVariantMap hints = {{QStringLiteral("desktop-entry"), QStringLiteral("quillbox")}};
    call << QString::fromLatin1(Messages::Caption) << m_id << QString() << summary << body << actions << hints
         << ExpireMs;
    m_closeWanted = false;
    ++m_pending;
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher *w) {
        const QDBusPendingReply<uint> reply = *w;
        --m_pending;
        if (!reply.isError())
            m_id = reply.value();
        w->deleteLater();
        if (m_closeWanted && !m_pending) {
            m_closeWanted = false;
            close();
        }
    });
#else
    Q_UNUSED(summary);
    Q_UNUSED(body);
#endif
}

void DesktopNotification::close()
{
#ifdef QUILLBOX_HAVE_DBUS
    if (m_pending) { // the id is still on its way
        m_closeWanted = true;
        return;
    }
    if (!m_id || !m_bus.isConnected())
        return;
    QDBusMessage call = QDBusMessage::createMethodCall(Service, Path, Interface, QStringLiteral("CloseNotification"));
    call << m_id;
    m_bus.asyncCall(call);
    m_id = 0;
#endif
}

void DesktopNotification::onActionInvoked(uint id, const QString &action)
{
    if (id == 0 || id != m_id)
        return;
    if (const int command = BubbleContent::commandOf(action))
        Q_EMIT commandRequested(command);
}

void DesktopNotification::onClosed(uint id, uint)
{
    if (id == m_id)
        m_id = 0;
}
