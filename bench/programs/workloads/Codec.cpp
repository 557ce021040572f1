#include "workloads/PlainLzma.h"
#include "workloads/Workload.h"

#include <CalyxClient/Lzma>

#include <QRandomGenerator>

namespace {

// Short texts are what a message holds, long ones a card: a picture in base64 within some JSON.
QString textOf(int size)
{
    constexpr int longestMessage = 4096;
    QString text = QStringLiteral(R"({"pollId":"0b6c7e0e-3f6a-4d0e-9d5b-0f3c7b1f9a55","responseTime":2500,)");
    QRandomGenerator random(1);
    for (int i = 0; size <= longestMessage && text.size() < size; ++i)
        text += QStringLiteral(R"("activityOptions":[{"displaySeqNumber":%1,"id":"%2","math":false}],)")
                    .arg(i)
                    .arg(random.generate());
    QByteArray picture(size, Qt::Uninitialized);
    for (char& byte : picture)
        byte = char(random.generate());
    text += QString::fromLatin1(picture.toBase64());
    text.truncate(size);
    return text;
}

Workload compression(const QString& text)
{
    QString ours;
    require(Lzma::compress64(text, &ours) && ours == PlainLzma::compress64(text), "compress64");
    Workload workload{"compress64", text.size(), {}, {}};
    workload.ours = [text] {
        QString out;
        Lzma::compress64(text, &out);
    };
    workload.peer = [text] { PlainLzma::compress64(text); };
    return workload;
}

Workload decompression(const QString& text)
{
    const QString base64 = PlainLzma::compress64(text);
    QString ours;
    require(Lzma::decompress64(base64, &ours) && ours == text, "decompress64");
    require(QString::fromUtf8(PlainLzma::decompress64(base64.toLatin1())) == text, "one-call decoder");
    Workload workload{"decompress64", text.size(), {}, {}};
    workload.ours = [base64] {
        QString out;
        Lzma::decompress64(base64, &out);
    };
    workload.peer = [base64] {
        const QString out = QString::fromUtf8(PlainLzma::decompress64(base64.toLatin1()));
    };
    return workload;
}

} // namespace

Workloads codecWorkloads(Extent extent)
{
    constexpr int largestCounted = 64 * 1024;
    Workloads workloads;
    for (const int size : {64, 1536, 64 * 1024, 1024 * 1024, 8 * 1024 * 1024}) {
        if (extent == Extent::Counted && size > largestCounted)
            continue;
        const QString text = textOf(size);
        for (Workload workload : {compression(text), decompression(text)}) {
            workload.isCounted = size <= largestCounted;
            workloads.push_back(workload);
        }
    }
    return workloads;
}
