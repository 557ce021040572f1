#include "transport/OpenConnections.h"

#ifdef Q_OS_UNIX

#include <cstdlib>
#include <dirent.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/stat.h>

namespace {

// Calls \p action with the descriptor and the number of each socket of this process.
template<typename Action>
void forEachSocket(const Action& action)
{
    DIR* folder = opendir("/dev/fd");
    if (!folder)
        return;
    while (const dirent* entry = readdir(folder)) {
        const int descriptor = std::atoi(entry->d_name);
        struct stat status = {};
        if (fstat(descriptor, &status) == 0 && S_ISSOCK(status.st_mode))
            action(descriptor, status.st_ino);
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

OpenConnections::OpenConnections()
{
    forEachSocket([this](int, quint64 number) { m_sockets.insert(number); });
}

void OpenConnections::sendAtOnce(const OpenConnections& before, const QSet<int>& ports)
{
    forEachSocket([&](int descriptor, quint64 number) {
        const int atOnce = 1;
        if (!before.m_sockets.contains(number) && ports.contains(farPort(descriptor)))
            setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &atOnce, sizeof(atOnce));
    });
}

#else

OpenConnections::OpenConnections() = default;

void OpenConnections::sendAtOnce(const OpenConnections&, const QSet<int>&) {}

#endif
