#include "workloads/Answers.h"
#include "workloads/Channel.h"
#include "workloads/PlainLzma.h"
#include "workloads/Workload.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <memory>
#include <utility>

namespace {

struct Answer
{
    QString deviceId;
    QString pollId;
    int responseTime = 0;
    QString answer;

    bool operator==(const Answer& other) const
    {
        return deviceId == other.deviceId && pollId == other.pollId && responseTime == other.responseTime &&
               answer == other.answer;
    }
};

// The message parsed, its payload decoded and parsed, and the four values read: nothing else.
Answer readMessage(const QString& message)
{
    const QJsonObject body =
        QJsonDocument::fromJson(message.toUtf8()).object().value(QLatin1String("body")).toObject();
    const QString base64 = body.value(QLatin1String("data")).toArray().first().toString();
    const QJsonObject payload = QJsonDocument::fromJson(PlainLzma::decompress64(base64.toLatin1())).object();
    return {body.value(QLatin1String("from")).toString(), payload.value(QLatin1String("pollId")).toString(),
            payload.value(QLatin1String("responseTime")).toInt(),
            payload.value(QLatin1String("blob"))
                .toObject()
                .value(QLatin1String("pick"))
                .toArray()
                .first()
                .toString()};
}

Answer readFrame(const QString& frame)
{
    return readMessage(QJsonDocument::fromJson(frame.mid(1).toUtf8()).array().first().toString());
}

struct Sample
{
    Channel channel;
    QStringList messages;
    QStringList frames;
    Answer last;
    int count = 0;
    Answer read;

    explicit Sample(int size)
    {
        QObject::connect(
            &channel.collab, &PresenterCollab::learnerPollResponse, &channel.collab,
            [this](const QString& deviceId, const QString& pollId, int responseTime, const QString& answer) {
                last = {deviceId, pollId, responseTime, answer};
                ++count;
            });
        for (int i = 0; i < size; ++i) {
            messages.append(Answers::message(i));
            frames.append(Answers::frame(messages.last()));
        }
    }

    void feedAll()
    {
        for (const QString& frame : std::as_const(frames))
            channel.feed(frame);
    }

    void readMessages()
    {
        for (const QString& message : std::as_const(messages))
            read = readMessage(message);
    }

    void readFrames()
    {
        for (const QString& frame : std::as_const(frames))
            read = readFrame(frame);
    }
};

void requireSame(Sample& answers)
{
    answers.feedAll();
    require(answers.count == answers.frames.size(), "a signal for each answer");
    answers.readMessages();
    require(answers.read == answers.last, "the values of the last answer, from the message");
    answers.readFrames();
    require(answers.read == answers.last, "the values of the last answer, from the frame");
}

} // namespace

Workloads inboundWorkloads(Extent extent)
{
    constexpr int counted = 1;
    Workloads workloads;
    for (const int count : {1, 10, 100, 1000}) {
        if (extent == Extent::Counted && count != counted)
            continue;
        const auto answers = std::make_shared<Sample>(count);
        requireSame(*answers);
        const auto feed = [answers] { answers->feedAll(); };
        workloads.push_back(
            {"inbound", count, feed, [answers] { answers->readMessages(); }, count == counted});
        // The same against a peer that has to take the message out of its frame, too: a third parse.
        workloads.push_back({"inbound-frame", count, feed, [answers] { answers->readFrames(); }});
    }
    return workloads;
}
