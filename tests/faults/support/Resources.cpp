#include "faults/support/Resources.h"

#include "faults/support/Bounds.h"
#include "support/ProcessResources.h"

#include <QByteArray>
#include <QFile>
#include <QTest>

namespace {

// A line of the kernel's account of this process, in bytes.
qint64 memory(const QByteArray& name)
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("Cannot read %s.", qPrintable(file.fileName()));
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith(name + ':'))
            return line.simplified().split(' ').value(1).toLongLong() * 1024;
    }
    qFatal("No %s there.", name.constData());
}

} // namespace

Resources::Resources(const std::function<void()>& firstUse) : m_threads(ProcessResources::threads())
{
    firstUse();
    if (!QTest::qWaitFor([this] { return ProcessResources::threads() <= m_threads; }, Bounds::givingBack))
        qWarning("%d threads instead of %d", ProcessResources::threads(), m_threads);
    m_descriptors = ProcessResources::descriptors();
}

bool Resources::areBack() const
{
    const auto back = [this] {
        return ProcessResources::threads() <= m_threads && ProcessResources::descriptors() <= m_descriptors;
    };
    if (QTest::qWaitFor(back, Bounds::givingBack))
        return true;
    qWarning("%d threads instead of %d, %d descriptors instead of %d", ProcessResources::threads(), m_threads,
             ProcessResources::descriptors(), m_descriptors);
    return false;
}

PeakMemory::PeakMemory()
{
    // Has the kernel forget the largest size so far.
    QFile file(QStringLiteral("/proc/self/clear_refs"));
    if (file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        file.write("5");
    m_before = memory("VmRSS");
}

qint64 PeakMemory::growth() const
{
    return memory("VmHWM") - m_before;
}
