#include "commands/CommandTable.h"

#include <QSet>
#include <QTest>

namespace {

constexpr int wide = 200;

} // namespace

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
                                             << "session start, session resume";
        QTest::newRow("too few") << "card"
                                 << "Usage: card FILE";
        QTest::newRow("too many") << "poll pause now"
                                  << "Usage: poll pause";
        QTest::newRow("no number") << "deck go long"
                                   << "\"long\" is not a whole number";
        QTest::newRow("no time") << "pause long"
                                 << "\"long\" is not a number of seconds";
        QTest::newRow("negative") << "deck go -5"
                                  << "\"-5\" is not a whole number";
        QTest::newRow("too large a number") << "deck go 99999999999"
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
        const QString overview = CommandHelp::overview(wide).join(QLatin1Char('\n'));
        for (const CommandTable::Topic& topic : CommandTable::topics()) {
            const QStringList lines = CommandHelp::about(QLatin1String(topic.name), wide);
            for (const Command& command : topic.commands) {
                QVERIFY2(overview.contains(QLatin1String(command.name)), command.name);
                QVERIFY2(!lines.filter(QLatin1String(command.summary)).isEmpty(), command.name);
                QVERIFY2(CommandHelp::about(command.name, wide).contains(CommandTable::usage(command)),
                         command.name);
            }
        }
    }

    void helpExplainsFamilies()
    {
        const QStringList help = CommandHelp::about("session", wide);
        QVERIFY(help.contains(QStringLiteral("session start [within SECONDS]")));
        QVERIFY(help.contains(QStringLiteral("session stop")));
        QVERIFY(!CommandHelp::about("poll", wide).contains(QStringLiteral("poll pause")));
        QVERIFY(CommandHelp::about("dance", wide).isEmpty());
    }

    void helpFitsTheWindow_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("overview") << "";
        for (const CommandTable::Topic& topic : CommandTable::topics())
            QTest::newRow(topic.name) << topic.name;
        for (const Command& command : CommandTable::commands())
            QTest::newRow(command.name) << command.name;
    }

    void helpFitsTheWindow()
    {
        constexpr int rows = 23; // the prompt is the last
        QFETCH(QString, name);
        for (const int columns : {40, 79}) {
            const QStringList lines =
                name.isEmpty() ? CommandHelp::overview(columns) : CommandHelp::about(name, columns);
            for (const QString& line : lines)
                QVERIFY2(line.size() <= columns, qPrintable(line));
            QVERIFY2(columns < 79 || lines.size() <= rows, qPrintable(lines.join(QLatin1Char('\n'))));
        }
    }

    void secretsAreKnown()
    {
        for (const char* line : {"login ann chalk", "login token a d t", "token d n ann chalk", "check a b"})
            QVERIFY2(CommandTable::holdsSecret(line), line);
        for (const char* line : {"login ann", "poll text", "dance"})
            QVERIFY2(!CommandTable::holdsSecret(line), line);
    }
};

QTEST_APPLESS_MAIN(tst_CommandTable)
#include "tst_CommandTable.moc"
