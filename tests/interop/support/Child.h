#pragma once

#include <QProcess>

#include <csignal>
#include <sys/prctl.h>

/// A child that the kernel ends should the test program be gone without having done so.
class Child : public QProcess
{
protected:
    void setupChildProcess() override { ::prctl(PR_SET_PDEATHSIG, SIGKILL); }
};
