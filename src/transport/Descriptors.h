#pragma once

/// The file descriptors of the process.
namespace Descriptors {

/// Whether some are left, enough to begin a thread. Qt ends the whole process where a thread begins and finds
/// none for its event loop: a host would be gone for want of one file.
bool areSpare();

} // namespace Descriptors
