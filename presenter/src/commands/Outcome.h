#pragma once

#include "app/ExitCode.h"

#include <QString>

/// What came of a command.
struct Outcome
{
    ExitCode::Code code = ExitCode::Done;
    /// What failed, and what to do next.
    QString message;

    bool isDone() const { return code == ExitCode::Done; }

    static Outcome done() { return {}; }
    static Outcome failed(const QString& message) { return {ExitCode::Failed, message}; }
    static Outcome unreachable(const QString& message) { return {ExitCode::Unreachable, message}; }
};
