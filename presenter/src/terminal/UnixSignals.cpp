#include "terminal/UnixSignals.h"

#include <QSocketNotifier>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr int watched[] = {SIGINT, SIGTERM, SIGHUP, SIGWINCH, SIGCONT};

// All that a signal handler touches.
int ends[2] = {-1, -1};
termios terminal;
bool isTerminal = false;
// Two signals may be handled on two threads at once.
std::atomic<int> requests = 0;
static_assert(std::atomic<int>::is_always_lock_free);

// Only calls that are safe in a signal handler.
extern "C" void handleSignal(int signal)
{
    constexpr int patience = 2;
    constexpr int exitBase = 128;
    const int error = errno;
    const bool asksToEnd = signal == SIGINT || signal == SIGTERM || signal == SIGHUP;
    if (asksToEnd && requests++ >= patience) {
        if (isTerminal)
            tcsetattr(STDIN_FILENO, TCSANOW, &terminal);
        _exit(exitBase + signal);
    }
    const char byte = static_cast<char>(signal);
    const ssize_t written = write(ends[1], &byte, 1);
    static_cast<void>(written); // a full pipe holds enough signals
    errno = error;
}

} // namespace

UnixSignals::UnixSignals()
{
    isTerminal = tcgetattr(STDIN_FILENO, &terminal) == 0;
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
        qFatal("No pipe for signals");
    m_notifier = std::make_unique<QSocketNotifier>(ends[0], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &UnixSignals::read);

    struct sigaction action = {};
    sigfillset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    action.sa_handler = handleSignal;
    for (const int signal : watched)
        sigaction(signal, &action, nullptr);
    action.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &action, nullptr);
}

UnixSignals::~UnixSignals()
{
    for (const int signal : watched)
        std::signal(signal, SIG_DFL);
    close(ends[0]);
    close(ends[1]);
}

void UnixSignals::forgetRequests()
{
    requests = 0;
}

void UnixSignals::read()
{
    char byte = 0;
    while (::read(ends[0], &byte, 1) == 1)
        Q_EMIT received(byte);
}
