#pragma once

#include <QDir>
#include <QFile>
#include <QTest>

#include <functional>
#include <vector>

#include <malloc.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

// Of the sanitizers, whose allocator the C library does not know.
extern "C" __attribute__((weak)) std::size_t __sanitizer_get_current_allocated_bytes();

/// What the process holds of the system's resources right now.
namespace ProcessResources {

inline int descriptors()
{
    const QDir open(QStringLiteral("/proc/self/fd"));
    return open.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

/// Without those that Qt's network code starts once and keeps as long as the process lives.
inline int threads()
{
    const QDir tasks(QStringLiteral("/proc/self/task"));
    int count = 0;
    const auto ids = tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const auto& id : ids) {
        QFile file(tasks.filePath(id) + QStringLiteral("/comm"));
        const auto name = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        const bool isQts = name.startsWith("Qt bearer") || name.startsWith("QDBusConnection") ||
                           name.startsWith("QLibProxy");
        count += isQts ? 0 : 1;
    }
    return count;
}

/// Bytes that are allocated.
inline qint64 allocated()
{
    if (&__sanitizer_get_current_allocated_bytes)
        return static_cast<qint64>(__sanitizer_get_current_allocated_bytes());
    const struct mallinfo2 info = mallinfo2();
    return static_cast<qint64>(info.uordblks + info.hblkhd);
}

/// What is held at the moment.
struct Use
{
    qint64 bytes = allocated();
    int threads = ProcessResources::threads();
    int descriptors = ProcessResources::descriptors();
};

/// The connections to \p port whose bytes go out as soon as they are written.
inline int connectionsThatSendAtOnce(quint16 port)
{
    int count = 0;
    for (int descriptor = 0; descriptor < 1024; ++descriptor) {
        sockaddr_in peer = {};
        socklen_t peerSize = sizeof(peer);
        int atOnce = 0;
        socklen_t size = sizeof(atOnce);
        if (getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &peerSize) == 0 &&
            ntohs(peer.sin_port) == port &&
            getsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &atOnce, &size) == 0)
            count += atOnce != 0 ? 1 : 0;
    }
    return count;
}

/// Leaves the process a number of descriptors, of few that it may have, for as long as it lives.
class FewDescriptors
{
public:
    explicit FewDescriptors(int left, rlim_t most = 512)
    {
        getrlimit(RLIMIT_NOFILE, &m_before);
        rlimit few = m_before;
        few.rlim_cur = most;
        setrlimit(RLIMIT_NOFILE, &few);
        for (int taken = dup(STDERR_FILENO); taken >= 0; taken = dup(STDERR_FILENO))
            m_taken.push_back(taken);
        for (; left > 0; --left) {
            close(m_taken.back());
            m_taken.pop_back();
        }
    }
    ~FewDescriptors()
    {
        for (const int taken : m_taken)
            close(taken);
        setrlimit(RLIMIT_NOFILE, &m_before);
    }
    Q_DISABLE_COPY(FewDescriptors)

private:
    rlimit m_before{};
    std::vector<int> m_taken;
};

/// How much the process held when this was made.
class Snapshot
{
public:
    Snapshot() = default;
    /// Counts descriptors when \p firstUse is over and its threads have ended: what a process keeps for good
    /// has been started by then.
    explicit Snapshot(const std::function<void()>& firstUse)
    {
        firstUse();
        if (!QTest::qWaitFor([this] { return threads() <= m_threads; }, limit))
            qWarning("%d threads instead of %d", threads(), m_threads);
        m_descriptors = descriptors();
    }

    /// Waits until the process holds no more than that, since threads and sockets go when their events have
    /// run. Returns what is too many, for the test's message; null when nothing is.
    QString waitForSurplusToGo() const
    {
        if (QTest::qWaitFor([this] { return threads() <= m_threads && descriptors() <= m_descriptors; },
                            limit))
            return QString();
        return QString::asprintf("threads: %d of %d, descriptors: %d of %d", threads(), m_threads,
                                 descriptors(), m_descriptors);
    }

private:
    static constexpr int limit = 60000; // milliseconds
    int m_threads = threads();
    int m_descriptors = descriptors();
};

} // namespace ProcessResources
