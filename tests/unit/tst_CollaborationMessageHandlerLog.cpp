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
        columns<QString, QList<QStringList>>();
        // For each line, how it begins and what it names.

        const QStringList any{QStringLiteral("[MessageHandler]"), QStringLiteral("\n")};
        const auto lines = [&any](const QList<QStringList>& more) { return QList<QStringList>{any} + more; };
        const QString action = QStringLiteral("[MessageHandler.ACTION]");
        const QString type = QStringLiteral("[MessageHandler.TYPE]");
        QTest::newRow("no JSON") << QStringLiteral("hello-there")
                                 << QList<QStringList>{
                                        {QStringLiteral("[MessageHandler]"), QStringLiteral("hello-there")}};
        QTest::newRow("nothing in the body") << QStringLiteral("{\"body\":{}}") << lines({});
        QTest::newRow("unknown action")
            << QStringLiteral("{\"body\":{\"action\":\"wave\",\"type\":\"join\"}}")
            << lines({{action, QStringLiteral("wave")}});
        QTest::newRow("learner leaves")
            << QStringLiteral(
                   "{\"body\":{\"action\":\"unregister\",\"client\":{\"token\":\"d-9\",\"type\":\"user\"}}}")
            << lines({{action, QStringLiteral("unregister")},
                      {QStringLiteral("UNREGISTER"), QStringLiteral("d-9")}});
        QTest::newRow("controller leaves")
            << QStringLiteral("{\"body\":{\"action\":\"unregister\",\"client\":{\"token\":\"c-9\",\"type\":"
                              "\"controller\"}}}")
            << lines({{action, QStringLiteral("unregister")},
                      {QStringLiteral("UNREGISTER CONTROLLER"), QStringLiteral("c-9")}});
        QTest::newRow("join") << QStringLiteral("{\"body\":{\"type\":\"join\",\"from\":\"d-9\"}}")
                              << lines({{type, QStringLiteral("join")},
                                        {QStringLiteral("JOIN"), QStringLiteral("d-9")}});
        QTest::newRow("unknown type")
            << QStringLiteral("{\"body\":{\"type\":\"chat\"}}") << lines({{type, QStringLiteral("chat")}});
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
        QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
        emit m_host->frame(QStringLiteral(R"({"body":{"type":"chat","data":5}})"));
        emit m_host->frame(QStringLiteral(R"({"body":{"type":"join","data":[1]}})"));
        emit m_host->frame(QStringLiteral(R"({"body":{"type":"pollResponse"}})"));
        emit m_host->frame(QStringLiteral(R"({"body":{"type":"questionResponse"}})"));
        emit m_host->frame(QStringLiteral(R"({"body":{"type":"questionGet"}})"));
        emit m_host->frame(QStringLiteral(R"({"body":{"action":"unregister","client":{"type":"user"}}})"));
        const QStringList whileOff = m_log->debug();
        QLoggingCategory::setFilterRules(QString());
        QCOMPARE(whileOff, QStringList());
        QCOMPARE(m_host->heard.size(), 6);
    }
};

QTEST_GUILESS_MAIN(tst_CollaborationMessageHandlerLog)
#include "tst_CollaborationMessageHandlerLog.moc"
