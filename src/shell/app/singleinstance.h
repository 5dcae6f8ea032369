#pragma once

#include <QObject>
#include <QString>

class QLocalServer;

/// Keeps Quillbox to one running instance per user. The first instance
/// listens on a local socket; a later start hands its command-line path to it
/// (or only asks it to come forward when there is none) and ends.
class SingleInstance : public QObject {
    Q_OBJECT
public:
    /// name empty: the per-user name derived from "QUILLBOX0926".
    explicit SingleInstance(const QString &name = QString(), QObject *parent = nullptr);
    ~SingleInstance() override;

    static QString defaultName();
    /// The name for the user whose home folder is home.
    static QString nameForHome(const QString &home);
    QString name() const { return m_name; }

    /// Sends path (possibly empty) to a running instance; true when one
    /// took it, and this process should then exit with code 0.
    bool handOver(const QString &path, int timeoutMs = 2000);
    /// Starts listening as the first instance; false when that fails.
    bool listen();

Q_SIGNALS:
    /// A second start handed over a document path.
    void pathReceived(const QString &path);
    /// A second start without a path asks this instance to come forward.
    void raiseRequested();

private:
    void onNewConnection();

    QString m_name;
    QLocalServer *m_server = nullptr;
};
