#pragma once

#include <QtGlobal>

#include <cstddef>

/// Makes calls of the system fail. A program that is linked with it replaces the C library's functions, also
/// for Qt and the library.
namespace FailingCalls {

enum Call { Socket, Connect, Send, StartThread };

/// For as long as it lives, each call fails with \p error. Of Send, those to loopback's \p port.
class Failing
{
public:
    Failing(Call call, int error, quint16 port = 0);
    ~Failing();
    Q_DISABLE_COPY(Failing)

    /// How many calls have failed.
    int hits() const;

private:
    Call m_call;
};

/// For as long as it lives, the calling thread's \p number th request for much memory is refused, counted
/// from 1.
class NoMemory
{
public:
    explicit NoMemory(int number);
    ~NoMemory();
    Q_DISABLE_COPY(NoMemory)

    /// Whether one has been refused.
    bool hit() const;
};

} // namespace FailingCalls
