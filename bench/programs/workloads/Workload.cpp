#include "workloads/Workload.h"

#include <QtGlobal>

void require(bool holds, const char* what)
{
    if (!holds)
        qFatal("The benchmark does not do what it should: %s", what);
}

Workloads workloads(Extent extent)
{
    Workloads all;
    for (const Workloads& some : {inboundWorkloads(extent), codecWorkloads(extent), pollWorkloads(extent),
                                  learnerWorkloads(extent), workWorkloads(extent)})
        all.insert(all.end(), some.begin(), some.end());
    return all;
}
