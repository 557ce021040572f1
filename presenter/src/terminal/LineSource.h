#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

/// The candidates for the piece of a line that begins at \p start.
struct Completion
{
    int start = 0;
    QStringList candidates;
};

/// Where commands are typed, or piped in.
class LineSource : public QObject
{
    Q_OBJECT

public:
    virtual void start() = 0;
    /// Gives the terminal back. Nothing is read any more.
    virtual void stop() = 0;

    /// While a command is at work there is no prompt; what is typed meanwhile stays where it is.
    virtual void setBusy(bool) {}
    /// Takes what has been typed so far and not been read as lines: to be named, and not to be done.
    virtual QStringList takeTyped() { return {}; }
    /// Clears the line that is being typed; false when it is empty.
    virtual bool clearLine() { return false; }
    /// The next line that is typed is not shown, and is no command: hiddenRead() tells when it is there.
    virtual void startHidden() {}
    virtual bool isHiddenDone() const { return true; }
    /// That line, or what there is of it; typed lines are commands again.
    virtual QString takeHidden() { return {}; }

Q_SIGNALS:
    void hiddenRead();
    void lineRead(const QString& line);
    /// There will be no further line.
    void ended();
};
