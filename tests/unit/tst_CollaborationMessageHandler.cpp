// Which frame becomes which signal with which values, and what it writes to the log. What becomes of the
// data: tst_PayloadDecoder.

#include "support/LogRecorder.h"
#include "support/Rows.h"
#include "support/TypeNamed.h"

#include <CalyxClient/CollaborationMessageHandler>
#include <CalyxClient/Learner>
#include <CalyxClient/Lzma>
#include <CalyxClient/RemoteControlMessage>

#include <QJsonDocument>
#include <QLoggingCategory>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <memory>

namespace {

QString compressed(const char* json)
{
    QString base64;
    return Lzma::compress64(QString::fromUtf8(json), &base64) ? base64 : QString();
}

QVariant json(const QString& text)
{
    return QJsonDocument::fromJson(text.toUtf8()).toVariant();
}

QVariantMap from(const QString& device)
{
    return {{"from", device}};
}

QString describe(const QVariant& value)
{
    if (!value.isValid())
        return QStringLiteral("invalid");
    if (value.userType() == QMetaType::QVariantMap || value.userType() == QMetaType::QVariantList)
        return QString::fromUtf8(QJsonDocument::fromVariant(value).toJson(QJsonDocument::Compact));
    return QStringLiteral("%1 '%2'").arg(QString::fromLatin1(value.typeName()), value.toString());
}

QString describe(const Calyx::Learner& learner)
{
    return QStringLiteral("join %1/%2/%3").arg(learner.deviceId, learner.userName, learner.deviceType);
}

QString describe(const Calyx::RemoteControlMessage& message)
{
    return QStringLiteral("remote %1 %2 %3").arg(message.from, message.type, describe(message.data));
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
    void tellJoin(Learner learner);
    void tellJoinQualified(Calyx::Learner learner);
    void tellCommand(RemoteControlMessage message);
    void tellCommandQualified(Calyx::RemoteControlMessage message);

public Q_SLOTS:
    void answered(QString device, QString poll, int time, QString answer)
    {
        heard.append(QStringLiteral("answer %1 %2 %3 %4").arg(device, poll).arg(time).arg(answer));
    }
    void joined(Learner learner) { heard.append(describe(learner)); }
    void left(QString device) { heard.append(QStringLiteral("leave ") + device); }
    void controller(bool isRegister)
    {
        heard.append(isRegister ? QStringLiteral("controller comes") : QStringLiteral("controller goes"));
    }
    void commanded(RemoteControlMessage message) { heard.append(describe(message)); }
    void joinedQualified(Calyx::Learner learner) { joined(learner); }
    void commandedQualified(Calyx::RemoteControlMessage message) { commanded(message); }
    void endThread() { thread()->quit(); }
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
        // For each line, how it begins and what it names, in order.
        const QStringList any{"[MessageHandler]", "\n"};
        const auto lines = [&any](const QList<QStringList>& more) { return QList<QStringList>{any} + more; };
        const QString action = "[MessageHandler.ACTION]";
        const QString type = "[MessageHandler.TYPE]";
        const QStringList payload{"[MessageHandler.Decompressed from String] ", "{"};
        const auto frame = [](const char* name, const char* data) {
            return QStringLiteral(R"({"body":{"type":"%1","from":"d-9","data":"%2"}})")
                .arg(name, compressed(data));
        };
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
            {"poll response", frame("pollResponse", R"({"blob":{"pick":["A","C"]}})"),
             lines({{type, "pollResponse"}, payload, {"POLL_RESPONSE", "d-9", ":", "A,C"}})},
            {"question response", frame("questionResponse", R"({"answer":"forty"})"),
             lines({{type, "questionResponse"},
                    payload,
                    {"[DEBUG] RECEIVED RESPONSE FROM DEVICE ", "d-9", " of value: ", "forty"}})},
            {"question request", frame("questionGet", R"({"questionNumber":31})"),
             lines({{type, "questionGet"}, payload, {"Learner ", "d-9", " requesting question ", "31"}})},
        });
    }
    void logOfAFrame()
    {
        const auto [frame, lines] = row<QString, QList<QStringList>>();
        emit m_host->frame(frame);
        const QStringList logged = m_log->debug();
        QCOMPARE(logged.size(), lines.size());
        for (int i = 0; i < lines.size(); ++i) {
            QVERIFY2(logged.at(i).startsWith(lines.at(i).first()), qPrintable(logged.at(i)));
            int at = 0;
            for (const QString& part : lines.at(i)) {
                at = logged.at(i).indexOf(part, at) + part.size();
                QVERIFY2(at >= part.size(), qPrintable(logged.at(i)));
            }
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

    void answerOfAPollResponse_data()
    {
        rows<QString, QString>({
            {"list of two", R"({"pick":["A","C"]})", "A,C"},
            {"list of one", R"({"pick":["A"]})", "A"},
            {"empty list, for all that an input says", R"({"pick":[],"input":"x"})", ""},
            {"list in its own order", R"({"pick":["C","A","B","A"]})", "C,A,B,A"},
            {"list of numbers", R"({"pick":[2,0,1.5]})", "2,0,1.5"},
            {"list of truth values", R"({"pick":[true,false]})", "true,false"},
            {"list with empty texts", R"({"pick":["","A",""]})", ",A,"},
            {"list with what has no text", R"({"pick":["A",null,{"x":1},["y"],"B"]})", "A,,,,B"},
            {"list of words with commas and blanks", R"({"pick":["a, b"," c "]})", "a, b, c "},
            {"list outside ASCII", u8R"({"pick":["ä","日本","😀"]})", u8"ä,日本,😀"},
            {"list with a zero character", R"({"pick":["A\u0000x","B"]})", "A,B"},
            // As bytes, like an input: a byte-order mark goes, and half a pair is no character.
            {"list with what bytes cannot keep", R"({"pick":["\ufeffA","\ud800A"]})", "A,?A"},
            {"input with half a pair", R"({"input":"\ud800A"})", "?A"},
            {"list goes before an input", R"({"pick":["A"],"input":"x"})", "A"},
            {"single pick gives way to the input", R"({"pick":"B","input":"x"})", "x"},
            {"single pick without input", R"({"pick":"B"})", ""},
            {"number as pick", R"({"pick":1,"input":"x"})", "x"},
            {"object as pick", R"({"pick":{"a":1},"input":"x"})", "x"},
            {"null as pick", R"({"pick":null,"input":"x"})", "x"},
            {"input", R"({"input":"forty-two"})", "forty-two"},
            {"input of a number", R"({"input":42})", "42"},
            {"input of a negative fraction", R"({"input":-0.5})", "-0.5"},
            {"input of a truth value", R"({"input":true})", "true"},
            {"input of null", R"({"input":null})", ""},
            {"input of a list", R"({"input":["A"]})", ""},
            {"input of an object", R"({"input":{"a":1}})", ""},
            {"input outside ASCII", u8R"({"input":"Größe 😀"})", u8"Größe 😀"},
            {"input with a zero character", R"({"input":"before\u0000behind"})", "before"},
            {"input of several lines", R"({"input":" a\nb "})", " a\nb "},
            {"empty blob", "{}", ""},
            {"blob is a text", R"("A")", ""},
            {"blob is a list", R"(["A"])", ""},
            {"blob is null", "null", ""},
        });
    }
    void answerOfAPollResponse()
    {
        const auto [blob, answer] = row<QString, QString>();
        const QVariant data =
            json(QStringLiteral(R"({"pollId":"p1","responseTime":2500,"blob":)") + blob + QLatin1Char('}'));
        QVERIFY(data.isValid());
        m_handler->dataPollResponse(from("d1"), data);
        QCOMPARE(m_host->heard, QStringList("answer d1 p1 2500 " + answer));
    }

    void answerOfAQuestionResponse_data()
    {
        const QString options = R"("optionAnswers":[{"activityOptionId":"P"},{"activityOptionId":"Q"}])";
        rows<QString, QString>({
            {"answer", R"("answer":"x")", "x"},
            {"answer of a number", R"("answer":4.5)", "4.5"},
            {"answer of null", R"("answer":null)", ""},
            {"answer of an object", R"("answer":{"a":1})", ""},
            {"answer outside ASCII", u8R"("answer":"日本 😀")", u8"日本 😀"},
            {"options", options, "PQ"},
            {"empty answer and options", QStringLiteral(R"("answer":"",)") + options, "PQ"},
            {"answer and options", QStringLiteral(R"("answer":"x",)") + options, "xPQ"},
            {"one option", R"("optionAnswers":[{"activityOptionId":"P"}])", "P"},
            {"option ids that are numbers",
             R"("optionAnswers":[{"activityOptionId":1},{"activityOptionId":10}])", "110"},
            {"no options in the list", R"("answer":"x","optionAnswers":[])", "x"},
            {"options without ids", R"("optionAnswers":[{"id":"P"},{},"P",5,null,{"activityOptionId":"Q"}])",
             "Q"},
            {"options are a text", R"("answer":"x","optionAnswers":"P")", "x"},
            {"options are an object", R"("answer":"x","optionAnswers":{"activityOptionId":"P"})", "x"},
            {"options are null", R"("answer":"x","optionAnswers":null)", "x"},
            {"neither", R"("other":1)", ""},
            {"token and mode change nothing",
             R"("studentAssessmentToken":"token","questionSetMode":"Assessment","answer":"x")", "x"},
        });
    }
    void answerOfAQuestionResponse()
    {
        const auto [members, answer] = row<QString, QString>();
        const QVariant data =
            json(QStringLiteral(R"({"questionId":"q1","responseTime":2500,)") + members + QLatin1Char('}'));
        QVERIFY(data.isValid());
        m_handler->dataQuestionResponse(from("d1"), data);
        QCOMPARE(m_host->heard, QStringList("answer d1 q1 2 " + answer));
    }
    void valuesAreReadLeniently_data()
    {
        columns<QString, QVariant, QString>();
        // As a poll's response, a question's, and a request for a question.
        const auto row = [](const char* body, const QVariant& data, const QString& heard) {
            QTest::addRow("%s, %s", body, qPrintable(describe(data))) << body << data << heard;
        };
        const auto time = [&](const char* sent, int ofPoll, int ofQuestion) {
            row("{}", json(QStringLiteral(R"({"responseTime":%1})").arg(sent)),
                QStringLiteral("answer   %1 ; answer   %2 ; ask  0").arg(ofPoll).arg(ofQuestion));
        };
        time("2500", 2500, 2);
        time("1999", 1999, 1);
        time("1000", 1000, 1);
        time("999", 999, 0);
        time("0", 0, 0);
        time("-999", -999, 0);
        time("-1500", -1500, -1);
        time("2147483647", 2147483647, 2147483);
        time("\"2500\"", 2500, 2);
        for (const char* none : {"\"soon\"", "\"\"", "null", "[2500]", "{\"ms\":2500}"})
            time(none, 0, 0);
        const char d1[] = R"({"from":"d1"})";
        const QVariant ids = json(R"({"pollId":"i1","questionId":"i2"})");
        row(d1, ids, "answer d1 i1 0 ; answer d1 i2 0 ; ask d1 0");
        row(R"({"from":7})", ids, "answer 7 i1 0 ; answer 7 i2 0 ; ask 7 0");
        for (const char* nobody : {"{}", R"({"from":null})"})
            row(nobody, ids, "answer  i1 0 ; answer  i2 0 ; ask  0");
        row(d1, json(R"({"pollId":12,"questionId":13})"), "answer d1 12 0 ; answer d1 13 0 ; ask d1 0");
        const QString nothing = "answer d1  0 ; answer d1  0 ; ask d1 0";
        for (const char* none : {"{}", "null"})
            row(d1, json(QStringLiteral(R"({"pollId":%1,"questionId":%1})").arg(none)), nothing);
        const auto number = [&](const char* sent, int asked) {
            row(d1, json(QStringLiteral(R"({"questionNumber":%1})").arg(sent)),
                QStringLiteral("answer d1  0 ; answer d1  0 ; ask d1 %1").arg(asked));
        };
        number("3", 3);
        number("-1", -1);
        number("\"12\"", 12);
        for (const char* none : {"\"next\"", "null", "[3]"})
            number(none, 0);
        const char text[] = R"({"pollId":"p1","questionId":"q1","questionNumber":3})";
        for (const QVariant& other : {QVariant(), QVariant(text), QVariant(QByteArray(text)),
                                      QVariant(QVariantList{json(text)}), QVariant(QVariantMap())})
            row(d1, other, nothing);
    }
    void valuesAreReadLeniently()
    {
        const auto [text, data, heard] = row<QString, QVariant, QString>();
        const QVariantMap body = json(text).toMap();
        m_handler->dataPollResponse(body, data);
        m_handler->dataQuestionResponse(body, data);
        m_handler->dataGetQuestion(body, data);
        QCOMPARE(m_host->heard.join("; "), heard);
    }

    void hostsMayUseOtherTypes()
    {
        const QString pick = "pick";
        const QVariantList picks = {QStringList{"2", "7"}, QVariant::fromValue(QVector<int>{2, 7})};
        for (const QVariant& list : picks) {
            const QMap<QString, QVariantHash> data{{"blob", {{pick, list}}}};
            m_handler->dataPollResponse(from("d1"), QVariant::fromValue(data));
            QCOMPARE(m_host->heard.takeLast(), QStringLiteral("answer d1  0 2,7"));
        }
    }

    void valuesAreEmptyAtFirst()
    {
        QCOMPARE(describe(Calyx::Learner()), QStringLiteral("join //"));
        QCOMPARE(describe(Calyx::RemoteControlMessage()), QStringLiteral("remote   invalid"));
    }

    void typesAreRegisteredUnderBothSpellings()
    {
        for (int times = 0; times < 3; ++times) {
            for (const char* name : {"Learner", "Calyx::Learner"})
                QCOMPARE(typeNamed(name), qMetaTypeId<Calyx::Learner>());
            for (const char* name : {"RemoteControlMessage", "Calyx::RemoteControlMessage"})
                QCOMPARE(typeNamed(name), qMetaTypeId<Calyx::RemoteControlMessage>());
            Calyx::registerLearner();
            Calyx::registerRemoteControlMessage();
        }
    }

    // Hosts connect to them by string in both spellings, queued, and across threads.
    void valuesAreQueued_data()
    {
        rows<QByteArray, QByteArray>({
            {"Learner", SIGNAL(tellJoin(Learner)), SLOT(joined(Learner))},
            {"Calyx::Learner", SIGNAL(tellJoinQualified(Calyx::Learner)),
             SLOT(joinedQualified(Calyx::Learner))},
            {"RemoteControlMessage", SIGNAL(tellCommand(RemoteControlMessage)),
             SLOT(commanded(RemoteControlMessage))},
            {"Calyx::RemoteControlMessage", SIGNAL(tellCommandQualified(Calyx::RemoteControlMessage)),
             SLOT(commandedQualified(Calyx::RemoteControlMessage))},
        });
    }
    void valuesAreQueued()
    {
        const auto [signal, slot] = row<QByteArray, QByteArray>();
        const Calyx::Learner learner("id", "name", "phone");
        const Calyx::RemoteControlMessage message("id", "nextCard", 7);
        QVERIFY(
            connect(m_host.get(), signal.constData(), m_host.get(), slot.constData(), Qt::QueuedConnection));
        QSignalSpy spy(m_host.get(), signal.constData());
        emit m_host->tellJoin(learner);
        emit m_host->tellJoinQualified(learner);
        emit m_host->tellCommand(message);
        emit m_host->tellCommandQualified(message);
        QCOMPARE(spy.size(), 1);
        const QVariant value = spy.first().first();
        const bool isLearner = value.userType() == qMetaTypeId<Calyx::Learner>();
        QCOMPARE(m_host->heard, QStringList());
        QTRY_COMPARE(m_host->heard,
                     QStringList(isLearner ? "join id/name/phone" : "remote id nextCard int '7'"));
        QCOMPARE(isLearner ? describe(value.value<Calyx::Learner>())
                           : describe(value.value<Calyx::RemoteControlMessage>()),
                 m_host->heard.first());
    }

    void signalsCrossThreads()
    {
        using Handler = CollaborationMessageHandler;
        QThread thread;
        Host there;
        QStringList here;
        connect(
            m_handler.get(), &Handler::learnerJoin, this,
            [&](const Calyx::Learner& learner) { here.append(describe(learner)); }, Qt::QueuedConnection);
        QVERIFY(there.listenTo(m_handler.get()));
        // Behind the delivery.
        QVERIFY(
            connect(m_handler.get(), SIGNAL(remoteControl(RemoteControlMessage)), &there, SLOT(endThread())));
        there.moveToThread(&thread);
        thread.start();
        m_handler->dataJoin(from("dev"), QVariantMap{{"userName", "Ann"}});
        m_handler->dataRemote({{"from", "dev"}, {"type", "resume"}}, "payload");
        const bool ended = thread.wait(30000);
        thread.quit();
        thread.wait();
        QVERIFY(ended);
        QCOMPARE(there.heard, QStringList({"join dev/Ann/", "remote dev resume QString 'payload'"}));
        QCOMPARE(here, QStringList());
        QTRY_COMPARE(here, QStringList("join dev/Ann/"));
    }

private:
    std::unique_ptr<LogRecorder> m_log;
    std::unique_ptr<CollaborationMessageHandler> m_handler;
    std::unique_ptr<Host> m_host;
};

QTEST_GUILESS_MAIN(tst_CollaborationMessageHandler)
#include "tst_CollaborationMessageHandler.moc"
