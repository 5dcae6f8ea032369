#pragma once

#include <QObject>

class QSocketNotifier;

/// Turns SIGTERM, SIGINT and SIGHUP (logout, shutdown, a closed terminal)
/// into a signal of the event loop, so that the window saves and closes
/// normally instead of dying with its edits. The handler only writes a byte
/// to a pipe; the notifier reads it in the event loop.
class QuitSignals : public QObject {
    Q_OBJECT
public:
    explicit QuitSignals(QObject *parent = nullptr);
    ~QuitSignals() override;

Q_SIGNALS:
    void quitRequested(int signalNumber);

private:
    void onReadable();
    QSocketNotifier *m_notifier = nullptr;
};
