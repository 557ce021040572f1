#pragma once

/// The clock by which the timers of the calling thread go. It can be put forward: a time limit of minutes is
/// tested in no time.
///
/// A program that uses it replaces the C library's clock_gettime(), from which Qt's timers take the time.
/// Only the calling thread is ahead, so that Qt Test's watchdog keeps the real time. Nothing is woken: the
/// event loop sees the new time when it runs next.
namespace TimerClock {

void advance(int msecs);

} // namespace TimerClock
