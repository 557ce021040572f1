#include "support/WallClock.h"

#include <atomic>
#include <cstdint>
#include <sys/time.h>
#include <time.h>

namespace {

const int64_t million = 1000000;

// Microseconds since 1970; 0 while the clock runs.
std::atomic<int64_t> stoppedAt{0};

int64_t now()
{
    const auto stopped = stoppedAt.load();
    if (stopped != 0)
        return stopped;
    timespec real;
    clock_gettime(CLOCK_REALTIME, &real);
    return real.tv_sec * million + real.tv_nsec / 1000;
}

} // namespace

extern "C" int gettimeofday(timeval* time, void*) noexcept
{
    const auto moment = now();
    time->tv_sec = moment / million;
    time->tv_usec = moment % million;
    return 0;
}

extern "C" time_t time(time_t* result) noexcept
{
    const auto seconds = now() / million;
    if (result)
        *result = seconds;
    return seconds;
}

void WallClock::freeze()
{
    stoppedAt = now();
}

void WallClock::advance(int seconds)
{
    stoppedAt += seconds * million;
}

void WallClock::release()
{
    stoppedAt = 0;
}
