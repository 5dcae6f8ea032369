#include "shell/app/quitsignals.h"

#include <QSocketNotifier>

#include <csignal>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int g_pipe[2] = {-1, -1};
constexpr int Handled[] = {SIGTERM, SIGINT, SIGHUP};

extern "C" void onQuitSignal(int number)
{
    const char byte = char(number);
    // Nothing but write() is safe here; a full pipe already holds a request.
    [[maybe_unused]] const ssize_t written = ::write(g_pipe[1], &byte, 1);
}

} // namespace

QuitSignals::QuitSignals(QObject *parent) : QObject(parent)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, g_pipe) != 0)
        return;
    ::fcntl(g_pipe[1], F_SETFL, O_NONBLOCK);
    m_notifier = new QSocketNotifier(g_pipe[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &QuitSignals::onReadable);
    struct sigaction action = {};
    action.sa_handler = onQuitSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (int number : Handled)
        ::sigaction(number, &action, nullptr);
}

QuitSignals::~QuitSignals()
{
    if (g_pipe[0] < 0)
        return;
    for (int number : Handled)
        ::signal(number, SIG_DFL);
    delete m_notifier;
    ::close(g_pipe[0]);
    ::close(g_pipe[1]);
    g_pipe[0] = g_pipe[1] = -1;
}

void QuitSignals::onReadable()
{
    char byte = 0;
    if (::read(g_pipe[0], &byte, 1) == 1)
        Q_EMIT quitRequested(int(byte));
}
