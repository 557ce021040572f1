// What each frame writes to the log.

#include "support/MessageHandlerTest.h"
#include "support/Rows.h"

#include <QLoggingCategory>
#include <QTest>

class tst_CollaborationMessageHandlerLog : public MessageHandlerTest
{
    Q_OBJECT

private Q_SLOTS:
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
};

QTEST_GUILESS_MAIN(tst_CollaborationMessageHandlerLog)
#include "tst_CollaborationMessageHandlerLog.moc"
