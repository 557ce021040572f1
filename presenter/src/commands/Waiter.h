#pragma once

#include <QObject>
#include <QString>

#include <functional>

class QEventLoop;

/// The one place where a command waits: in an event loop, so that everything else goes on.
class Waiter : public QObject
{
    Q_OBJECT

public:
    enum Result { Met, TimedOut, Interrupted };

    using Description = std::function<QString()>;

    /// Waits until \p condition, asked now and after each poke(), is true, for \p msecs at most; less
    /// than 0 is no limit. \p description says what is waited for.
    Result until(const std::function<bool()>& condition, qint64 msecs, const Description& description = {});
    /// Waits for \p msecs. False when it was interrupted.
    bool pause(int msecs, const Description& description = {});

    bool isWaiting() const { return m_loop; }
    /// What is waited for; empty while nothing is, or where it was not said.
    QString description() const { return m_description ? m_description() : QString(); }
    /// Something has changed that a condition may depend on.
    void poke();
    /// Ends the wait under way, if any.
    void interrupt();
    /// Ends the wait under way and lets all later ones end at once.
    void shutDown();
    /// Lets waits be again, for the end of the lesson.
    void open() { m_down = false; }

Q_SIGNALS:
    /// A wait begins: its description() can be shown.
    void begun();

private:
    QEventLoop* m_loop = nullptr;
    std::function<bool()> m_condition;
    Description m_description;
    bool m_down = false;
};
