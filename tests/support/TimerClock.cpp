#include "support/TimerClock.h"

#include <QtGlobal>

#include <ctime>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

thread_local qint64 aheadNanoseconds = 0;

} // namespace

void TimerClock::advance(int msecs)
{
    aheadNanoseconds += qint64(msecs) * 1000000;
}

// In the program itself, this one is found before the C library's.
extern "C" int clock_gettime(clockid_t clock, struct timespec* time) noexcept
{
    const long result = syscall(SYS_clock_gettime, clock, time);
    if (result == 0 && clock == CLOCK_MONOTONIC) {
        const qint64 nanoseconds = time->tv_nsec + aheadNanoseconds;
        time->tv_sec += nanoseconds / 1000000000;
        time->tv_nsec = nanoseconds % 1000000000;
    }
    return int(result);
}
