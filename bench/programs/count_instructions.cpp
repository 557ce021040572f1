// For callgrind: count_instructions ROW/SIZE REPETITIONS runs the library's side of one counted workload.
// What is to be counted happens inside countedWork(), for --toggle-collect. Without arguments it lists the
// counted workloads, each with the number that its count is divided by.

#include "workloads/Workload.h"

#include <QCoreApplication>
#include <QLoggingCategory>

#include <cstdio>

extern "C" __attribute__((noinline)) void countedWork(const std::function<void()>& work, int repetitions)
{
    for (int i = 0; i < repetitions; ++i)
        work();
}

namespace {

QByteArray nameOf(const Workload& workload)
{
    return workload.row + '/' + QByteArray::number(workload.size);
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    const QByteArray wanted = argc > 2 ? QByteArray(argv[1]) : QByteArray();
    bool found = wanted.isEmpty();
    for (const Workload& workload : workloads(Extent::Counted)) {
        if (!workload.isCounted)
            continue;
        if (wanted.isEmpty())
            std::printf("%s %lld\n", nameOf(workload).constData(), workload.isPerByte ? workload.size : 1LL);
        if (nameOf(workload) != wanted)
            continue;
        found = true;
        workload.ours(); // what is set up once is not counted
        countedWork(workload.ours, QByteArray(argv[2]).toInt());
    }
    return found ? 0 : 1;
}
