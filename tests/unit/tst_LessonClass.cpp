// What a lesson brings to its class, and what it makes of what comes back.

#include "support/LessonClass.h"
#include "support/Rows.h"
#include "support/WallClock.h"

#include <CalyxClient/PresenterCollab>
#include <CalyxClient/RosterFilter>

#include <QElapsedTimer>
#include <QHostAddress>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QSignalSpy>
#include <QTest>

using namespace Calyx;
using namespace LessonClass;

using Play = std::function<void(Class&)>;
Q_DECLARE_METATYPE(Play)

namespace {

constexpr char UPLOAD[] = "/tavisto/resource/uploadResourceFile";
constexpr char STORED[] = R"({"data":{"resourceId":"r","resourcePath":"/files/r"}})";

constexpr char UNREGISTERED[] =
    R"({"success":true,"infoMsgKeys":["registration.success"],"data":{"mail":"a@school.example"}})";

Question marked(const QByteArray& picture = QByteArray())
{
    Question question = Question::usual(PollType::MULTIPLE);
    question.right = QStringList{QStringLiteral("B")};
    question.picture = picture;
    return question;
}

AssessmentPlan plan()
{
    AssessmentPlan plan;
    plan.questions = {marked(), Question::usual(PollType::TEXT)};
    return plan;
}

bool joins(Class& class_, const QString& device)
{
    class_.join(device);
    return waitFor([&] { return class_.lesson->roster()->isPresent(device); });
}

// Too large to travel in the message.
QByteArray large(int bytes = 70000)
{
    return QByteArray(bytes, 'p');
}

bool showsLarge(Class& class_, const QByteArray& png, const Answer& answer)
{
    Lesson* const lesson = class_.lesson.get();
    const QObject context;
    bool isShown = false;
    QList<bool> isBusy;
    QObject::connect(lesson, &Lesson::cardShown, &context, [&] { isShown = true; });
    QObject::connect(lesson, &Lesson::busyChanged, &context, [&] { isBusy.append(lesson->isBusy()); });
    class_.service.expect(UPLOAD, answer);
    lesson->deck()->add(QStringLiteral("card"), png);
    lesson->showCard();
    return waitFor([&] { return isShown && isBusy == QList<bool>{true, false}; });
}

} // namespace

class tst_LessonClass : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_class = std::make_unique<Class>();
        QVERIFY(m_class->start());
    }
    void cleanup()
    {
        if (m_class->lesson && m_class->lesson->state() != Lesson::LoggedOut)
            QVERIFY(m_class->end());
        m_class.reset();
    }

    void brings_data()
    {
        rows<Play, QStringList>({
            // Twice, by the same id, where the device has had it already: that nobody is left out counts
            // more.
            {"question to the late",
             [](Class& at) {
                 at.lesson->ask(marked());
                 QVERIFY(joins(at, "D3"));
             },
             {"questionStart T", "questionStart T.user.D3"}},
            {"countdown",
             [](Class& at) {
                 at.lesson->ask(marked());
                 at.lesson->stop(60);
                 QVERIFY(joins(at, "D3"));
                 at.lesson->stop();
             },
             {"questionStart T", "countdown T", "questionStart T.user.D3", "countdown T.user.D3",
              "pollStop T"}},
            {"pause, lock and card to the late",
             [](Class& at) {
                 at.lesson->ask(marked());
                 at.lesson->pause();
                 at.lesson->showPicture("png");
                 at.lesson->setLocked(true);
                 QVERIFY(joins(at, "D3"));
             },
             {"questionStart T", "pause T", "showCard T.learner", "dialogShow T", "questionStart T.user.D3",
              "pause T.user.D3", "showCard T.user.D3", "dialogShow T.user.D3"}},
            {"card at an address to the late",
             [](Class& at) {
                 at.lesson->showPictureAt("https://school.example/leaf.png");
                 QVERIFY(joins(at, "D3"));
             },
             {"showCard T.learner", "showCard T.user.D3"}},
            {"question in place of a card",
             [](Class& at) {
                 at.lesson->showPicture("png");
                 at.lesson->ask(marked());
                 QVERIFY(joins(at, "D3"));
             },
             {"showCard T.learner", "questionStart T", "questionStart T.user.D3"}},
            {"text for an id that would end the address",
             [](Class& at) { at.lesson->showText("Hello", "D\"1"); },
             {"dialogShow T.user.D\"1"}},
            {"results",
             [](Class& at) { at.lesson->showResults(at.lesson->ask(PollType::TEXT, {}, 0)); },
             {"questionStart T", "dialogShow T"}},
            {"marked results",
             [](Class& at) { at.lesson->showResults(at.lesson->ask(marked())); },
             {"questionStart T", "dialogShow T.user.D1", "dialogShow T.user.D2"}},
            {"assessment to the late",
             [](Class& at) {
                 at.lesson->startAssessment(plan());
                 QVERIFY(joins(at, "D3"));
                 QVERIFY(at.lesson->assessment()->takesPart("D3"));
             },
             {"assessmentStart T", "assessmentStart T.user.D3"}},
            {"assessment of some",
             [](Class& at) {
                 at.lesson->startAssessment(plan(), {"D1"});
                 at.lesson->admit("D2");
                 QVERIFY(joins(at, "D3"));
                 QCOMPARE(at.lesson->assessment()->participants(), (QStringList{"D1", "D2"}));
             },
             {"assessmentStart T.user.D1", "assessmentStart T.user.D2"}},
            {"card that is stored",
             [](Class& at) { QVERIFY(showsLarge(at, large(), Answer::json(STORED))); },
             {"showCard T.learner"}},
            {"card that cannot be stored",
             [](Class& at) { QVERIFY(showsLarge(at, large(), Answer::json("{}", 500))); },
             {"showCard T.learner"}},
            {"heavy card that cannot be stored",
             [](Class& at) { QVERIFY(showsLarge(at, large(400000), Answer::json("{}", 500))); },
             {"heavy T.learner", "showCard T.learner"}},
            {"question with a picture that is stored",
             [](Class& at) {
                 at.service.expect(UPLOAD, Answer::json(STORED));
                 at.lesson->ask(marked(large()));
                 at.lesson->pause();
                 QVERIFY(waitFor([&] { return !at.lesson->isBusy(); }));
             },
             {"questionStart T", "pause T"}},
            {"question with a picture that is not sent",
             [](Class& at) {
                 at.service.expect(UPLOAD, Answer::never());
                 at.lesson->ask(marked());
                 at.lesson->setLocked(true);
                 at.lesson->ask(marked(large()));
                 QVERIFY(waitFor([&] { return at.service.isUsedUp(); }));
                 at.lesson->cancel();
             },
             {"questionStart T", "dialogShow T", "pollStop T", "dialogShow T"}},
            {"question of an assessment for nobody",
             [](Class& at) {
                 at.lesson->startAssessment(plan());
                 at.hear(QString(), "questionGet", {{"questionNumber", 1}});
                 QVERIFY(joins(at, "D3"));
                 QCOMPARE(at.lesson->assessment()->participants(), (QStringList{"D1", "D2", "D3"}));
             },
             {"assessmentStart T", "assessmentStart T.user.D3"}},
        });
    }
    void brings()
    {
        const auto [play, published] = row<Play, QStringList>();
        m_class->published();
        play(*m_class);
        m_class->lesson->setName({}, {}); // told to the remote control
        QStringList types = m_class->published();
        if (m_class->lesson->deck()->rowCount() > 0) // that was told as well
            types += m_class->published();
        QCOMPARE(types, published);
    }

    // In the same second: no ids repeat. Texts stand in each.
    void asksAnyKindInWords()
    {
        m_class->published();
        QStringList ids;
        for (int type = PollType::TRUE_FALSE; type <= PollType::MATH_FORMULA; ++type) {
            Question question = Question::usual(PollType::POLL_TYPE(type));
            question.text = QStringLiteral("Why \"%1\"?");
            for (const QString& id : question.optionIds())
                question.options.append(QStringLiteral("option ") + id);
            ids.append(m_class->lesson->ask(question)->id());
        }
        m_class->lesson->setName({}, {});
        const Class::Published published = m_class->publishedWithData();
        QCOMPARE(published.data.size(), ids.size());
        for (int i = 0; i < ids.size(); ++i) {
            const QJsonObject& data = published.data.at(i);
            QCOMPARE(published.types.at(i), QStringLiteral("questionStart T"));
            QCOMPARE(data.value("id").toString(), ids.at(i));
            QCOMPARE(data.value("instructions").toString(), QStringLiteral("Why \"%1\"?"));
            const Question question = m_class->lesson->polls().at(i)->question();
            const QJsonArray options = data.value("activityOptions").toArray();
            QCOMPARE(options.size(), question.options.size());
            for (int k = 0; k < options.size(); ++k)
                QCOMPARE(options.at(k).toObject().value("optionText").toString(), question.options.at(k));
        }
        QCOMPARE(ids.removeDuplicates(), 0);
    }

    void asksInTheWordsOfAScheme()
    {
        using Row = std::pair<OrdinalType::ORDINAL_TYPE, QStringList>;
        m_class->published();
        for (const auto& [ordinal, sent] : {Row{OrdinalType::YES_NO_OTHER, {"YES", "NO", "DONTKNOW"}},
                                            Row{OrdinalType::YES_NO_MAYBE, {"Yes", "No", "Maybe"}},
                                            Row{OrdinalType::ALPHA_UPPER, {"", "", ""}}}) {
            m_class->lesson->ask(PollType::YES_NO_OTHER, ordinal, 3);
            m_class->lesson->setName({}, {});
            QStringList texts;
            const QJsonArray options =
                m_class->publishedWithData().data.value(0).value("activityOptions").toArray();
            for (const QJsonValue& option : options)
                texts.append(option.toObject().value("optionText").toString());
            QCOMPARE(texts, sent);
        }
    }

    void tellsHowAPollCameOut()
    {
        m_class->published();
        Poll* const poll = m_class->lesson->ask(marked());
        QVERIFY(poll->results()->mostFrequent().title().isEmpty());
        m_class->answer("D1", poll->id(), "B");
        m_class->answer("D2", poll->id(), "A");
        QVERIFY(waitFor([&] { return poll->answered() == 2; }));
        m_class->lesson->showResults();
        m_class->lesson->setName({}, {});
        QCOMPARE(poll->rightAnswers(), 1);
        QCOMPARE(poll->results()->mostFrequent().label, QStringLiteral("A")); // the first of two
        const QList<QJsonObject> data = m_class->publishedWithData().data.mid(1);
        QCOMPARE(data.size(), 2); // first those who are wrong
        QCOMPARE(data.at(0).value("text").toString(),
                 QStringLiteral("Your answer is not right.\nRight is: B.\nA: 1, B: 1, C: 0, D: 0"));
        QCOMPARE(data.at(1).value("text").toString(),
                 QStringLiteral("Your answer is right.\nA: 1, B: 1, C: 0, D: 0"));
        const QJsonObject results = data.at(1).value("results").toObject();
        QCOMPARE(results.value("text").toString(), QStringLiteral("Your answer is right."));
        const QJsonObject bar{{"title", "B"}, {"count", 1}, {"isCorrect", true}};
        QCOMPARE(results.value("bars").toArray().at(1).toObject(), bar);
        Question inWords = Question::usual(PollType::TRUE_FALSE);
        inWords.right = QStringList{"A"};
        m_class->lesson->showResults(m_class->lesson->ask(inWords));
        m_class->lesson->setName({}, {});
        QCOMPARE(m_class->publishedWithData().data.value(1).value("text").toString(),
                 QStringLiteral("Right is: True.\nTrue: 0, False: 0"));
    }

    void stopsByItself()
    {
        Poll* const poll = m_class->lesson->ask(marked());
        QVERIFY(!poll->stopsAt().isValid());
        m_class->lesson->pause();
        QCOMPARE(poll->statusText(), QStringLiteral("Multiple choice (paused): 0 of 2 answered"));
        m_class->lesson->resume();
        QCOMPARE(poll->statusText(), QStringLiteral("Multiple choice: 0 of 2 answered"));
        m_class->lesson->stop(60);
        QVERIFY(poll->isRunning() && poll->stopsAt() > poll->startedAt().addSecs(59));
        QVERIFY(poll->statusText().contains(poll->stopsAt().toString("('until' hh:mm:ss)")));
        m_class->lesson->stop(1);
        QVERIFY(poll->stopsAt() < poll->startedAt().addSecs(59));
        QVERIFY(waitFor([&] { return !poll->isRunning(); }));
        QVERIFY(!poll->stopsAt().isValid() && poll->elapsed() >= 1000);
        QCOMPARE(poll->statusText(), QStringLiteral("Multiple choice (over): 0 of 2 answered"));
        // A computer that sleeps holds the timers.
        const Poll* const slept = m_class->lesson->ask(marked());
        m_class->lesson->stop(60);
        WallClock::freeze();
        WallClock::advance(60);
        const bool isStopped = waitFor([&] { return !slept->isRunning(); });
        WallClock::release();
        QVERIFY(isStopped);
    }

    void learnersGetAnAddressOfTheirs_data()
    {
        columns<QString>();
        for (const char* host : {"0.0.0.0", "127.0.0.1", "localhost"})
            QTest::newRow(host) << QString(host);
    }
    // At "all addresses" nobody but this machine finds it, and loopback's are its own.
    void learnersGetAnAddressOfTheirs()
    {
        const auto [host] = row<QString>();
        beginAnew();
        QCOMPARE(m_class->lesson->joinHint(), QString());
        m_class->lesson->setServer(
            QUrl(QStringLiteral("http://%1:%2").arg(host).arg(m_class->service.serverPort())));
        QVERIFY(m_class->start());
        const QUrl address = m_class->lesson->joinAddress();
        QCOMPARE(address.port(), int(m_class->service.serverPort()));
        QVERIFY(address.host() == host || host == QLatin1String("0.0.0.0"));
        const QHostAddress shown(address.host());
        QVERIFY(shown != QHostAddress(QHostAddress::AnyIPv4));
        const bool isLoopback = shown.isLoopback() || address.host() == QLatin1String("localhost");
        QCOMPARE(m_class->lesson->joinHint().startsWith("Only this machine can reach that address"),
                 isLoopback);
    }

    void codesAreGrouped()
    {
        QCOMPARE(Lesson::grouped("559335"), QStringLiteral("559 335"));
        QCOMPARE(Lesson::grouped("5593"), QStringLiteral("559 3"));
        QCOMPARE(Lesson::grouped(""), QString());
    }

    void listsTheClassByName()
    {
        RosterFilter list(m_class->lesson->roster());
        const auto names = [&] {
            QStringList all;
            for (int row = 0; row < list.rowCount(); ++row)
                all.append(list.index(row, 0).data().toString());
            return all.join(' ');
        };
        m_class->hear("D0", "join", {{"userName", "aaron"}});
        QVERIFY(waitFor([&] { return list.rowCount() == 3; }));
        QCOMPARE(names(), QStringLiteral("aaron Ann Bea"));
        list.setOnlyMissing(true);
        m_class->lesson->ask(marked());
        QCOMPARE(names(), QStringLiteral("aaron Ann Bea"));
        m_class->answer("D1", m_class->lesson->poll()->id(), "A");
        QVERIFY(waitFor([&] { return names() == QStringLiteral("aaron Bea"); }));
        list.setOnlyMissing(false);
        QCOMPARE(list.index(1, 0).data(Qt::CheckStateRole).toInt(), int(Qt::Checked));
        QVERIFY(m_class->end());
        QCOMPARE(names(), QString());
    }

    void findsWhoIsHere()
    {
        const Roster* const roster = m_class->lesson->roster();
        QSignalSpy left(roster, &Roster::left);
        m_class->hear("D3", "join", {{"userName", "Annabel"}});
        m_class->leave("D2", "user", {});
        QVERIFY(waitFor([&] { return roster->isPresent("D3") && !roster->isPresent("D2"); }));
        QCOMPARE(left, QList<QVariantList>{{"D2"}});
        QCOMPARE(roster->find("ann"), QStringList("D1"));
        QCOMPARE(roster->find("AN"), (QStringList{"D1", "D3"}));
        QCOMPARE(roster->find("D3"), QStringList("D3"));
        QCOMPARE(roster->find("Bea"), QStringList());
        QList<bool> hasLeft;
        for (const QJsonValue& learner : roster->toJson())
            hasLeft.append(learner.toObject().value("here").toArray().last().toObject().contains("to"));
        QCOMPARE(hasLeft, (QList<bool>{false, true, false}));
    }

    // Also where nobody answers.
    void expectsWhoIsHere()
    {
        const QList<QObject*> asked = {m_class->lesson->ask(marked()),
                                       m_class->lesson->startAssessment(plan())};
        for (QObject* one : asked) {
            const QMetaObject* of = one->metaObject();
            QVERIFY(connect(one, of->property(of->indexOfProperty("expected")).notifySignal(), this,
                            metaObject()->method(metaObject()->indexOfSlot("note()"))));
        }
        m_class->join("D3");
        QVERIFY(waitFor([&] { return m_noted.value(asked.at(0)) == 3 && m_noted.value(asked.at(1)) == 3; }));
        m_class->leave("D1", "user", {});
        m_class->leave("D3", "user", {});
        QVERIFY(waitFor([&] { return m_noted.value(asked.at(0)) == 1 && m_noted.value(asked.at(1)) == 1; }));
    }

    // Also who was there before the lesson knew it.
    void assessesWhoIsThere()
    {
        beginAnew();
        m_class->begin(m_class->bus.url());
        const Assessment* const assessment = m_class->lesson->startAssessment(plan());
        m_class->expectUsers();
        QVERIFY(waitFor([&] { return m_class->lesson->state() == Lesson::Live; }));
        QCOMPARE(assessment->participants(), (QStringList{"D1", "D2"}));
        QCOMPARE(assessment->expected(), 2);
    }

    void counts_data()
    {
        const auto answers = [](const char* device, const QStringList& texts) {
            return Play([=](Class& at) {
                for (const QString& text : texts)
                    at.answer(device, at.lesson->poll()->id(), text);
            });
        };
        rows<Play, int, int, int>({
            // played before the poll is stopped; then answered, present, late
            {"an answer", answers("D1", {"A"}), 1, 2, 0},
            {"the same again", answers("D1", {"A", "A"}), 1, 2, 0},
            {"another one", answers("D1", {"A", "B"}), 1, 2, 0},
            {"a late one",
             [](Class& at) {
                 at.lesson->stop();
                 at.answer("D1", at.lesson->poll()->id(), "A");
             },
             1, 2, 1},
            {"one for a poll before",
             [](Class& at) {
                 const QString id = at.lesson->poll()->id();
                 at.lesson->ask(marked());
                 at.answer("D1", id, "A");
             },
             1, 2, 1},
            // Whoever answers is here: his joining may have been missed.
            {"from nobody who has joined", answers("D3", {"A"}), 1, 3, 0},
            {"from nobody, to nothing that was asked", [](Class& at) { at.answer("D3", "?", "A"); }, 0, 2, 0},
        });
    }
    void counts()
    {
        const auto [play, answered, present, late] = row<Play, int, int, int>();
        Poll* const poll = m_class->lesson->ask(marked());
        play(*m_class);
        QVERIFY(joins(*m_class, "D9")); // all before it has been heard
        QCOMPARE(poll->answered(), answered);
        QCOMPARE(m_class->lesson->roster()->presentCount(), present + 1);
        int isLate = 0;
        int rows = 0;
        for (const PollAnswer& answer : poll->answers())
            isLate += int(answer.isLate);
        for (const PollResults::Row& row : poll->results()->rows())
            rows += row.count;
        QCOMPARE(isLate, late);
        QCOMPARE(rows, answered);
    }

    void countsWhatIsPicked_data()
    {
        rows<int, QString, QString>({
            {"options", PollType::MULTIPLE, "C,A", "A 1, B 0, C 1, D 0"},
            {"an order", PollType::SORT, "C,A", "C,A 1"},
            {"words", PollType::TEXT, "C,A", "C,A 1"},
        });
    }
    void countsWhatIsPicked()
    {
        const auto [type, answer, counted] = row<int, QString, QString>();
        const Poll* const poll = m_class->lesson->ask(Question::usual(PollType::POLL_TYPE(type)));
        m_class->answer("D1", poll->id(), answer);
        QVERIFY(waitFor([&] { return poll->answered() == 1; }));
        QStringList rows;
        for (const PollResults::Row& row : poll->results()->rows())
            rows.append(QStringLiteral("%1 %2").arg(row.label).arg(row.count));
        QCOMPARE(rows.join(", "), counted);
        QVERIFY(waitFor([&] { return poll->elapsed() > 0; }));
    }

    void foldsWhatIsTooMuch()
    {
        const Poll* const poll = m_class->lesson->ask(Question::usual(PollType::TEXT));
        for (const char* device : {"D1", "D2", "D3", "D4"})
            m_class->answer(device, poll->id(), QStringLiteral("leaf of ") + device);
        QVERIFY(waitFor([&] { return poll->answered() == 4; }));
        const auto bars = [&](int most) {
            QStringList all;
            for (const PollResults::Row& row : poll->results()->rows(most))
                all.append(QStringLiteral("%1: %2, %3").arg(row.label).arg(row.count).arg(row.share));
            return all.join("; ");
        };
        QCOMPARE(bars(3), QStringLiteral("leaf of D1: 1, 0.25; leaf of D2: 1, 0.25; Others: 2, 0.5"));
        QVERIFY(bars(4).endsWith("leaf of D4: 1, 0.25"));
    }

    void marks_data()
    {
        const auto sheets = [](const QByteArray& ann, const QByteArray& bea) {
            return "Learner,Device,Right,1,1 right,2,2 right\r\nAnn,D1," + ann + "\r\nBea,D2," + bea + "\r\n";
        };
        // Device, question and answer; then the table, and how many have finished, have the first, have it
        // right.
        rows<bool, QStringList, QByteArray, QList<int>>({
            {"nothing", true, {}, sheets("0,,,,", "0,,,,"), {0, 0, 0}},
            {"right, wrong, unmarked",
             true,
             {"D1 1 B", "D2 1 A", "D1 2 =leaf,\"1\""},
             sheets("1,B,yes,\"'=leaf,\"\"1\"\"\",", "0,A,no,,"),
             {1, 2, 1}},
            {"another", true, {"D1 1 B", "D1 2 leaf", "D1 1 A"}, sheets("0,A,no,leaf,", "0,,,,"), {1, 1, 0}},
            {"a better one", true, {"D1 1 A", "D1 1 B"}, sheets("1,B,yes,,", "0,,,,"), {0, 1, 1}},
            {"only the first counts", false, {"D1 1 B", "D1 1 A"}, sheets("1,B,yes,,", "0,,,,"), {0, 1, 1}},
            {"from nobody who takes part", true, {"D3 1 B"}, sheets("0,,,,", "0,,,,"), {0, 0, 0}},
        });
    }
    void marks()
    {
        const auto [mayResubmit, answers, table, counts] = row<bool, QStringList, QByteArray, QList<int>>();
        m_class->published();
        AssessmentPlan asked = plan();
        asked.mayResubmit = mayResubmit;
        const Assessment* const assessment = m_class->lesson->startAssessment(asked, {"D1", "D2"});
        for (const int number : {1, 2})
            m_class->hear("D1", "questionGet",
                          {{"questionNumber", number}, {"assessmentToken", assessment->token()}});
        QVERIFY(joins(*m_class, "D8"));
        m_class->lesson->setName({}, {});
        QStringList ids;
        for (const QJsonObject& data : m_class->publishedWithData().data) {
            if (data.contains("questionNumber"))
                ids.append(data.value("id").toString());
        }
        int seen = 0; // of those who have answered the first
        connect(assessment, &Assessment::changed, this, [&] { seen = assessment->answeredBy(1); });
        for (const QString& given : answers) {
            const QStringList words = given.split(' ');
            m_class->answer(words.at(0), ids.value(words.at(1).toInt() - 1), words.at(2));
        }
        QVERIFY(waitFor([&] { return seen == counts.at(1); }));
        QVERIFY(joins(*m_class, "D9")); // all before it has been heard
        QCOMPARE(assessment->toCsv().toUtf8(), table);
        const auto cell = [&](int column) { return assessment->index(0, column).data().toString(); };
        const auto title = [&](int column) {
            return assessment->headerData(column, Qt::Horizontal).toString();
        };
        QCOMPARE(title(Assessment::Name) + '=' + cell(Assessment::Name), QStringLiteral("Learner=Ann"));
        QCOMPARE(title(Assessment::Score) + '=' + cell(Assessment::Score),
                 QStringLiteral("Right=%1 of 1").arg(assessment->rightAnswers("D1")));
        QCOMPARE(title(Assessment::FirstQuestion) + '=' + cell(Assessment::FirstQuestion),
                 QStringLiteral("1=") + assessment->answer("D1", 1).text);
        QVERIFY(waitFor([&] { return assessment->elapsed() > 0; }));
        QStringList states;
        connect(assessment, &Assessment::stateChanged, this, [&] {
            states.append(assessment->isPaused() ? "held" : assessment->isRunning() ? "runs" : "over");
        });
        m_class->lesson->pause();
        m_class->lesson->pause();
        m_class->lesson->resume();
        m_class->lesson->stopAssessment();
        QCOMPARE(states, (QStringList{"held", "runs", "over"}));
        QVERIFY(assessment->elapsed() > 0);
        QCOMPARE((QList<int>{assessment->finished(), assessment->answeredBy(1), assessment->rightBy(1)}),
                 counts);
    }

    void obeysTheRemoteControl_data()
    {
        const auto hasCards = [](Lesson& lesson) {
            lesson.deck()->add("one", QByteArray("png"));
            lesson.deck()->add("two", QByteArray("png"));
        };
        const auto asks = [](Lesson& lesson) { lesson.ask(marked()); };
        const auto none = [](Lesson&) {};
        const auto isPaused = [](Lesson& lesson) { QVERIFY(lesson.poll()->isPaused()); };
        const auto isLocked = [](Lesson& lesson) { QVERIFY(lesson.isLocked()); };
        const auto at = [](int card) {
            return Work([card](Lesson& lesson) { QCOMPARE(lesson.deck()->current(), card); });
        };
        rows<QString, int, bool, Work, Work>({
            {"is there", "presenterActive", Lesson::AskPresence, true, none, none},
            {"which lesson", "requestLessonInfo", Lesson::AskLesson, true, none, none},
            {"which card", "requestLesson", Lesson::AskCards, true, none, none},
            {"pause", "pause", Lesson::Pause, true, asks, isPaused},
            {"pause of nothing", "pause", Lesson::Pause, false, none, none},
            {"pause that the host has taken over", "pause", Lesson::Pause, false,
             [asks](Lesson& lesson) {
                 lesson.setObeys(Lesson::Pause, false);
                 asks(lesson);
             },
             [](Lesson& lesson) { QVERIFY(!lesson.poll()->isPaused()); }},
            {"resume", "resume", Lesson::Resume, true, asks, none},
            {"lock", "lockAll", Lesson::Lock, true, none, isLocked},
            {"unlock", "unlockAll", Lesson::Unlock, true, none, none},
            {"next", "nextCard", Lesson::NextCard, true, hasCards, at(2)},
            {"next without", "nextCard", Lesson::NextCard, false, none, at(0)},
            {"previous at the first", "previousCard", Lesson::PreviousCard, false, hasCards, at(1)},
            {"show", "pushCurrentCard", Lesson::ShowCard, true, hasCards, none},
            {"show without", "pushCurrentCard", Lesson::ShowCard, false, none, none},
            {"add", "addImageCard", Lesson::AddCard, true, none,
             [](Lesson& lesson) {
                 QCOMPARE(lesson.deck()->current(), 1);
                 QCOMPARE(lesson.deck()->url(1), QStringLiteral("https://school.example/b%27s.png"));
                 QVERIFY(lesson.deck()->add("data", QStringLiteral("data:image/png;base64,cG5n")));
                 QCOMPARE(lesson.deck()->index(1, 0).data(Deck::PictureRole).toByteArray(),
                          QByteArray("png"));
             }},
        });
    }
    void obeysTheRemoteControl()
    {
        const auto [type, command, isObeyed, before, after] = row<QString, int, bool, Work, Work>();
        before(*m_class->lesson);
        int heard = -1;
        bool wasObeyed = false;
        connect(m_class->lesson.get(), &Lesson::remoteCommand, this,
                [&](Lesson::RemoteCommand one, bool obeyed) {
                    heard = one;
                    wasObeyed = obeyed;
                });
        m_class->expectRemote();
        m_class->hear("R", type, {{"name", "card"}, {"url", "https://school.example/b's.png"}});
        QVERIFY(waitFor([&] { return heard >= 0; }));
        QCOMPARE(heard, command);
        QCOMPARE(wasObeyed, isObeyed);
        QVERIFY(m_class->lesson->isRemotePresent());
        QVERIFY(!Lesson::commandName(Lesson::RemoteCommand(command)).isEmpty());
        after(*m_class->lesson);
    }

    void obeysNoOtherDevice()
    {
        m_class->expectUsers();
        m_class->hear("D1", "lockAll", {});
        QVERIFY(waitFor([&] { return m_class->service.isUsedUp(); }));
        bool isLookedInto = false;
        m_class->lesson->onClient([&](PresenterClient*) { // in turn with what looks who it was
            QMetaObject::invokeMethod(m_class->lesson.get(), [&] { isLookedInto = true; });
        });
        QVERIFY(waitFor([&] { return isLookedInto; }));
        QVERIFY(!m_class->lesson->isRemotePresent() && !m_class->lesson->isLocked());
    }

    void asksAgainWhoARemoteControlIs()
    {
        m_class->service.expect("/tavisto/session/getusers", Answer::json("{}", 500));
        m_class->hear("R", "lockAll", {});
        QVERIFY(waitFor([&] { return m_class->service.isUsedUp(); }));
        QVERIFY(joins(*m_class, "D3"));
        m_class->expectRemote();
        m_class->hear("R", "lockAll", {});
        QVERIFY(waitFor([&] { return m_class->lesson->isLocked(); }));
    }

    // The bus, or the device itself, says who is gone, and no learner says it of another.
    void nobodyIsReportedByALearner()
    {
        const Roster* roster = m_class->lesson->roster();
        m_class->expectRemote();
        m_class->hear("R", "lockAll", {});
        QVERIFY(waitFor([&] { return m_class->lesson->isRemotePresent(); }));
        m_class->leave("D1", "user", "D2");
        m_class->leave("R", "controller", "D2");
        m_class->leave("D2", "user", "D2");
        QVERIFY(waitFor([&] { return !roster->isPresent("D2"); }));
        QVERIFY(roster->isPresent("D1") && m_class->lesson->isRemotePresent());
        m_class->leave("R", "controller", {});
        m_class->leave("D1", "user", {});
        QVERIFY(waitFor([&] { return !roster->isPresent("D1") && !m_class->lesson->isRemotePresent(); }));
    }

    void diesInEverySlot_data()
    {
        const Play commands = [](Class& at) {
            at.expectRemote();
            at.hear("R", "nextCard", {});
        };
        rows<QByteArray, Play>({
            // The other signals are played in a whole lesson, at the local classroom.
            {"remote control comes", "remotePresentChanged()", commands},
            {"it commands", "remoteCommand(Calyx::Lesson::RemoteCommand,bool,QVariant)", commands},
            {"it shows a card", "cardShown(int)",
             [](Class& at) {
                 at.lesson->deck()->add("one", QByteArray("png"));
                 at.expectRemote();
                 at.hear("R", "pushCurrentCard", {});
             }},
            {"a message that nobody knows", "messageReceived(QString,QString,QVariant)",
             [](Class& at) { at.hear("D1", "hello", {}); }},
            {"somebody has to register", "registrationNeeded(QString)",
             [](Class& at) {
                 at.service.expect("/tavisto/session/stop", Answer::json(FINE));
                 at.service.expect(Logins::LOGOUT, Answer::json(FINE));
                 at.service.expect(PROBE, Answer::json(FINE));
                 at.service.expect(Logins::CALLBACK, Answer::json(UNREGISTERED));
                 at.service.expect(PROBE, Answer::json(FINE)); // no key says what was wrong
                 at.lesson->logInWithOAuth("google", "code");
             }},
        });
    }
    void diesInEverySlot()
    {
        const auto [signal, play] = row<QByteArray, Play>();
        const QMetaObject& of = Lesson::staticMetaObject;
        QVERIFY(connect(m_class->lesson.get(), of.method(of.indexOfSignal(signal.constData())), this,
                        metaObject()->method(metaObject()->indexOfSlot("die()"))));
        play(*m_class);
        QVERIFY(waitFor([&] { return !m_class->lesson; }));
        m_class->service.expectNoMore();
    }

    // Each poll that ends asks for the next, in the middle of the host's own ask().
    void asksInSlots()
    {
        m_class->published();
        Lesson& lesson = *m_class->lesson;
        const auto asksNext = [&] {
            if (lesson.polls().size() < 4)
                lesson.ask(marked());
        };
        connect(lesson.ask(marked()), &Poll::stateChanged, this, asksNext);
        Poll* const second = lesson.ask(marked());
        QCOMPARE(lesson.polls().size(), 3);
        QVERIFY(!second->isRunning());
        QCOMPARE(lesson.poll(), lesson.polls().last());
        QVERIFY(lesson.poll()->isRunning());
        connect(lesson.poll(), &Poll::stateChanged, this, asksNext);
        lesson.end(); // there, nothing more can be asked
        QCOMPARE(lesson.polls().size(), 3);
        QVERIFY(!lesson.poll()->isRunning());
        m_class->service.expect("/tavisto/session/stop", Answer::json(FINE));
        QVERIFY(waitFor([&] { return lesson.state() == Lesson::LoggedIn; }));
        logOut();
    }

    // What was answered in the same turn can be gone once the first of it has been told.
    void clearsInSlots()
    {
        Lesson& lesson = *m_class->lesson;
        const QStringList ids = {lesson.ask(marked())->id(), lesson.ask(marked())->id()};
        lesson.stop();
        connect(&lesson, &Lesson::answersChanged, this, [&] {
            lesson.clearPolls();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        });
        for (const QString& id : ids)
            m_class->answer("D1", id, "A");
        QVERIFY(waitFor([&] { return lesson.polls().isEmpty(); }));
        QCOMPARE(lesson.ask(marked())->number(), 3);
    }

    void endsInSlots_data()
    {
        rows<Play>({
            {"while the list of learners comes",
             [](Class& at) {
                 connect(at.lesson->roster(), &Roster::joined, [&at] { at.lesson->end(); });
                 at.begin(at.bus.url());
                 at.expectUsers();
             }},
            {"while a learner is taken into an assessment",
             [](Class& at) {
                 QVERIFY(at.start());
                 const Assessment* const assessment = at.lesson->startAssessment(plan());
                 connect(assessment, &Assessment::rowsInserted, [&at] {
                     at.lesson->end();
                     at.lesson->start(); // forgets the assessment
                     at.lesson->end();
                 });
                 at.hear("D3", "questionGet",
                         {{"questionNumber", 1}, {"assessmentToken", assessment->token()}});
             }},
            {"while somebody gets a row",
             [](Class& at) {
                 QVERIFY(at.start());
                 connect(at.lesson->roster(), &Roster::rowsInserted, [&at] {
                     at.lesson->end();
                     at.lesson->start(); // forgets the class
                     at.lesson->end();
                 });
                 at.join("D3");
             }},
            {"while somebody joins",
             [](Class& at) {
                 QVERIFY(at.start());
                 at.lesson->onChannel([](PresenterCollab* collab) {
                     Q_EMIT collab->learnerJoin(Learner("D3", "Cem", QString()));
                 });
                 at.lesson->end();
             }},
            {"while it is given up",
             [](Class& at) {
                 QVERIFY(at.start());
                 at.lesson->setReconnects(false);
                 at.bus.dropConnections();
                 QVERIFY(waitFor([&] { return at.lesson->state() == Lesson::Reconnecting; }));
                 connect(at.lesson->roster(), &Roster::left, [&at](const QString& device) {
                     if (device == "D1")
                         at.lesson->end();
                 });
                 at.lesson->cancel();
                 QCOMPARE(at.lesson->state(), Lesson::Ending);
             }},
        });
    }
    void endsInSlots()
    {
        const auto [play] = row<Play>();
        beginAnew();
        play(*m_class);
        m_class->service.expect("/tavisto/session/stop", Answer::json(FINE));
        QVERIFY(waitFor([&] { return m_class->service.isUsedUp(); }));
        QVERIFY(waitFor([&] { return m_class->lesson->state() == Lesson::LoggedIn; }));
        QCOMPARE(m_class->lesson->roster()->presentCount(), 0);
        logOut();
    }

    void uploadsAreCancelled_data()
    {
        rows<Work>({{"card", [](Lesson& lesson) { lesson.showPicture(large()); }},
                    {"question", [](Lesson& lesson) { lesson.ask(marked(large())); }}});
    }
    void uploadsAreCancelled()
    {
        const auto [show] = row<Work>();
        m_class->service.expect(UPLOAD, Answer::never());
        LessonError error;
        connect(m_class->lesson.get(), &Lesson::failed, this, [&](const LessonError& one) { error = one; });
        bool isShown = false;
        connect(m_class->lesson.get(), &Lesson::cardShown, this, [&] { isShown = true; });
        show(*m_class->lesson);
        QVERIFY(waitFor([&] { return m_class->service.isUsedUp(); }));
        QElapsedTimer clock;
        clock.start();
        m_class->lesson->cancel();
        QVERIFY(!m_class->lesson->isBusy() && clock.elapsed() < 100);
        QCOMPARE(error.kind, LessonError::Cancelled);
        QVERIFY(waitFor([&] { return m_class->service.abandoned() == 1; }));
        QCOMPARE(m_class->lesson->state(), Lesson::Live);
        QVERIFY(!m_class->lesson->poll() || !m_class->lesson->poll()->isRunning());
        QVERIFY(joins(*m_class, "D3")); // the lesson goes on
        QVERIFY(m_class->end());
        QVERIFY(!isShown);
    }

    void whatIsTooLargeIsRefused()
    {
        QList<LessonError::Kind> kinds;
        connect(m_class->lesson.get(), &Lesson::failed, this,
                [&](const LessonError& error) { kinds.append(error.kind); });
        AssessmentPlan asked = plan();
        asked.questions.last().picture = large(17'000'000);
        QVERIFY(!m_class->lesson->ask(asked.questions.last()));
        QVERIFY(!m_class->lesson->startAssessment(asked));
        m_class->lesson->showPicture(asked.questions.last().picture);
        QCOMPARE(kinds, QList<LessonError::Kind>(
                            {LessonError::TooLarge, LessonError::TooLarge, LessonError::TooLarge}));
    }

public Q_SLOTS:
    void die() { m_class->lesson.reset(); }
    void note() { m_noted[sender()] = sender()->property("expected").toInt(); }

private:
    // With a class that has not started.
    void beginAnew()
    {
        cleanup();
        m_class = std::make_unique<Class>();
    }

    void logOut()
    {
        m_class->service.expect(Logins::LOGOUT, Answer::json(FINE));
        m_class->lesson->logOut();
        QVERIFY(waitFor([&] { return m_class->lesson->state() == Lesson::LoggedOut; }));
    }

    std::unique_ptr<Class> m_class;
    QHash<QObject*, int> m_noted;
};

QTEST_GUILESS_MAIN(tst_LessonClass)
#include "tst_LessonClass.moc"
