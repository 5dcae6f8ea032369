#include "shell/document/backgroundsave.h"

#include "storage/safesave.h"

#include <QThread>

BackgroundSave::BackgroundSave(Done done, QObject *parent) : QObject(parent), m_done(std::move(done)) {}

BackgroundSave::~BackgroundSave()
{
    if (m_thread) {
        m_thread->wait();
        delete m_thread;
    }
}

void BackgroundSave::start(const QString &path, const QByteArray &bytes, quint64 changes)
{
    Q_ASSERT(!m_thread);
    m_changes = changes;
    m_thread = QThread::create([this, path, bytes] {
        QString error;
        m_ok = SafeSave::write(path, bytes, &error);
        m_error = error;
    });
    connect(m_thread, &QThread::finished, this, &BackgroundSave::deliver);
    m_thread->start();
}

void BackgroundSave::wait()
{
    deliver();
}

void BackgroundSave::deliver()
{
    if (!m_thread)
        return; // delivered already, by wait()
    m_thread->wait();
    m_thread->deleteLater();
    m_thread = nullptr;
    m_done(m_ok, m_error, m_changes);
}
