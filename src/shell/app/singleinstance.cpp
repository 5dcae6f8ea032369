#include "shell/app/singleinstance.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>

namespace {
constexpr char ClassName[] = "QUILLBOX0926";
} // namespace

SingleInstance::SingleInstance(const QString &name, QObject *parent)
    : QObject(parent), m_name(name.isEmpty() ? defaultName() : name)
{
}

SingleInstance::~SingleInstance() = default;

QString SingleInstance::defaultName()
{
    // One name per user: the home folder tells users apart on every platform.
    return nameForHome(QDir::homePath());
}

QString SingleInstance::nameForHome(const QString &home)
{
    const QByteArray user = QCryptographicHash::hash(home.toUtf8(), QCryptographicHash::Sha1).toHex().left(12);
    return QString::fromLatin1(ClassName) + QLatin1Char('-') + QString::fromLatin1(user);
}

bool SingleInstance::handOver(const QString &path, int timeoutMs)
{
    QLocalSocket socket;
    socket.connectToServer(m_name);
    if (!socket.waitForConnected(timeoutMs))
        return false;
    QByteArray message;
    {
        QDataStream out(&message, QIODevice::WriteOnly);
        out << path;
    }
    socket.write(message);
    if (!socket.waitForBytesWritten(timeoutMs))
        return false;
    // Wait for the first instance to confirm, so the message is not lost
    // when this process ends at once.
    socket.waitForReadyRead(timeoutMs);
    socket.disconnectFromServer();
    return true;
}

bool SingleInstance::listen()
{
    m_server = new QLocalServer(this);
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    if (!m_server->listen(m_name)) {
        // A server left behind by a crashed instance answers nobody: remove
        // it and try again.
        QLocalServer::removeServer(m_name);
        if (!m_server->listen(m_name))
            return false;
    }
    connect(m_server, &QLocalServer::newConnection, this, &SingleInstance::onNewConnection);
    return true;
}

void SingleInstance::onNewConnection()
{
    while (QLocalSocket *socket = m_server->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
            QDataStream in(socket);
            in.startTransaction();
            QString path;
            in >> path;
            if (!in.commitTransaction())
                return;
            socket->write("1");
            socket->flush();
            if (path.isEmpty())
                Q_EMIT raiseRequested();
            else
                Q_EMIT pathReceived(path);
        });
    }
}
