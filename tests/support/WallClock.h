#pragma once

/// The time of day as the whole test program sees it: QDateTime and time() included, timers not.
///
/// Stands in for the C library's gettimeofday(), which Qt 5.15 asks for the current time, and for its time().
namespace WallClock {

/// Stops the clock at the present moment.
void freeze();
/// Moves a stopped clock.
void advance(int seconds);
/// Back to the real time.
void release();

} // namespace WallClock
