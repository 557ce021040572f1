// The rows that need no server of others: each workload as ROW/SIZE/ours and ROW/SIZE/peer.

#include "workloads/Workload.h"

#include <QCoreApplication>
#include <QLoggingCategory>

#include <benchmark/benchmark.h>

namespace {

void add(const Workload& workload, const char* side, const std::function<void()>& work)
{
    if (!work)
        return;
    const QByteArray name = workload.row + '/' + QByteArray::number(workload.size) + '/' + side;
    benchmark::RegisterBenchmark(name.constData(), [work](benchmark::State& state) {
        for (auto _ : state)
            work();
    });
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    // A host that ships has them off, and the peers write none.
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    for (const Workload& workload : workloads(Extent::All)) {
        add(workload, "ours", workload.ours);
        add(workload, "peer", workload.peer);
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::ClearRegisteredBenchmarks(); // the sockets must not outlive the application
    benchmark::Shutdown();
    return 0;
}
