#pragma once

#include <QtGlobal>

/// Within what the transports come through a fault. README.md states the same.
namespace Bounds {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int slower = 4;
constexpr qint64 larger = 8; // they keep what is freed, and a shadow of everything
#else
constexpr int slower = 1;
constexpr qint64 larger = 1;
#endif

/// Milliseconds from a fault to the first good answer after it. The library's own waits in the worst case are
/// 2 s until a stall is noticed, 1 s for a fresh answer, and 1 s before a failing server is asked again.
constexpr int recovery = 10000 * slower;
/// Milliseconds from close(), or from the end of the process, until everything is given back.
constexpr int givingBack = 15000 * slower;
/// Bytes by which the process grows, whatever a header claims or however long it is: what the parser keeps is
/// 64 KiB at most, the rest is what the kernel hands over at a time.
constexpr qint64 header = 64 * 1024 * 1024 * larger;

} // namespace Bounds
