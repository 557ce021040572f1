// Learners' answers and requests, reduced to what the host is told.

#include "support/LogRecorder.h"
#include "support/Rows.h"

#include <CalyxClient/CollaborationMessageHandler>

#include <QJsonDocument>
#include <QObject>
#include <QSignalSpy>
#include <QTest>

#include <memory>

namespace {

QVariant json(const QString& text)
{
    return QJsonDocument::fromJson(text.toUtf8()).toVariant();
}

QVariantMap from(const QString& device)
{
    return {{"from", device}};
}

} // namespace

class tst_CollaborationMessageHandlerResponses : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_log = std::make_unique<LogRecorder>();
        m_handler = std::make_unique<CollaborationMessageHandler>();
        m_answers = std::make_unique<QSignalSpy>(m_handler.get(),
                                                 SIGNAL(learnerPollResponse(QString, QString, int, QString)));
        m_requests = std::make_unique<QSignalSpy>(m_handler.get(), SIGNAL(learnerGetQuestion(QString, int)));
        QVERIFY(m_answers->isValid() && m_requests->isValid());
    }

    void cleanup()
    {
        m_answers.reset();
        m_requests.reset();
        m_handler.reset();
        m_log.reset();
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
        QCOMPARE(*m_answers, QList<QVariantList>({{"d1", "p1", 2500, answer}}));
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
        });
    }

    void answerOfAQuestionResponse()
    {
        const auto [members, answer] = row<QString, QString>();
        const QVariant data =
            json(QStringLiteral(R"({"questionId":"q1","responseTime":2500,)") + members + QLatin1Char('}'));
        QVERIFY(data.isValid());
        m_handler->dataQuestionResponse(from("d1"), data);
        QCOMPARE(*m_answers, QList<QVariantList>({{"d1", "q1", 2, answer}}));
    }

    void responseTime_data()
    {
        rows<QString, int, int>({
            {"2500", "2500", 2500, 2},
            {"1999", "1999", 1999, 1},
            {"1000", "1000", 1000, 1},
            {"999", "999", 999, 0},
            {"0", "0", 0, 0},
            {"-999", "-999", -999, 0},
            {"-1500", "-1500", -1500, -1},
            {"largest", "2147483647", 2147483647, 2147483},
            {"text of a number", "\"2500\"", 2500, 2},
            {"text", "\"soon\"", 0, 0},
            {"empty text", "\"\"", 0, 0},
            {"null", "null", 0, 0},
            {"list", "[2500]", 0, 0},
            {"object", "{\"ms\":2500}", 0, 0},
        });
    }

    void responseTime()
    {
        const auto [time, ofPoll, ofQuestion] = row<QString, int, int>();
        const QVariant data = json(QStringLiteral(R"({"responseTime":%1})").arg(time));
        QVERIFY(data.isValid());
        m_handler->dataPollResponse(QVariantMap(), data);
        m_handler->dataQuestionResponse(QVariantMap(), data);
        QCOMPARE(m_answers->size(), 2);
        QCOMPARE(m_answers->at(0).at(2), QVariant(ofPoll));
        QCOMPARE(m_answers->at(1).at(2), QVariant(ofQuestion));
    }

    void idsAndSenders_data()
    {
        rows<QVariantMap, QString, QString, QString>({
            {"texts", from("d1"), "\"i1\"", "d1", "i1"},
            {"no sender", QVariantMap(), "\"i1\"", "", "i1"},
            {"sender is a number", json(R"({"from":7})").toMap(), "\"i1\"", "7", "i1"},
            {"sender is null", json(R"({"from":null})").toMap(), "\"i1\"", "", "i1"},
            {"id is a number", from("d1"), "12", "d1", "12"},
            {"id is an object", from("d1"), "{}", "d1", ""},
            {"id is null", from("d1"), "null", "d1", ""},
        });
    }

    void idsAndSenders()
    {
        const auto [body, id, heardSender, heardId] = row<QVariantMap, QString, QString, QString>();
        m_handler->dataPollResponse(body,
                                    json(QStringLiteral(R"({"pollId":%1,"questionId":"other"})").arg(id)));
        m_handler->dataQuestionResponse(
            body, json(QStringLiteral(R"({"questionId":%1,"pollId":"other"})").arg(id)));
        const QVariantList expected{heardSender, heardId, 0, QString()};
        QCOMPARE(*m_answers, QList<QVariantList>({expected, expected}));
    }

    void dataOfAnotherKindGivesEmptyValues_data()
    {
        rows<QVariant>({
            {"invalid", QVariant()},
            {"text", QVariant(R"({"pollId":"p1"})")},
            {"bytes", QVariant(QByteArray(R"({"pollId":"p1"})"))},
            {"list", QVariant(QVariantList{QVariantMap{{"pollId", "p1"}}})},
            {"empty map", QVariant(QVariantMap())},
        });
    }

    void dataOfAnotherKindGivesEmptyValues()
    {
        const auto [data] = row<QVariant>();
        const QVariantMap body = from("d1");
        m_handler->dataPollResponse(body, data);
        m_handler->dataQuestionResponse(body, data);
        m_handler->dataGetQuestion(body, data);
        const QVariantList empty{"d1", QString(), 0, QString()};
        QCOMPARE(*m_answers, QList<QVariantList>({empty, empty}));
        QCOMPARE(*m_requests, QList<QVariantList>({{"d1", 0}}));
    }

    void tokenAndModeOfAQuestionResponseChangeNothing()
    {
        m_handler->dataQuestionResponse(
            from("d1"),
            json(
                R"({"questionId":"q1","studentAssessmentToken":"token","questionSetMode":"Assessment","answer":"x"})"));
        QCOMPARE(*m_answers, QList<QVariantList>({{"d1", "q1", 0, "x"}}));
    }

    void questionRequest_data()
    {
        rows<QString, int>({
            {"number", R"({"questionNumber":3})", 3},
            {"negative", R"({"questionNumber":-1})", -1},
            {"text of a number", R"({"questionNumber":"12"})", 12},
            {"text", R"({"questionNumber":"next"})", 0},
            {"null", R"({"questionNumber":null})", 0},
            {"list", R"({"questionNumber":[3]})", 0},
            {"absent", "{}", 0},
        });
    }

    void questionRequest()
    {
        const auto [data, number] = row<QString, int>();
        m_handler->dataGetQuestion(from("d1"), json(data));
        QCOMPARE(*m_requests, QList<QVariantList>({{"d1", number}}));
        QCOMPARE(m_answers->size(), 0);
    }

    void hostsMayUseOtherTypes()
    {
        const QString pick = "pick";
        const QVariantList picks = {QStringList{"2", "7"}, QVariant::fromValue(QVector<int>{2, 7})};
        for (const QVariant& list : picks) {
            const QMap<QString, QVariantHash> data{{"blob", {{pick, list}}}};
            m_handler->dataPollResponse(from("d1"), QVariant::fromValue(data));
            QCOMPARE(m_answers->takeLast().at(3).toString(), QStringLiteral("2,7"));
        }
    }

    void logs()
    {
        const QVariantMap body = from("d-17");
        m_handler->dataPollResponse(body, json(R"({"blob":{"pick":["A","C"]}})"));
        m_handler->dataQuestionResponse(body, json(R"({"answer":"forty"})"));
        m_handler->dataGetQuestion(body, json(R"({"questionNumber":31})"));
        const QStringList lines = m_log->debug();
        QCOMPARE(lines.size(), 3);
        const auto holds = [](const QString& line, const QStringList& parts) {
            int at = 0;
            for (const QString& part : parts) {
                at = line.indexOf(part, at);
                if (at < 0)
                    return false;
                at += part.size();
            }
            return line.startsWith(parts.first());
        };
        QVERIFY2(holds(lines.at(0), {"POLL_RESPONSE", "d-17", ":", "A,C"}), qPrintable(lines.at(0)));
        QVERIFY2(
            holds(lines.at(1), {"[DEBUG] RECEIVED RESPONSE FROM DEVICE ", "d-17", " of value: ", "forty"}),
            qPrintable(lines.at(1)));
        QVERIFY2(holds(lines.at(2), {"Learner ", "d-17", " requesting question ", "31"}),
                 qPrintable(lines.at(2)));
    }

private:
    std::unique_ptr<LogRecorder> m_log;
    std::unique_ptr<CollaborationMessageHandler> m_handler;
    std::unique_ptr<QSignalSpy> m_answers;
    std::unique_ptr<QSignalSpy> m_requests;
};

QTEST_GUILESS_MAIN(tst_CollaborationMessageHandlerResponses)
#include "tst_CollaborationMessageHandlerResponses.moc"
