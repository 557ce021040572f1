#pragma once

/// The file descriptors of the process.
namespace FileDescriptors {

/// Whether enough of them are left for a new thread. Qt ends the whole process, the host included, when a
/// thread begins and finds no descriptor for its event loop.
bool sufficeForThread();

} // namespace FileDescriptors
