#pragma once

#include <QByteArray>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>

/// calyx-presenter as a child process, with pipes. A test that ends early ends it.
class Presenter
{
public:
    /// Runs in an environment without anything that would change what it prints.
    explicit Presenter(const QStringList& arguments);
    ~Presenter();

    void write(const QString& lines);
    /// No further input.
    void closeInput() { m_process.closeWriteChannel(); }
    void signal(int number);

    QString output();
    QString errors();
    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }
    /// The exit status once it has ended.
    int status() const
    {
        constexpr int ofSignals = 128; // as a shell has it
        return (m_process.exitStatus() == QProcess::CrashExit ? ofSignals : 0) + m_process.exitCode();
    }

    static QProcessEnvironment environment();

private:
    QProcess m_process;
    QByteArray m_output;
    QByteArray m_errors;
};
