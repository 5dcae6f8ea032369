#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <functional>

class QThread;

/// Writes a document's bytes on a worker thread by a safe save, so the window
/// never waits for the disk. One write at a time; its result comes back on
/// the window's thread.
class BackgroundSave : public QObject {
    Q_OBJECT
public:
    /// ok, the reason of a failure, and the change count the bytes hold.
    using Done = std::function<void(bool ok, const QString &error, quint64 changes)>;

    explicit BackgroundSave(Done done, QObject *parent = nullptr);
    /// A write still running is finished first: a file is never left half done.
    ~BackgroundSave() override;

    bool isBusy() const { return m_thread != nullptr; }
    /// Starts writing bytes to path; the caller makes sure no write is running.
    void start(const QString &path, const QByteArray &bytes, quint64 changes);
    /// The running write, if any, ends and its result is delivered now.
    void wait();

private:
    void deliver();

    Done m_done;
    QThread *m_thread = nullptr;
    bool m_ok = false;
    QString m_error;
    quint64 m_changes = 0;
};
