#pragma once

#include <QtGlobal>

/// What the process holds, against what it has held before.
class Resources
{
public:
    /// Counts now.
    Resources();
    /// Waits, with events, until there are no more threads and descriptors than before. False, with a
    /// warning, when some are still there after Bounds::givingBack.
    bool areBack() const;

private:
    int m_threads;
    int m_descriptors;
};

/// How much memory the process takes at most, from the making of this object.
class PeakMemory
{
public:
    PeakMemory();
    /// Bytes that it has grown by at its largest so far.
    qint64 growth() const;

private:
    qint64 m_before;
};
