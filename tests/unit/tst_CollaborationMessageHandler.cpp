// Which frame becomes which signal, and what it writes to the log. What becomes of the data and of learners'
// answers: tst_PayloadDecoder, tst_CollaborationMessageHandlerResponses.

#include "support/LogRecorder.h"
#include "support/Rows.h"
#include "support/TypeNamed.h"

#include <CalyxClient/CollaborationMessageHandler>
#include <CalyxClient/Lzma>

#include <QJsonDocument>
#include <QLoggingCategory>
#include <QTest>

#include <memory>

namespace {

QString compressed(const char* json)
{
    QString base64;
    return Lzma::compress64(QString::fromUtf8(json), &base64) ? base64 : QString();
}

QString describe(const QVariant& value)
{
    if (!value.isValid())
        return QStringLiteral("invalid");
    if (value.userType() == QMetaType::QVariantMap || value.userType() == QMetaType::QVariantList)
        return QString::fromUtf8(QJsonDocument::fromVariant(value).toJson(QJsonDocument::Compact));
    return QStringLiteral("%1 '%2'").arg(QString::fromLatin1(value.typeName()), value.toString());
}

} // namespace

/// A host that connects by string, and keeps what it hears.
class Host : public QObject
{
    Q_OBJECT

public:
    using Learner = Calyx::Learner;
    using RemoteControlMessage = Calyx::RemoteControlMessage;

    /// Whether all connections could be made.
    bool listenTo(CollaborationMessageHandler* handler)
    {
        return connect(this, SIGNAL(frame(QString)), handler, SLOT(onHandleMessage(QString))) &&
               connect(handler, SIGNAL(learnerPollResponse(QString, QString, int, QString)), this,
                       SLOT(answered(QString, QString, int, QString))) &&
               connect(handler, SIGNAL(learnerJoin(Learner)), this, SLOT(joined(Learner))) &&
               connect(handler, SIGNAL(learnerUnregister(QString)), this, SLOT(left(QString))) &&
               connect(handler, SIGNAL(controllerRegister(bool)), this, SLOT(controller(bool))) &&
               connect(handler, SIGNAL(remoteControl(RemoteControlMessage)), this,
                       SLOT(commanded(RemoteControlMessage))) &&
               connect(handler, SIGNAL(unhandledMessage(QVariantMap, QVariant)), this,
                       SLOT(unhandled(QVariantMap, QVariant))) &&
               connect(handler, SIGNAL(learnerGetQuestion(QString, int)), this, SLOT(asked(QString, int)));
    }

    QStringList heard;

Q_SIGNALS:
    void frame(QString text);

public Q_SLOTS:
    void answered(QString device, QString poll, int time, QString answer)
    {
        heard.append(QStringLiteral("answer %1 %2 %3 %4").arg(device, poll).arg(time).arg(answer));
    }
    void joined(Learner learner)
    {
        heard.append(
            QStringLiteral("join %1/%2/%3").arg(learner.deviceId, learner.userName, learner.deviceType));
    }
    void left(QString device) { heard.append(QStringLiteral("leave ") + device); }
    void controller(bool isRegister)
    {
        heard.append(isRegister ? QStringLiteral("controller comes") : QStringLiteral("controller goes"));
    }
    void commanded(RemoteControlMessage message)
    {
        heard.append(
            QStringLiteral("remote %1 %2 %3").arg(message.from, message.type, describe(message.data)));
    }
    void unhandled(QVariantMap body, QVariant data)
    {
        heard.append(QStringLiteral("unhandled %1 %2").arg(describe(body), describe(data)));
    }
    void asked(QString device, int question)
    {
        heard.append(QStringLiteral("ask %1 %2").arg(device).arg(question));
    }
};

class tst_CollaborationMessageHandler : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_log = std::make_unique<LogRecorder>();
        m_handler = std::make_unique<CollaborationMessageHandler>();
        m_host = std::make_unique<Host>();
        QVERIFY(m_host->listenTo(m_handler.get()));
    }

    void cleanup()
    {
        m_handler.reset();
        m_host.reset();
        const QStringList warnings = m_log->warnings();
        m_log.reset();
        QCOMPARE(warnings, QStringList());
    }

    void declaresItsSignalsAndSlotsInOrder()
    {
        QCOMPARE(signaturesOf(CollaborationMessageHandler::staticMetaObject),
                 QStringList({"signal learnerPollResponse(QString,QString,int,QString)",
                              "signal learnerJoin(Learner)", "signal learnerUnregister(QString)",
                              "signal controllerRegister(bool)", "signal remoteControl(RemoteControlMessage)",
                              "signal unhandledMessage(QVariantMap,QVariant)",
                              "signal learnerGetQuestion(QString,int)",
                              "protected slot onHandleMessage(QString)"}));
    }

    void framesBecomeSignals_data()
    {
        columns<QString, QString>();
        // DATA: what the data is compressed from.
        const auto row = [](const char* name, QByteArray body, QByteArray heard, const char* data = "") {
            const QByteArray text = compressed(data).toLatin1();
            body.replace("DATA", text);
            heard.replace("DATA", text);
            QTest::newRow(name)
                << QString(R"({"type":"rec","address":"t.presenter","body":%1})").arg(QString(body))
                << QString(heard);
        };
        row("learner leaves", R"({"action":"unregister","client":{"token":"d1","type":"user"}})", "leave d1");
        row("learner without token leaves", R"({"action":"unregister","client":{"type":"user"}})", "leave ");
        row("token is a number", R"({"action":"unregister","client":{"token":12,"type":"user"}})",
            "leave 12");
        row("controller leaves", R"({"action":"unregister","client":{"token":"c1","type":"controller"}})",
            "controller goes");
        row("action hides a type",
            R"({"action":"unregister","type":"join","client":{"token":"d1","type":"user"}})", "leave d1");
        for (const char* action : {"null", "{}", R"(["unregister"])"})
            row(action, R"({"action":)" + QByteArray(action) + R"(,"type":"pause","from":"c1"})",
                "remote c1 pause invalid");
        row("join", R"({"type":"join","from":"d1","data":["DATA"]})", "join d1/Zoë 😀/tablet",
            R"({"userName":"Zoë 😀","deviceType":"tablet"})");
        row("join without data", R"({"type":"join","from":"d1"})", "join d1//");
        row("join without sender", R"({"type":"join","data":"DATA"})", "join /Ann/", R"({"userName":"Ann"})");
        row("join with data of another kind", R"({"type":"join","from":"d1","data":["DATA"]})", "join d1//",
            "[1,2]");
        row("join with numbers for texts", R"({"type":"join","from":7,"data":"DATA"})", "join 7/8/true",
            R"({"userName":8,"deviceType":true})");
        row("remote control", R"({"type":"nextCard","from":"c1","data":["DATA"]})",
            R"(remote c1 nextCard {"card":3})", R"({"card":3})");
        for (const char* type :
             {"stopSession", "requestLessonInfo", "requestLesson", "presenterActive", "pause", "resume",
              "lockAll", "unlockAll", "nextCard", "previousCard", "pushCurrentCard", "addImageCard"})
            row(type, R"({"type":")" + QByteArray(type) + R"(","from":"c1","data":"DATA"})",
                "remote c1 " + QByteArray(type) + R"( {"id":"l1"})", R"({"id":"l1"})");
        row("remote control without sender", R"({"type":"pause"})", "remote  pause invalid");
        row("data that is an object", R"({"type":"addImageCard","from":"c1","data":{"a":1}})",
            "remote c1 addImageCard invalid");
        row("poll response", R"({"type":"pollResponse","from":"d1","data":["DATA"]})",
            "answer d1 p1 2500 A,C", R"({"pollId":"p1","responseTime":2500,"blob":{"pick":["A","C"]}})");
        row("question response", R"({"type":"questionResponse","from":"d1","data":["DATA"]})",
            "answer d1 q1 2 PQ", R"({"questionId":"q1","responseTime":2500,
            "optionAnswers":[{"activityOptionId":"P"},{"activityOptionId":"Q"}]})");
        row("question request", R"({"type":"questionGet","from":"d1","data":"DATA"})", "ask d1 4",
            R"({"questionNumber":4})");
        row("empty type", R"({"type":""})", R"(unhandled {"type":""} invalid)");
        row("type that is a number", R"({"type":5})", R"(unhandled {"type":5} invalid)");
        row("type that is a truth value", R"({"type":true})", R"(unhandled {"type":true} invalid)");
        row("unknown type, data the number 5", R"({"type":"chat","data":5,"more":{"x":[1]}})",
            R"(unhandled {"data":5,"more":{"x":[1]},"type":"chat"} QString '5')");
        row("unknown type, decoded data", R"({"type":"chat","data":["DATA"]})",
            R"(unhandled {"data":["DATA"],"type":"chat"} {"a":[1]})", R"({"a":[1]})");
        for (const char* type :
             {"chat", "Join", "JOIN", "join ", "stopsession", "poll", "questionStart", "pollStop", "register",
              "unregister", "disconnect", "heavy", "showCard", "currentLesson", "learnerGetQuestion"})
            row(type, R"({"type":")" + QByteArray(type) + R"("})",
                R"(unhandled {"type":")" + QByteArray(type) + R"("} invalid)");
    }

    void framesBecomeSignals()
    {
        const auto [frame, heard] = row<QString, QString>();
        emit m_host->frame(frame);
        QCOMPARE(m_host->heard, QStringList(heard));
    }

    void framesThatSayNothingAreDropped_data()
    {
        columns<QString>();
        for (const char* frame :
             {"",
              "hello",
              "{\"body\":{\"type\":\"pause\"}",
              "{\"body\":{\"type\":\"pause\"}} x",
              "\"pause\"",
              "5",
              R"([{"body":{"type":"pause"}}])",
              R"({"type":"pause","address":"t"})",
              R"({"body":"pause"})",
              R"({"body":[{"type":"pause"}]})",
              R"({"body":null})",
              R"({"body":{}})",
              R"({"Body":{"type":"pause"}})",
              R"({"body":{"Type":"pause"}})",
              R"({"body":{"type":null}})",
              R"({"body":{"type":{"type":"pause"}}})",
              R"({"body":{"type":["pause"]}})",
              R"({"body":{"data":"x","from":"d1"}})",
              R"({"body":{"action":"register","client":{"token":"c1","type":"controller"}}})",
              R"({"body":{"action":"register","client":{"token":"d1","type":"user"}}})",
              R"({"body":{"action":"leave","type":"pause"}})",
              R"({"body":{"action":"Unregister","client":{"token":"d1","type":"user"}}})",
              R"({"body":{"action":"","type":"pause"}})",
              R"({"body":{"action":1,"type":"pause"}})",
              R"({"body":{"action":false,"type":"pause"}})",
              R"({"body":{"action":"unregister"}})",
              R"({"body":{"action":"unregister","client":"user"}})",
              R"({"body":{"action":"unregister","client":{"token":"p1","type":"presenter"}}})",
              R"({"body":{"action":"unregister","client":{"token":"d1","type":"User"}}})",
              R"({"body":{"action":"unregister","client":{"token":"d1"}}})"})
            QTest::newRow(frame) << frame;
        QTest::newRow("nested too deep") << QString(5000, '[') + QString(5000, ']');
        QTest::newRow("zero behind the frame") << R"({"body":{"type":"pause"}})" + QString(1, QChar(0)) + 'x';
    }

    void framesThatSayNothingAreDropped()
    {
        const auto [frame] = row<QString>();
        emit m_host->frame(frame);
        QCOMPARE(m_host->heard, QStringList());
        // And the next one is heard.
        emit m_host->frame(R"({"body":{"type":"pause","from":"c1"}})");
        QCOMPARE(m_host->heard, QStringList("remote c1 pause invalid"));
    }

    void logOfAFrame_data()
    {
        // For each line, how it begins and what it names.
        const QStringList any{"[MessageHandler]", "\n"};
        const auto lines = [&any](const QList<QStringList>& more) { return QList<QStringList>{any} + more; };
        const QString action = "[MessageHandler.ACTION]";
        const QString type = "[MessageHandler.TYPE]";
        rows<QString, QList<QStringList>>({
            {"no JSON", "hello-there", QList<QStringList>{{"[MessageHandler]", "hello-there"}}},
            {"nothing in the body", "{\"body\":{}}", lines({})},
            {"unknown action", "{\"body\":{\"action\":\"wave\",\"type\":\"join\"}}",
             lines({{action, "wave"}})},
            {"learner leaves",
             "{\"body\":{\"action\":\"unregister\",\"client\":{\"token\":\"d-9\",\"type\":\"user\"}}}",
             lines({{action, "unregister"}, {"UNREGISTER", "d-9"}})},
            {"controller leaves",
             "{\"body\":{\"action\":\"unregister\",\"client\":{\"token\":\"c-9\",\"type\":"
             "\"controller\"}}}",
             lines({{action, "unregister"}, {"UNREGISTER CONTROLLER", "c-9"}})},
            {"join", "{\"body\":{\"type\":\"join\",\"from\":\"d-9\"}}",
             lines({{type, "join"}, {"JOIN", "d-9"}})},
            {"remote control", "{\"body\":{\"type\":\"pause\"}}", lines({{type, "pause"}})},
            {"unknown type", "{\"body\":{\"type\":\"chat\"}}", lines({{type, "chat"}})},
        });
    }

    void logOfAFrame()
    {
        const auto [frame, lines] = row<QString, QList<QStringList>>();
        emit m_host->frame(frame);
        const QStringList logged = m_log->debug();
        QCOMPARE(logged.size(), lines.size());
        for (int i = 0; i < lines.size(); ++i) {
            const QString& line = logged.at(i);
            QVERIFY2(line.startsWith(lines.at(i).first()), qPrintable(line));
            QVERIFY2(line.mid(lines.at(i).first().size()).contains(lines.at(i).last()), qPrintable(line));
        }
    }

    void nothingIsLoggedWhileTheCategoryIsOff()
    {
        QLoggingCategory::setFilterRules("default.debug=false");
        emit m_host->frame(R"({"body":{"type":"chat","data":5}})");
        emit m_host->frame(R"({"body":{"type":"join","data":[1]}})");
        emit m_host->frame(R"({"body":{"type":"pollResponse"}})");
        emit m_host->frame(R"({"body":{"type":"questionResponse"}})");
        emit m_host->frame(R"({"body":{"type":"questionGet"}})");
        emit m_host->frame(R"({"body":{"action":"unregister","client":{"type":"user"}}})");
        const QStringList whileOff = m_log->debug();
        QLoggingCategory::setFilterRules(QString());
        QCOMPARE(whileOff, QStringList());
        QCOMPARE(m_host->heard.size(), 6);
    }

    void registerActionWhenCalledDirectly_data()
    {
        rows<QString, QStringList>({
            {"controller", "controller", QStringList{"controller comes"}},
            {"user", "user", QStringList()},
            {"in capitals", "Controller", QStringList()},
            {"none", QString(), QStringList()},
        });
    }

    void registerActionWhenCalledDirectly()
    {
        const auto [kind, heard] = row<QString, QStringList>();
        const QVariantMap client{{"token", "t-17"}, {"type", kind}};
        m_handler->actionRegister({{"client", client}});
        QCOMPARE(m_host->heard, heard);
        const QStringList logged = m_log->debug("REGISTER CONTROLLER");
        QCOMPARE(m_log->debug(), logged);
        QCOMPARE(logged.size(), heard.size());
        QVERIFY(logged.isEmpty() || logged.first().contains(QLatin1String("t-17")));
        m_handler->actionRegister(QVariantMap());
        QCOMPARE(m_host->heard, heard);
    }

private:
    std::unique_ptr<LogRecorder> m_log;
    std::unique_ptr<CollaborationMessageHandler> m_handler;
    std::unique_ptr<Host> m_host;
};

QTEST_GUILESS_MAIN(tst_CollaborationMessageHandler)
#include "tst_CollaborationMessageHandler.moc"
