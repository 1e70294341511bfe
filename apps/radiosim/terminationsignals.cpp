#include "terminationsignals.h"

#include <QSocketNotifier>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

int pipeEnds[2] = { -1, -1 };
volatile std::sig_atomic_t signalled = 0;

extern "C" void handleSignal(int)
{
    signalled = 1;
    const char byte = 1;
    // Nothing to do about a full pipe: one byte in it is enough.
    [[maybe_unused]] const ssize_t written = ::write(pipeEnds[1], &byte, 1);
}

void setHandler(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

} // namespace

TerminationSignals::TerminationSignals(QObject *parent)
    : QObject(parent)
{
    signalled = 0;
    if (::pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    m_notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [this] {
        char bytes[16];
        while (::read(pipeEnds[0], bytes, sizeof bytes) > 0) { }
        Q_EMIT terminationRequested();
    });
    setHandler(handleSignal);
}

TerminationSignals::~TerminationSignals()
{
    if (!m_notifier)
        return;
    setHandler(SIG_DFL);
    delete m_notifier;
    ::close(pipeEnds[0]);
    ::close(pipeEnds[1]);
    pipeEnds[0] = pipeEnds[1] = -1;
}

bool TerminationSignals::requested()
{
    return signalled != 0;
}
