#pragma once

#include <QtGlobal>

#include <functional>

/// What the process holds, against what it has held before.
class Resources
{
public:
    /// Counts when \p firstUse, which starts what a process keeps for good, is over.
    explicit Resources(const std::function<void()>& firstUse);
    /// Waits, with events, until there are no more threads and descriptors than before. False, with a
    /// warning, when some are still there after Bounds::givingBack.
    bool areBack() const;

private:
    int m_threads;
    int m_descriptors = 0;
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
