#include "workloads/Workload.h"

#include <CalyxClient/Learner>
#include <CalyxClient/PresenterClient>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <memory>

namespace {

QString bodyOf(int count)
{
    QJsonArray users;
    for (int i = 0; i < count; ++i)
        users.append(QJsonObject{{QStringLiteral("userToken"), QStringLiteral("device-%1").arg(i)},
                                 {QStringLiteral("userName"), QStringLiteral("Learner %1").arg(i)},
                                 {QStringLiteral("deviceType"), QStringLiteral("tablet")},
                                 {QStringLiteral("mode"), QStringLiteral("learner")}});
    const QJsonObject envelope{{QStringLiteral("success"), true},
                               {QStringLiteral("data"), QJsonObject{{QStringLiteral("users"), users}}}};
    return QString::fromUtf8(QJsonDocument(envelope).toJson(QJsonDocument::Compact));
}

QList<Calyx::Learner> readByHand(const QString& body)
{
    QList<Calyx::Learner> learners;
    const QJsonObject envelope = QJsonDocument::fromJson(body.toUtf8()).object();
    const QJsonArray users =
        envelope.value(QLatin1String("data")).toObject().value(QLatin1String("users")).toArray();
    for (const QJsonValue& entry : users) {
        const QJsonObject user = entry.toObject();
        if (user.value(QLatin1String("mode")).toString() == QLatin1String("learner"))
            learners.append(Calyx::Learner(user.value(QLatin1String("userToken")).toString(),
                                           user.value(QLatin1String("userName")).toString(),
                                           user.value(QLatin1String("deviceType")).toString()));
    }
    return learners;
}

} // namespace

Workloads learnerWorkloads(Extent extent)
{
    constexpr int counted = 5000;
    Workloads workloads;
    const auto client = std::make_shared<PresenterClient>(nullptr, QStringLiteral("http://127.0.0.1"));
    for (const int count : {5, 50, 500, 5000}) {
        if (extent == Extent::Counted && count != counted)
            continue;
        const QString body = bodyOf(count);
        client->getLearnersResponse(body);
        const QList<Calyx::Learner> byHand = readByHand(body);
        require(client->learners().size() == count && byHand.size() == count &&
                    client->learners().last().userName == byHand.last().userName,
                "the learners' list");
        workloads.push_back({"learners", count, [client, body] { client->getLearnersResponse(body); },
                             [body] { readByHand(body); }, count == counted});
    }
    return workloads;
}
