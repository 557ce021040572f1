#pragma once

#include <QProcess>

#include <csignal>
#include <sys/prctl.h>

/// A program that a test starts: the kernel ends it should the test be gone without having done so.
class ChildProcess : public QProcess
{
public:
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    ChildProcess() = default;

protected:
    void setupChildProcess() override
    {
        prepareChild();
    }
#else
    ChildProcess()
    {
        setChildProcessModifier([this] { prepareChild(); });
    }

protected:
#endif
    /// Runs in the child, before the program takes its place.
    virtual void prepareChild()
    {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    }
};
