#pragma once

#include <QByteArray>

#include <functional>
#include <vector>

/// One row of the comparison: what the library does, and what its peer does with the same input.
///
/// Before it is returned by a function below, both have been run once and have been seen to give the same
/// result.
struct Workload
{
    QByteArray row;             ///< "inbound", "compress64", ...
    qint64 size = 1;            ///< what the row grows with: bytes, answers, options, learners
    std::function<void()> ours; ///< the library
    std::function<void()> peer; ///< the same by hand with Qt and the LZMA SDK; empty when there is none
    bool isCounted = false;     ///< whether bench/baseline.json holds its instruction count
    bool isPerByte = false;     ///< whether that is divided by the size
};
using Workloads = std::vector<Workload>;

/// Which workloads to prepare: large ones take their time under callgrind.
enum class Extent { All, Counted };

/// Ends the program when \p holds is false: numbers of a run that does something else would be worthless.
void require(bool holds, const char* what);

/// From the SockJS text of poll answers to the typed signal; grows with the number of answers.
Workloads inboundWorkloads(Extent extent);
/// compress64 and decompress64; grow with the bytes of text.
Workloads codecWorkloads(Extent extent);
/// startPoll() to the WebSocket; grows with the number of options.
Workloads pollWorkloads(Extent extent);
/// What a byte that comes in costs, of harmless and of other messages; the size is that of the bytes.
Workloads workWorkloads(Extent extent);
/// The learners' list; grows with the number of learners.
Workloads learnerWorkloads(Extent extent);

Workloads workloads(Extent extent);
