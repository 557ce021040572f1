#pragma once

/// The monotonic clock of the test program, which can be put forward: timers of minutes are tested in no
/// time.
///
/// Every program that uses it replaces the C library's clock_gettime(), from which Qt's timers take the time.
/// Waiting sockets and threads are not woken: the event loop that runs next sees the new time.
namespace TestClock {

void advance(int msecs);

} // namespace TestClock
