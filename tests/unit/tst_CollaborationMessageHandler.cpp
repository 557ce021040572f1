// Which frame becomes which signal. What becomes of the data and of learners' answers, and what is logged:
// tst_CollaborationMessageHandlerData, tst_CollaborationMessageHandlerResponses,
// tst_CollaborationMessageHandlerLog.

#include "support/MessageHandlerTest.h"
#include "support/Rows.h"

#include <CalyxClient/Lzma>

#include <QMetaMethod>
#include <QSignalSpy>
#include <QTest>

namespace {

QString compressed(const char* json)
{
    QString base64;
    return Lzma::compress64(QString::fromUtf8(json), &base64) ? base64 : QString();
}

} // namespace

class tst_CollaborationMessageHandler : public MessageHandlerTest
{
    Q_OBJECT

private Q_SLOTS:
    void hostsConnectByString()
    {
        QCOMPARE(m_handler->parent(), this);
        QCOMPARE(m_log->warnings(), QStringList());
        MessageHandlerHost other;
        QVERIFY(connect(m_handler, SIGNAL(unhandledMessage(QVariantMap, QVariant)), &other,
                        SLOT(unhandled(QVariantMap, QVariant))));
    }

    void onlyTheSlotOfTheTransportIsCallable()
    {
        const QMetaObject* meta = m_handler->metaObject();
        const int index = meta->indexOfSlot("onHandleMessage(QString)");
        QVERIFY(index >= 0);
        QCOMPARE(meta->method(index).access(), QMetaMethod::Protected);
        QCOMPARE(meta->indexOfMethod("actionRegister(QVariantMap)"), -1);
        QCOMPARE(meta->indexOfMethod("dataJoin(QVariantMap,QVariant)"), -1);
    }

    void signalsAreInTheirOrder()
    {
        const QMetaObject* meta = m_handler->metaObject();
        QStringList names;
        for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
            if (meta->method(i).methodType() == QMetaMethod::Signal)
                names.append(QString::fromLatin1(meta->method(i).methodSignature()));
        }
        QCOMPARE(names,
                 QStringList({"learnerPollResponse(QString,QString,int,QString)", "learnerJoin(Learner)",
                              "learnerUnregister(QString)", "controllerRegister(bool)",
                              "remoteControl(RemoteControlMessage)", "unhandledMessage(QVariantMap,QVariant)",
                              "learnerGetQuestion(QString,int)"}));
    }

    void framesBecomeSignals_data()
    {
        columns<QString, QString>();

        const auto row = [](const char* name, const char* body, const char* heard,
                            const QString& data = QString()) {
            QString frame = QStringLiteral("{\"type\":\"rec\",\"address\":\"t.presenter\",\"body\":") +
                            QString::fromUtf8(body) + QLatin1Char('}');
            frame.replace(QLatin1String("DATA"), data);
            QTest::newRow(name) << frame << QString::fromUtf8(heard);
        };
        row("learner leaves", R"({"action":"unregister","client":{"token":"d1","type":"user"}})", "leave d1");
        row("learner without token leaves", R"({"action":"unregister","client":{"type":"user"}})", "leave ");
        row("token is a number", R"({"action":"unregister","client":{"token":12,"type":"user"}})",
            "leave 12");
        row("controller leaves", R"({"action":"unregister","client":{"token":"c1","type":"controller"}})",
            "controller goes");
        row("action hides a type",
            R"({"action":"unregister","type":"join","client":{"token":"d1","type":"user"}})", "leave d1");
        row("null action hides nothing", R"({"action":null,"type":"pause","from":"c1"})",
            "remote c1 pause invalid");
        row("action that is an object hides nothing", R"({"action":{},"type":"pause","from":"c1"})",
            "remote c1 pause invalid");
        row("action that is a list hides nothing", R"({"action":["unregister"],"type":"pause","from":"c1"})",
            "remote c1 pause invalid");

        row("join", R"({"type":"join","from":"d1","data":["DATA"]})", "join d1/Zoë 😀/tablet",
            compressed(u8R"({"userName":"Zoë 😀","deviceType":"tablet"})"));
        row("join without data", R"({"type":"join","from":"d1"})", "join d1//");
        row("join without sender", R"({"type":"join","data":"DATA"})", "join /Ann/",
            compressed(R"({"userName":"Ann"})"));
        row("join with data of another kind", R"({"type":"join","from":"d1","data":["DATA"]})", "join d1//",
            compressed("[1,2]"));
        row("join with numbers for texts", R"({"type":"join","from":7,"data":"DATA"})", "join 7/8/true",
            compressed(R"({"userName":8,"deviceType":true})"));

        row("remote control", R"({"type":"nextCard","from":"c1","data":["DATA"]})",
            R"(remote c1 nextCard {"card":3})", compressed(R"({"card":3})"));
        row("stopSession", R"({"type":"stopSession","from":"c1"})", "remote c1 stopSession invalid");
        row("remote control without sender", R"({"type":"pause"})", "remote  pause invalid");
        row("data that is an object", R"({"type":"addImageCard","from":"c1","data":{"a":1}})",
            "remote c1 addImageCard invalid");
        row("data that is null", R"({"type":"addImageCard","from":"c1","data":null})",
            "remote c1 addImageCard invalid");

        row("poll response", R"({"type":"pollResponse","from":"d1","data":["DATA"]})",
            "answer d1 p1 2500 A,C",
            compressed(R"({"pollId":"p1","responseTime":2500,"blob":{"pick":["A","C"]}})"));
        row("question response", R"({"type":"questionResponse","from":"d1","data":["DATA"]})",
            "answer d1 q1 2 PQ", compressed(R"({"questionId":"q1","responseTime":2500,
                       "optionAnswers":[{"activityOptionId":"P"},{"activityOptionId":"Q"}]})"));
        row("question request", R"({"type":"questionGet","from":"d1","data":"DATA"})", "ask d1 4",
            compressed(R"({"questionNumber":4})"));

        row("unknown type", R"({"type":"chat"})", R"(unhandled {"type":"chat"} invalid)");
        row("empty type", R"({"type":""})", R"(unhandled {"type":""} invalid)");
        row("type that is a number", R"({"type":5})", R"(unhandled {"type":5} invalid)");
        row("type that is a truth value", R"({"type":true})", R"(unhandled {"type":true} invalid)");
        row("unknown type, data the number 5", R"({"type":"chat","data":5})",
            R"(unhandled {"data":5,"type":"chat"} QString '5')");
        row("unknown type, decoded data", R"({"type":"chat","data":["DATA"]})",
            qPrintable(QStringLiteral(R"(unhandled {"data":["%1"],"type":"chat"} {"a":[1]})")
                           .arg(compressed(R"({"a":[1]})"))),
            compressed(R"({"a":[1]})"));
    }

    void framesBecomeSignals()
    {
        const auto [frame, heard] = row<QString, QString>();
        emit m_host->frame(frame);
        QCOMPARE(m_host->heard, QStringList({heard}));
    }

    void framesThatSayNothingAreDropped_data()
    {
        columns<QString>();

        const auto row = [](const char* name, const QString& frame) { QTest::newRow(name) << frame; };
        row("nothing", QString());
        row("no JSON", "hello");
        row("cut off", R"({"body":{"type":"pause"})");
        row("something behind", R"({"body":{"type":"pause"}} x)");
        row("bare text", "\"pause\"");
        row("bare number", "5");
        row("list", R"([{"body":{"type":"pause"}}])");
        row("no body", R"({"type":"pause","address":"t"})");
        row("body is a text", R"({"body":"pause"})");
        row("body is a list", R"({"body":[{"type":"pause"}]})");
        row("body is null", R"({"body":null})");
        row("body is empty", R"({"body":{}})");
        row("another spelling of body", R"({"Body":{"type":"pause"}})");
        row("another spelling of type", R"({"body":{"Type":"pause"}})");
        row("type is null", R"({"body":{"type":null}})");
        row("type is an object", R"({"body":{"type":{"type":"pause"}}})");
        row("type is a list", R"({"body":{"type":["pause"]}})");
        row("only data", R"({"body":{"data":"x","from":"d1"}})");
        row("register of a controller",
            R"({"body":{"action":"register","client":{"token":"c1","type":"controller"}}})");
        row("register of a learner",
            R"({"body":{"action":"register","client":{"token":"d1","type":"user"}}})");
        row("unknown action", R"({"body":{"action":"leave","type":"pause"}})");
        row("action in capitals",
            R"({"body":{"action":"Unregister","client":{"token":"d1","type":"user"}}})");
        row("empty action", R"({"body":{"action":"","type":"pause"}})");
        row("action that is a number", R"({"body":{"action":1,"type":"pause"}})");
        row("action that is a truth value", R"({"body":{"action":false,"type":"pause"}})");
        row("unregister without client", R"({"body":{"action":"unregister"}})");
        row("unregister of a client that is a text", R"({"body":{"action":"unregister","client":"user"}})");
        row("unregister of another kind",
            R"({"body":{"action":"unregister","client":{"token":"p1","type":"presenter"}}})");
        row("unregister of a kind in capitals",
            R"({"body":{"action":"unregister","client":{"token":"d1","type":"User"}}})");
        row("unregister of no kind", R"({"body":{"action":"unregister","client":{"token":"d1"}}})");
        row("nested too deep", QString(5000, QLatin1Char('[')) + QString(5000, QLatin1Char(']')));
        row("zero behind the frame",
            QStringLiteral(R"({"body":{"type":"pause"}})") + QChar(0) + QLatin1Char('x'));
    }

    void framesThatSayNothingAreDropped()
    {
        const auto [frame] = row<QString>();
        emit m_host->frame(frame);
        QCOMPARE(m_host->heard, QStringList());
        // And the next one is heard.
        emit m_host->frame(R"({"body":{"type":"pause","from":"c1"}})");
        QCOMPARE(m_host->heard, QStringList({"remote c1 pause invalid"}));
    }

    void remoteCommands_data()
    {
        columns<QString>();
        for (const char* type :
             {"stopSession", "requestLessonInfo", "requestLesson", "presenterActive", "pause", "resume",
              "lockAll", "unlockAll", "nextCard", "previousCard", "pushCurrentCard", "addImageCard"})
            QTest::newRow(type) << QString::fromLatin1(type);
    }

    void remoteCommands()
    {
        const auto [type] = row<QString>();
        const QString data = compressed(R"({"id":"l1"})");
        emit m_host->frame(
            QStringLiteral(R"({"body":{"type":"%1","from":"c1","data":"%2"}})").arg(type, data));
        QCOMPARE(m_host->heard, QStringList({QStringLiteral(R"(remote c1 %1 {"id":"l1"})").arg(type)}));
        // Only the frame, its type and its data: what a command means is for the host to say.
        QCOMPARE(m_log->debug().size(), 3);
    }

    void typesThatAreNoCommandsAreUnhandled_data()
    {
        columns<QString>();
        for (const char* type :
             {"Join", "JOIN", "join ", "stopsession", "poll", "questionStart", "pollStop", "register",
              "unregister", "disconnect", "heavy", "showCard", "currentLesson", "learnerGetQuestion"})
            QTest::newRow(type) << QString::fromLatin1(type);
    }

    void typesThatAreNoCommandsAreUnhandled()
    {
        const auto [type] = row<QString>();
        emit m_host->frame(QStringLiteral(R"({"body":{"type":"%1"}})").arg(type));
        QCOMPARE(m_host->heard,
                 QStringList({QStringLiteral(R"(unhandled {"type":"%1"} invalid)").arg(type)}));
    }

    void unhandledMessageCarriesBodyAndData()
    {
        QSignalSpy spy(m_handler, SIGNAL(unhandledMessage(QVariantMap, QVariant)));
        emit m_host->frame(R"({"outer":1,"body":{"type":"chat","from":"d1","data":5,"more":{"x":[1]}}})");
        QCOMPARE(spy.size(), 1);
        const QVariantMap body = spy.first().first().toMap();
        QCOMPARE(body.keys(), QStringList({"data", "from", "more", "type"}));
        QCOMPARE(body.value("from"), QVariant("d1"));
        const QVariant data = spy.first().at(1).value<QVariant>();
        QCOMPARE(data.userType(), int(QMetaType::QString));
        QCOMPARE(data.toString(), QStringLiteral("5"));
        QCOMPARE(
            m_log->debug("[MessageHandler.Decompressed] FAILED to decompress, forwarding raw string!").size(),
            1);
    }

    void signalSpiesHoldTheValues()
    {
        QSignalSpy joins(m_handler, SIGNAL(learnerJoin(Learner)));
        QSignalSpy commands(m_handler, SIGNAL(remoteControl(RemoteControlMessage)));
        QVERIFY(joins.isValid() && commands.isValid());
        emit m_host->frame(R"({"body":{"type":"join","from":"d1"}})");
        emit m_host->frame(R"({"body":{"type":"lockAll","from":"c1"}})");
        QCOMPARE(joins.size(), 1);
        QCOMPARE(joins.first().first().value<Calyx::Learner>().deviceId, QStringLiteral("d1"));
        QCOMPARE(commands.size(), 1);
        const auto message = commands.first().first().value<Calyx::RemoteControlMessage>();
        QCOMPARE(message.from, QStringLiteral("c1"));
        QCOMPARE(message.type, QStringLiteral("lockAll"));
        QVERIFY(!message.data.isValid());
    }

    void signalsAreEmittedBeforeTheCallReturns()
    {
        QVERIFY(QMetaObject::invokeMethod(
            m_handler, "onHandleMessage", Qt::DirectConnection,
            Q_ARG(QString, QStringLiteral(R"({"body":{"type":"pause","from":"c1"}})"))));
        QCOMPARE(m_host->heard, QStringList({"remote c1 pause invalid"}));
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

    void anySlotMayDeleteTheHandler_data()
    {
        rows<QString>({
            {"learnerPollResponse, poll", R"({"type":"pollResponse","from":"d1"})"},
            {"learnerPollResponse, question", R"({"type":"questionResponse","from":"d1"})"},
            {"learnerJoin", R"({"type":"join","from":"d1"})"},
            {"learnerUnregister", R"({"action":"unregister","client":{"token":"d1","type":"user"}})"},
            {"controllerRegister", R"({"action":"unregister","client":{"token":"c1","type":"controller"}})"},
            {"remoteControl", R"({"type":"pause","from":"c1"})"},
            {"unhandledMessage", R"({"type":"chat"})"},
            {"learnerGetQuestion", R"({"type":"questionGet","from":"d1"})"},
        });
    }

    void anySlotMayDeleteTheHandler()
    {
        const auto [body] = row<QString>();
        m_host->victim = m_handler;
        emit m_host->frame(QStringLiteral("{\"body\":") + body + QLatin1Char('}'));
        QCOMPARE(m_host->heard.size(), 1);
        QVERIFY(!m_handler);
    }
};

QTEST_GUILESS_MAIN(tst_CollaborationMessageHandler)
#include "tst_CollaborationMessageHandler.moc"
