#include "workloads/Answers.h"
#include "workloads/PlainLzma.h"
#include "workloads/Workload.h"

#include <CalyxClient/PresenterCollab>
#include <CalyxClient/SockJSConnector>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <memory>

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

// A collaboration whose connector is fed by hand.
class Channel
{
public:
    Channel()
        : m_collab(nullptr, QStringLiteral("http://127.0.0.1"), QStringLiteral("123456"),
                   QStringLiteral("6f1c0a52-session"), QStringLiteral("user"))
    {
        QObject::connect(
            &m_collab, &PresenterCollab::learnerPollResponse, &m_collab,
            [this](const QString& deviceId, const QString& pollId, int responseTime, const QString& answer) {
                m_last = {deviceId, pollId, responseTime, answer};
                ++m_count;
            });
        feed(QStringLiteral("o"));
    }

    void feed(const QString& text) { (m_collab.connector()->*Slots::text())(text); }
    const Answer& last() const { return m_last; }
    int count() const { return m_count; }

private:
    // The slot that transports deliver to is protected.
    struct Slots : SockJSConnector
    {
        static void (SockJSConnector::*text())(QString) { return &Slots::onTextMessageReceived; }
    };

    PresenterCollab m_collab;
    Answer m_last;
    int m_count = 0;
};

struct Sample
{
    Channel channel;
    QStringList messages;
    QStringList frames;
    Answer read;

    explicit Sample(int count)
    {
        for (int i = 0; i < count; ++i) {
            messages.append(Answers::message(i));
            frames.append(Answers::frame(messages.last()));
        }
    }

    void feedAll()
    {
        for (const QString& frame : qAsConst(frames))
            channel.feed(frame);
    }

    void readMessages()
    {
        for (const QString& message : qAsConst(messages))
            read = readMessage(message);
    }

    void readFrames()
    {
        for (const QString& frame : qAsConst(frames))
            read = readFrame(frame);
    }
};

void requireSame(Sample& answers)
{
    answers.feedAll();
    require(answers.channel.count() == answers.frames.size(), "a signal for each answer");
    answers.readMessages();
    require(answers.read == answers.channel.last(), "the values of the last answer, from the message");
    answers.readFrames();
    require(answers.read == answers.channel.last(), "the values of the last answer, from the frame");
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
