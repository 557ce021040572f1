#include "transport/OpenConnections.h"

#include <QNetworkAccessManager>

#ifdef Q_OS_UNIX

#include <cstdlib>
#include <dirent.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/stat.h>

namespace {

// The number of a socket; 0 of anything else.
quint64 numberOf(int descriptor)
{
    struct stat status = {};
    return fstat(descriptor, &status) == 0 && S_ISSOCK(status.st_mode) ? status.st_ino : 0;
}

// Calls \p action with the descriptor and the number of each socket of this process.
template<typename Action>
void forEachSocket(const Action& action)
{
    DIR* folder = opendir("/dev/fd");
    if (!folder)
        return;
    while (const dirent* entry = readdir(folder)) {
        const int descriptor = std::atoi(entry->d_name);
        if (const quint64 number = numberOf(descriptor))
            action(descriptor, number);
    }
    closedir(folder);
}

// The port at the far end of a TCP connection; 0 of anything else.
int farPort(int descriptor)
{
    sockaddr_storage address = {};
    socklen_t size = sizeof(address);
    if (getpeername(descriptor, reinterpret_cast<sockaddr*>(&address), &size) != 0)
        return 0;
    if (address.ss_family == AF_INET)
        return ntohs(reinterpret_cast<const sockaddr_in*>(&address)->sin_port);
    if (address.ss_family == AF_INET6)
        return ntohs(reinterpret_cast<const sockaddr_in6*>(&address)->sin6_port);
    return 0;
}

} // namespace

bool OpenConnections::isKept() const
{
    for (auto kept = m_kept.cbegin(); kept != m_kept.cend(); ++kept) {
        if (numberOf(kept.key()) != kept.value())
            return false;
    }
    return !m_kept.isEmpty();
}

void OpenConnections::sendAtOnce(const QSet<int>& ports)
{
    m_kept.clear();
    forEachSocket([&](int descriptor, quint64 number) {
        const int atOnce = 1;
        if (m_before.contains(number) || !ports.contains(farPort(descriptor)))
            return;
        setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &atOnce, sizeof(atOnce));
        m_kept.insert(descriptor, number);
    });
}

void OpenConnections::listSockets()
{
    m_before.clear();
    forEachSocket([this](int, quint64 number) { m_before.insert(number); });
}

#else

bool OpenConnections::isKept() const
{
    return false;
}

void OpenConnections::sendAtOnce(const QSet<int>&) {}

void OpenConnections::listSockets() {}

#endif

OpenConnections* OpenConnections::of(QNetworkAccessManager* manager)
{
    auto* connections = manager->findChild<OpenConnections*>(QString(), Qt::FindDirectChildrenOnly);
    return connections ? connections : new OpenConnections(manager);
}

void OpenConnections::beginRequest()
{
    m_overlap = m_running++ > 0;
    if (!m_overlap && !isKept())
        listSockets();
}

bool OpenConnections::endRequest()
{
    --m_running;
    return m_overlap || !isKept();
}
