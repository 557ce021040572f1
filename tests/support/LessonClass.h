#pragma once

#include "support/FakeService.h"
#include "support/FakeSockJSServer.h"
#include "support/Logins.h"

#include <CalyxClient/Lesson>
#include <CalyxClient/Lzma>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <functional>
#include <memory>

/// A lesson at a service and a bus that are scripted.
namespace LessonClass {

using Calyx::Lesson;
using Answer = FakeService::Answer;
using Work = std::function<void(Lesson&)>;

constexpr char PROBE[] = "/tavisto";
constexpr char FINE[] = R"({"success":true,"data":{}})";

inline void logIn(Lesson& lesson)
{
    lesson.logIn(QStringLiteral("teacher"), QStringLiteral("chalk"));
}

/// A service with a bus, and a lesson there that is live with the learners D1 and D2.
struct Class
{
    FakeService service;
    FakeSockJSServer bus;
    std::unique_ptr<Lesson> lesson = std::make_unique<Lesson>(QUrl(service.url()));

    void expectUsers(const QByteArray& users = R"({"userToken":"D1","userName":"Ann","mode":"learner"},
                                                   {"userToken":"D2","userName":"Bea","mode":"learner"})")
    {
        service.expect("/tavisto/session/getusers",
                       Answer::json(R"({"success":true,"data":{"users":[)" + users + "]}}"));
    }

    void expectRemote() { expectUsers(R"({"userToken":"R","userName":"Remote","mode":"controller"})"); }

    /// Has the lesson log in and open its channel at \p url.
    void begin(const QUrl& url)
    {
        service.expect(PROBE, Answer::json(FINE));
        service.expect(Logins::SUBMIT, Answer::json(Logins::SUCCESS));
        expectSession(url);
        logIn(*lesson);
        lesson->start();
    }

    void expectSession(const QUrl& url)
    {
        service.expect(Logins::USER, Answer::json(R"({"data":{"userLoginId":"teacher"}})"));
        service.expect("/tavisto/session/create", Answer::json(R"({"data":{"sessionCode":"123456"}})"));
        expectChannel(url);
    }

    void expectChannel(const QUrl& url)
    {
        const QByteArray address = "{\"data\":{\"url\":\"" + url.toEncoded() + "\"}}";
        service.expect("/tavisto/session/getcollabserverurl", Answer::json(address));
        service.expect("/tavisto/config/findTenantFeatureDetails",
                       Answer::json(R"({"data":{"sockJSProtocols":["websocket"]}})"));
        service.expect("/tavisto/session/start", Answer::json(R"({"data":{"sessionToken":"T"}})"));
        service.expect("/tavisto/classroom/session/join", Answer::json(R"({"data":{"userToken":"U"}})"));
    }

    bool start()
    {
        begin(bus.url());
        expectUsers();
        return waitFor([&] { return lesson->state() == Lesson::Live; });
    }

    /// A message of a device's, as the bus brings it.
    void hear(const QString& from, const QString& type, const QJsonObject& data)
    {
        QString block;
        Lzma::compress64(QString::fromUtf8(QJsonDocument(data).toJson()), &block);
        hear(QJsonObject{{"from", from}, {"type", type}, {"data", QJsonArray{block}}});
    }
    void hear(const QJsonObject& body)
    {
        const QJsonObject frame{{"type", "rec"}, {"address", "T.presenter"}, {"body", body}};
        bus.injectMessages({QString::fromUtf8(QJsonDocument(frame).toJson(QJsonDocument::Compact))});
    }
    void join(const QString& device) { hear(device, "join", {{"userName", "Cem"}}); }
    /// What says that \p device is gone; \p from is left out where it is null.
    void leave(const QString& device, const QString& type, const QString& from)
    {
        QJsonObject body{{"action", "unregister"},
                         {"client", QJsonObject{{"type", type}, {"token", device}}}};
        if (!from.isNull())
            body.insert("from", from);
        hear(body);
    }
    void answer(const QString& device, const QString& id, const QString& answer)
    {
        hear(device, "questionResponse", {{"questionId", id}, {"answer", answer}, {"responseTime", 1000}});
    }

    bool loseAndReturn(const Work& meanwhile)
    {
        bus.dropConnections();
        if (!waitFor([&] { return lesson->state() == Lesson::Reconnecting; }))
            return false;
        meanwhile(*lesson);
        expectUsers(); // is the session still there?
        expectUsers();
        lesson->retryNow();
        return waitFor([&] { return lesson->state() == Lesson::Live; });
    }

    /// As a host that has been killed and comes back. The lesson's journal has to be \p journal.
    bool takeUp(const QString& journal, const Work& meanwhile)
    {
        const QString copy = journal + QStringLiteral("-copy");
        constexpr auto everybody = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther;
        if (!QFile::copy(journal, copy) || !QFile::setPermissions(copy, everybody))
            return false;
        service.expect("/tavisto/session/stop", Answer::json(FINE));
        lesson->end();
        if (!waitFor([&] { return lesson->state() == Lesson::LoggedIn; }) || sent("disconnect").isEmpty())
            return false;
        expectUsers(); // is the session still there?
        expectChannel(bus.url());
        expectUsers();
        lesson->takeUp(copy);
        meanwhile(*lesson);
        return waitFor([&] { return lesson->state() == Lesson::Live; });
    }

    bool end()
    {
        service.expect("/tavisto/session/stop", Answer::json(FINE));
        service.expect(Logins::LOGOUT, Answer::json(FINE));
        lesson->logOut();
        return waitFor([&] { return lesson->state() == Lesson::LoggedOut && service.isUsedUp(); });
    }

    /// The next message that comes to the bus; empty when none does.
    QJsonObject nextFrame() { return QJsonDocument::fromJson(bus.nextMessage().toUtf8()).object(); }
    /// The body of the next message of this type that is published.
    QJsonObject sent(const char* type)
    {
        for (QJsonObject frame = nextFrame(); !frame.isEmpty(); frame = nextFrame()) {
            const QJsonObject body = frame.value("body").toObject();
            if (body.value("type") == QLatin1String(type))
                return body;
        }
        return QJsonObject();
    }
    /// The messages that are published, up to the next to the remote control: \a types as "type address", \a
    /// data decoded.
    struct Published
    {
        QStringList types;
        QList<QJsonObject> data;
    };
    QStringList published() { return publishedWithData().types; }
    Published publishedWithData()
    {
        Published all;
        for (QJsonObject frame = nextFrame(); !frame.isEmpty(); frame = nextFrame()) {
            const QJsonObject body = frame.value("body").toObject();
            const QString type = body.value("type").toString();
            if (type == QLatin1String("currentCard"))
                break;
            if (frame.value("type") == QLatin1String("publish") && type != QLatin1String("pulse") &&
                !frame.value("address").toString().endsWith(QLatin1String(".controller"))) {
                all.types.append(type + QLatin1Char(' ') + frame.value("address").toString());
                QString data;
                Lzma::decompress64(body.value("data").toArray().at(0).toString(), &data);
                all.data.append(QJsonDocument::fromJson(data.toUtf8()).object());
            }
        }
        return all;
    }
};

} // namespace LessonClass

Q_DECLARE_METATYPE(LessonClass::Work)
