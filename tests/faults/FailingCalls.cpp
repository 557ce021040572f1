#include "FailingCalls.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <dlfcn.h>
#include <netinet/in.h>
#include <pthread.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr size_t much = 4096; // bytes

struct State
{
    std::atomic<int> error{0};
    std::atomic<int> hits{0};
    std::atomic<quint16> port{0};
};

std::array<State, 4> states;
thread_local int refusedAt = 0;
thread_local int requests = 0;

bool fails(FailingCalls::Call call)
{
    State& state = states.at(call);
    if (state.error == 0)
        return false;
    ++state.hits;
    errno = state.error;
    return true;
}

bool goesToTheFailingPort(int descriptor)
{
    sockaddr_in peer{};
    socklen_t size = sizeof(peer);
    auto* address = reinterpret_cast<sockaddr*>(&peer);
    return states.at(FailingCalls::Send).error != 0 && getpeername(descriptor, address, &size) == 0 &&
           ntohs(peer.sin_port) == states.at(FailingCalls::Send).port;
}

bool isRefused(size_t size)
{
    return refusedAt != 0 && size >= much && ++requests == refusedAt;
}

template<typename Function>
Function* real(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

FailingCalls::Failing::Failing(Call call, int error, quint16 port) : m_call(call)
{
    states.at(call).hits = 0;
    states.at(call).port = port;
    states.at(call).error = error;
}

FailingCalls::Failing::~Failing()
{
    states.at(m_call).error = 0;
}

int FailingCalls::Failing::hits() const
{
    return states.at(m_call).hits;
}

FailingCalls::NoMemory::NoMemory(int number)
{
    requests = 0;
    refusedAt = number;
}

FailingCalls::NoMemory::~NoMemory()
{
    refusedAt = 0;
}

bool FailingCalls::NoMemory::hit() const
{
    return requests >= refusedAt;
}

extern "C" {

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* address, size_t size);

void* malloc(size_t size) noexcept
{
    return isRefused(size) ? nullptr : __libc_malloc(size);
}

void* calloc(size_t count, size_t size) noexcept
{
    return isRefused(count * size) ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* address, size_t size) noexcept
{
    return isRefused(size) ? nullptr : __libc_realloc(address, size);
}

int socket(int domain, int type, int protocol) noexcept
{
    if (domain != AF_UNIX && fails(FailingCalls::Socket))
        return -1;
    return real<int(int, int, int)>("socket")(domain, type, protocol);
}

int connect(int descriptor, const sockaddr* address, socklen_t size)
{
    if (fails(FailingCalls::Connect))
        return -1;
    return real<int(int, const sockaddr*, socklen_t)>("connect")(descriptor, address, size);
}

ssize_t send(int descriptor, const void* bytes, size_t size, int flags)
{
    if (goesToTheFailingPort(descriptor) && fails(FailingCalls::Send))
        return -1;
    return real<ssize_t(int, const void*, size_t, int)>("send")(descriptor, bytes, size, flags);
}

ssize_t write(int descriptor, const void* bytes, size_t size)
{
    if (goesToTheFailingPort(descriptor) && fails(FailingCalls::Send))
        return -1;
    return real<ssize_t(int, const void*, size_t)>("write")(descriptor, bytes, size);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*routine)(void*),
                   void* argument) noexcept
{
    if (fails(FailingCalls::StartThread))
        return states.at(FailingCalls::StartThread).error;
    return real<int(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*)>("pthread_create")(
        thread, attributes, routine, argument);
}
}
