#include "base/FileDescriptors.h"

#include <QtGlobal>

#ifdef Q_OS_UNIX
#include <array>
#include <sys/socket.h>
#include <unistd.h>
#endif

bool FileDescriptors::sufficeForThread()
{
#ifdef Q_OS_UNIX
    constexpr int wanted = 4; // an event loop takes one or two, and somebody else may be quicker
    std::array<int, wanted> held{};
    bool spare = true;
    for (int& descriptor : held) {
        descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
        spare = spare && descriptor >= 0;
    }
    for (const int descriptor : held) {
        if (descriptor >= 0)
            close(descriptor);
    }
    return spare;
#else
    return true;
#endif
}
