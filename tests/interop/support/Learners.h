#pragma once

#include "support/ChildProcess.h"

#include <QUrl>

/// Simulated learners who join the session with this code at \p classroom and answer everything until it
/// ends.
class Learners
{
public:
    Learners(const QUrl& classroom, const QString& code, int count, const QStringList& options = {})
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        const QString program = QStringLiteral(INTEROP_SOURCE_DIR "/../../classroom/learners.js");
        m_process.start("node", QStringList{program, "--url", classroom.toString(), "--session", code,
                                            "--count", QString::number(count), "--quiet"} +
                                    options);
    }
    ~Learners()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    QProcess* process() { return &m_process; }

private:
    ChildProcess m_process;
};
