#pragma once

#include "support/FakeService.h"
#include "support/FakeSockJSServer.h"

#include <CalyxClient/PresenterClient>
#include <CalyxClient/PresenterCollab>

#include <QJsonDocument>
#include <QJsonObject>

#include <memory>

/// A service, a bus, and a client with a created session "123456" of the user "teacher".
struct Lesson
{
    using Answer = FakeService::Answer;

    static constexpr const char* ADDRESS = "/tavisto/session/getcollabserverurl";
    static constexpr const char* FEATURES = "/tavisto/config/findTenantFeatureDetails";
    static constexpr const char* START = "/tavisto/session/start";
    static constexpr const char* JOIN = "/tavisto/classroom/session/join";
    static constexpr const char* STOP = "/tavisto/session/stop";

    static constexpr const char* STARTED = R"({"data":{"sessionToken":"T"}})";
    static constexpr const char* JOINED = R"({"data":{"userToken":"U"}})";
    static constexpr const char* WEBSOCKET = R"({"data":{"sockJSProtocols":["websocket"]}})";

    FakeService service;
    FakeSockJSServer bus;
    std::unique_ptr<PresenterClient> client = std::make_unique<PresenterClient>(nullptr, service.url());
    PresenterCollab* collab = nullptr;

    Lesson()
    {
        client->sessionSuccessResponse(QStringLiteral(R"({"data":{"sessionCode":"123456"}})"));
        client->userNameResponse(QStringLiteral(R"({"data":{"userLoginId":"teacher"}})"));
    }

    ~Lesson()
    {
        // A started session is stopped by the client's destructor.
        if (client && !client->sessionToken().isNull())
            service.expect(STOP, Answer::json("{}"));
    }

    /// What the service answers when it is asked for the bus.
    QByteArray address() const { return "{\"data\":{\"url\":\"" + bus.url().toEncoded() + "\"}}"; }

    /// The next start goes well. Other answers can be given for one of its steps.
    void expectStart(const Answer& features = Answer::json(WEBSOCKET),
                     const Answer& start = Answer::json(STARTED), const Answer& join = Answer::json(JOINED))
    {
        service.expect(ADDRESS, Answer::json(address()));
        service.expect(FEATURES, features);
        service.expect(START, start);
        service.expect(JOIN, join);
    }

    bool start() { return client->startWebsocket(&collab); }

    bool startWell()
    {
        expectStart();
        return start();
    }

    /// The address of a "register" frame.
    static QString registered(const QString& message)
    {
        const QJsonObject frame = QJsonDocument::fromJson(message.toUtf8()).object();
        return frame.value("type") == QStringLiteral("register") ? frame.value("address").toString()
                                                                 : QString();
    }

    bool stop()
    {
        service.expect(STOP, Answer::json("{}"));
        return client->doStopSession();
    }
};
