#pragma once

#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QThread>

/// A Radicale CalDAV server for one test: 127.0.0.1 on a free port, a temporary storage folder, one user "alice" with
/// the password "secret" and her calendar "tasks". Stopped when destroyed.
class RadicaleServer {
public:
    static constexpr const char *User = "alice";
    static constexpr const char *Password = "secret";

    static QString program() { return QStandardPaths::findExecutable(QStringLiteral("radicale")); }

    ~RadicaleServer() { stop(); }

    /// Starts the server and makes the calendar; false with a reason.
    bool start(QString *error)
    {
        QTcpServer probe;
        probe.listen(QHostAddress::LocalHost, 0);
        m_port = probe.serverPort();
        probe.close();
        const QString users = m_dir.filePath(QStringLiteral("users"));
        const QString config = m_dir.filePath(QStringLiteral("config"));
        const QString log = m_dir.filePath(QStringLiteral("log"));
        writeFile(users, QStringLiteral("%1:%2\n").arg(QLatin1String(User), QLatin1String(Password)).toUtf8());
        writeFile(config,
                  QStringLiteral("[server]\nhosts = 127.0.0.1:%1\n[auth]\ntype = htpasswd\nhtpasswd_filename = %2\n"
                                 "htpasswd_encryption = plain\ndelay = 0\n[storage]\nfilesystem_folder = %3\n"
                                 "[rights]\ntype = owner_only\n[web]\ntype = none\n[logging]\nlevel = warning\n")
                      .arg(m_port)
                      .arg(users, storage())
                      .toUtf8());
        // Its log goes to a file: a pipe nobody reads could fill and stall it.
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        m_process.setStandardOutputFile(log);
        m_process.start(program(), {QStringLiteral("--config"), config});
        QElapsedTimer waited;
        waited.start();
        while (!accepts()) {
            if (m_process.state() == QProcess::NotRunning || waited.elapsed() > 20000) {
                QFile output(log);
                output.open(QIODevice::ReadOnly);
                *error = QStringLiteral("radicale does not listen: ") + QString::fromUtf8(output.readAll());
                return false;
            }
            QThread::msleep(50);
        }
        const int status = request("MKCALENDAR", calendarUrl(), QByteArray()); // as a CalDAV client makes one
        *error = QStringLiteral("MKCALENDAR answered %1").arg(status);
        return status == 201;
    }

    void stop()
    {
        m_process.terminate();
        m_process.waitForFinished(5000);
    }

    QUrl calendarUrl() const { return QUrl(QStringLiteral("http://127.0.0.1:%1/alice/tasks/").arg(m_port)); }

    /// A request as another CalDAV client would send it, as alice; the HTTP status.
    int request(const QByteArray &verb, const QUrl &target, const QByteArray &body,
                const QByteArray &contentType = QByteArray())
    {
        QNetworkAccessManager network;
        QNetworkRequest request(target);
        request.setRawHeader("Authorization", "Basic " + QByteArray(User).append(':').append(Password).toBase64());
        if (!contentType.isEmpty())
            request.setRawHeader("Content-Type", contentType);
        QNetworkReply *reply = network.sendCustomRequest(request, verb, body);
        QEventLoop loop;
        QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
        if (!reply->isFinished())
            loop.exec();
        const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        delete reply;
        return status;
    }

    /// The objects that arrived in the calendar, read from the server's own storage.
    QList<QByteArray> storedObjects() const
    {
        QList<QByteArray> objects;
        const QDir dir(storage() + QStringLiteral("/collection-root/alice/tasks"));
        for (const QString &name : dir.entryList({QStringLiteral("*.ics")}, QDir::Files, QDir::Name)) {
            QFile file(dir.filePath(name));
            if (file.open(QIODevice::ReadOnly))
                objects.append(file.readAll());
        }
        return objects;
    }

private:
    QString storage() const { return m_dir.filePath(QStringLiteral("storage")); }

    bool accepts() const
    {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, m_port);
        return socket.waitForConnected(200);
    }

    static void writeFile(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        if (file.open(QIODevice::WriteOnly))
            file.write(bytes);
    }

    QTemporaryDir m_dir;
    QProcess m_process;
    quint16 m_port = 0;
};
