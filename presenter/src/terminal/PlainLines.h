#pragma once

#include "terminal/LineSource.h"

#include <QByteArray>

#include <memory>

class QSocketNotifier;

/// Lines from standard input as they come, without any editing.
class PlainLines : public LineSource
{
    Q_OBJECT

public:
    PlainLines();
    ~PlainLines() override;

    void start() override;
    void stop() override;

private:
    void read();
    void takeLines();

    std::unique_ptr<QSocketNotifier> m_notifier;
    QByteArray m_buffer;
};
