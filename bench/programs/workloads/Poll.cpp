#include "workloads/Drain.h"
#include "workloads/PlainLzma.h"
#include "workloads/Workload.h"

#include <CalyxClient/Lzma>
#include <CalyxClient/PresenterCollab>
#include <CalyxClient/SockJSConnector>

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QWebSocket>

#include <memory>

namespace {

using Calyx::OrdinalType::ALPHA_UPPER;
using Calyx::PollType::MULTIPLE;

const QString sessionToken = QStringLiteral("6f1c0a52-session");
const QString userToken = QStringLiteral("user");
constexpr int registrations = 3; // what a channel sends by itself when it opens

QJsonObject feedBackByHand()
{
    using S = QLatin1String;
    const QJsonValue null;
    return {{S("activityResponseStatus"), null},
            {S("activityScoreStatus"), null},
            {S("allowResubmit"), true},
            {S("answer"), null},
            {S("correctAnswer"), null},
            {S("correctFeedback"), null},
            {S("correctOptions"), QJsonArray()},
            {S("inCorrectFeedback"), null},
            {S("jsonAnswer"), null},
            {S("numberOfRetries"), 0},
            {S("numberOfRetriesRemaining"), 0},
            {S("optionAnswers"), QJsonArray()},
            {S("optionFeedbacks"), QJsonArray()},
            {S("remainingTime"), null},
            {S("showCorrectAnswer"), false},
            {S("showFeedback"), false}};
}

QJsonArray optionsByHand(int count)
{
    using S = QLatin1String;
    QJsonArray options;
    for (int i = 0; i < count; ++i)
        options.append(QJsonObject{{S("displaySeqNumber"), i + 1},
                                   {S("id"), QString(QChar(ushort('A' + i % 26)))},
                                   {S("math"), false},
                                   {S("optionText"), QString(QLatin1String(""))}});
    return options;
}

QJsonObject questionByHand(int optionCount)
{
    using S = QLatin1String;
    const QString empty = S("");
    const QJsonObject activityType{{S("id"), S("8755bfc923cb492094df5c842a30da5f")},
                                   {S("name"), S("multiple")}};
    const QJsonObject metadata{{S("options"), QJsonArray()}, {S("ordinalType"), S("alpha-upper")}};
    return {{S("activityOptions"), optionsByHand(optionCount)},
            {S("activityType"), activityType},
            {S("card"), QJsonObject()},
            {S("feedBack"), feedBackByHand()},
            {S("hasNext"), false},
            {S("hint"), empty},
            {S("id"), S("a1B2c3D4")},
            {S("instructions"), empty},
            {S("math"), false},
            {S("metadata"), metadata},
            {S("navigable"), false},
            {S("numberOfCorrectOptions"), 1},
            {S("passage"), empty},
            {S("questionNumber"), 0},
            {S("questionSetMode"), S("Poll")},
            {S("type"), S("multiple")}};
}

// The frame as one writes it by hand.
QString frameByHand(int optionCount)
{
    using S = QLatin1String;
    const QString json = QString::fromUtf8(QJsonDocument(questionByHand(optionCount)).toJson());
    QString compressed;
    Lzma::compress64(json, &compressed);
    const QJsonObject body{{S("data"), QJsonArray{compressed}},
                           {S("from"), userToken},
                           {S("sourceSystem"), S("Lumora")},
                           {S("type"), S("questionStart")},
                           {S("version"), S("3.0.0")}};
    const QJsonObject publish{{S("type"), S("publish")}, {S("address"), sessionToken}, {S("body"), body}};
    const QString message = QString::fromUtf8(QJsonDocument(publish).toJson());
    return QString::fromUtf8(QJsonDocument(QJsonArray{message}).toJson());
}

// What a frame publishes, with the question in clear text and without the id, which is made anew each time.
QJsonObject published(const QString& frame)
{
    const QString message = QJsonDocument::fromJson(frame.toUtf8()).array().first().toString();
    QJsonObject publish = QJsonDocument::fromJson(message.toUtf8()).object();
    QJsonObject body = publish.value(QLatin1String("body")).toObject();
    const QString data = body.value(QLatin1String("data")).toArray().first().toString();
    QJsonObject question = QJsonDocument::fromJson(PlainLzma::decompress64(data.toLatin1())).object();
    question.remove(QLatin1String("id"));
    body.insert(QLatin1String("data"), question);
    publish.insert(QLatin1String("body"), body);
    return publish;
}

struct Sessions
{
    Drain drain;
    PresenterCollab collab{nullptr, drain.url().toString(), QStringLiteral("123456"), sessionToken,
                           userToken};
    QWebSocket bare;

    Sessions()
    {
        collab.open({QStringLiteral("websocket")});
        while (!collab.isConnected())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        bare.open(drain.url());
        while (bare.state() != QAbstractSocket::ConnectedState)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    void startPoll(int optionCount)
    {
        collab.startPoll(MULTIPLE, ALPHA_UPPER, optionCount, 1);
        QCoreApplication::processEvents(); // writes to the socket
    }

    void sendByHand(int optionCount)
    {
        bare.sendTextMessage(frameByHand(optionCount));
        QCoreApplication::processEvents();
    }
};

void requireSame(Sessions& sessions, int optionCount)
{
    sessions.startPoll(optionCount);
    const QJsonObject ours = published(sessions.drain.message(registrations));
    sessions.sendByHand(optionCount);
    const QJsonObject byHand = published(sessions.drain.message(registrations + 1));
    require(ours == byHand, "the question by hand");
}

} // namespace

Workloads pollWorkloads(Extent extent)
{
    Workloads workloads;
    const auto sessions = std::make_shared<Sessions>();
    constexpr int fewOptions = 4;
    requireSame(*sessions, fewOptions);
    for (const int count : {fewOptions, 40, 400, 4000}) {
        if (extent == Extent::Counted && count != fewOptions)
            continue;
        const auto start = [sessions, count] { sessions->startPoll(count); };
        workloads.push_back({"startPoll", count, start, [sessions, count] { sessions->sendByHand(count); },
                             count == fewOptions});
        // The same against a peer that has the frame ready and sends nothing.
        workloads.push_back({"startPoll-unsent", count, start, [count] { frameByHand(count); }});
    }
    return workloads;
}
