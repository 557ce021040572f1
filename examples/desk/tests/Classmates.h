#pragma once

#include "support/ChildProcess.h"

#include <QString>
#include <QStringList>

/// A Node.js program of the classroom: the service, simulated learners or the remote control. It is ended
/// when this object goes, or when the test program dies.
class NodeProgram : public ChildProcess
{
public:
    NodeProgram(const QString& script, const QStringList& arguments);
    ~NodeProgram() override;

    /// The first line on stdout that begins with \p begin and has \p part in it, once there is one; null when
    /// none comes.
    QString lineWith(const QString& begin, const QString& part = QString());
    void say(const QString& line);
    void end();

private:
    QString m_output;
};

/// A classroom with the account "teacher", "chalk".
class LocalClassroom : public NodeProgram
{
public:
    LocalClassroom();
    /// Empty when it did not start.
    QString url() const { return m_url; }

private:
    QString m_url;
};
