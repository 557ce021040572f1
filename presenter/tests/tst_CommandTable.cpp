#include "commands/CommandTable.h"

#include <QSet>
#include <QTest>

class tst_CommandTable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyRowIsWhole()
    {
        QSet<QString> names;
        for (const Command& command : CommandTable::commands()) {
            const QString name = QLatin1String(command.name);
            QVERIFY2(command.run, command.name);
            QVERIFY2(!QString(QLatin1String(command.summary)).isEmpty(), command.name);
            QVERIFY2(command.most < 0 || command.least <= command.most, command.name);
            QVERIFY2(name == name.toLower() && name.count(QLatin1Char(' ')) <= 1, command.name);
            QVERIFY2(!names.contains(name), command.name);
            names.insert(name);
            const int places = 3;
            for (int i = 0; i < places; ++i) {
                const bool isKeyword = CommandTable::place(command, i) == Place::Keyword;
                QVERIFY2(!isKeyword || !CommandTable::keywords(command).isEmpty(), command.name);
            }
        }
    }

    void linesAreMatched_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("one word") << "poll text"
                                  << "poll" << QStringList{"text"};
        QTest::newRow("two words") << "poll stop"
                                   << "poll stop" << QStringList{};
        QTest::newRow("case") << "  Session  START within 5"
                              << "session start" << QStringList{"within", "5"};
        QTest::newRow("quoted") << "card \"my leaf.png\""
                                << "card" << QStringList{"my leaf.png"};
        QTest::newRow("text") << "say It's \"so\" #1"
                              << "say" << QStringList{"It's \"so\" #1"};
        QTest::newRow("text with an open quotation") << "heading \"a"
                                                     << "heading" << QStringList{"\"a"};
        QTest::newRow("empty text") << "say"
                                    << "say" << QStringList{};
        QTest::newRow("a keyword in its place") << "wait answers all within 5"
                                                << "wait answers" << QStringList{"all", "within", "5"};
    }

    void linesAreMatched()
    {
        QFETCH(QString, line);
        const CommandTable::Match match = CommandTable::match(line);
        QCOMPARE(match.fault, QString());
        QVERIFY(match.command);
        QTEST(QString(QLatin1String(match.command->name)), "name");
        QTEST(match.arguments, "arguments");
    }

    void faultsSayWhatToDo_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("part");
        QTest::newRow("mistyped") << "pol text"
                                  << "Did you mean poll?";
        QTest::newRow("unknown") << "dance"
                                 << "\"help\" lists all";
        QTest::newRow("second word mistyped") << "session strat"
                                              << "Did you mean session start";
        QTest::newRow("second word missing") << "session"
                                             << "session start, session create";
        QTest::newRow("too few") << "card"
                                 << "Usage: card FILE";
        QTest::newRow("too many") << "poll stop now"
                                  << "Usage: poll stop";
        QTest::newRow("no number") << "pause long"
                                   << "\"long\" is not a whole number";
        QTest::newRow("negative") << "pause -5"
                                  << "\"-5\" is not a whole number";
        QTest::newRow("too large a number") << "pause 99999999999"
                                            << "is not a whole number";
        QTest::newRow("no amount") << "wait answers some"
                                   << "neither a whole number nor \"all\"";
        QTest::newRow("keyword") << "wait learners 5 whitin 3"
                                 << "Did you mean within?";
        QTest::newRow("poll type") << "poll mutiple"
                                   << "Did you mean multiple?";
        QTest::newRow("question type") << "assessment question essay"
                                       << "no poll type \"essay\"";
        QTest::newRow("setting") << "set colour on"
                                 << "\"colour\" is not understood";
        QTest::newRow("quotation") << "card \"a"
                                   << "has no end";
        QTest::newRow("control characters") << "\033[2Jx"
                                            << "There is no command \"[2Jx\"";
    }

    void faultsSayWhatToDo()
    {
        QFETCH(QString, line);
        QFETCH(QString, part);
        const QString fault = CommandTable::match(line).fault;
        QVERIFY2(fault.contains(part), qPrintable(fault));
    }

    void helpKnowsAllCommands()
    {
        const QString overview = CommandTable::overview().join(QLatin1Char('\n'));
        for (const Command& command : CommandTable::commands()) {
            const QString name = QLatin1String(command.name);
            QVERIFY2(overview.contains(QStringLiteral("  ") + name), command.name);
            QVERIFY2(CommandTable::help(name).contains(CommandTable::usage(command)), command.name);
        }
    }

    void helpExplainsFamilies()
    {
        const QStringList help = CommandTable::help("session");
        QVERIFY(help.contains(QStringLiteral("session start [within SECONDS]")));
        QVERIFY(help.contains(QStringLiteral("session stop")));
        QVERIFY(!CommandTable::help("poll stop").contains(QStringLiteral("poll pause")));
        QVERIFY(CommandTable::help("dance").isEmpty());
    }

    void helpFitsATerminal()
    {
        QStringList lines = CommandTable::overview();
        for (const Command& command : CommandTable::commands())
            lines += CommandTable::help(QLatin1String(command.name));
        for (const QString& line : qAsConst(lines))
            QVERIFY2(line.size() <= 100, qPrintable(line));
    }
};

QTEST_APPLESS_MAIN(tst_CommandTable)
#include "tst_CommandTable.moc"
