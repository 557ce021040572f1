#pragma once

#include <QObject>
#include <QString>

/// Where commands are typed, or piped in.
class LineSource : public QObject
{
    Q_OBJECT

public:
    virtual void start() = 0;
    /// Gives the terminal back. Nothing is read any more.
    virtual void stop() = 0;

Q_SIGNALS:
    void lineRead(const QString& line);
    /// There will be no further line.
    void ended();
};
