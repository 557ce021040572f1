#include "support/Rows.h"
#include <CalyxClient/Question>

#include <QTest>

#include <algorithm>

using namespace Calyx;

namespace {

Question withTexts(PollType::POLL_TYPE type, const QStringList& texts)
{
    Question question = Question::usual(type);
    question.options = texts;
    return question;
}

} // namespace

class tst_Question : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void optionsAreNamedAndShown_data()
    {
        using Texts = QStringList;
        constexpr auto& of = Question::of;
        rows<Question, Texts, Texts>({
            {"letters",
             of(PollType::MULTIPLE, OrdinalType::ALPHA_LOWER, 3),
             {"a", "b", "c"},
             {"a", "b", "c"}},
            {"maybe",
             of(PollType::MULTIPLE, OrdinalType::YES_NO_MAYBE, 3),
             {"A", "B", "?"},
             {"Yes", "No", "Maybe"}},
            {"one other",
             of(PollType::YES_NO_OTHER, OrdinalType::YES_NO_OTHER, 5),
             {"A", "B", "?"},
             {"Yes", "No", "Other"}},
            {"picks", of(PollType::WORD_SEED, OrdinalType::ALPHA_UPPER, 2), {"0", "1"}, {"A", "B"}},
            {"free", of(PollType::TEXT, OrdinalType::GENERIC, 3), Texts(), Texts()},
        });
    }
    void optionsAreNamedAndShown()
    {
        const auto [question, ids, labels] = row<Question, QStringList, QStringList>();
        QCOMPARE(question.optionIds(), ids);
        QCOMPARE(question.optionLabels(), labels);
    }

    void faults_data()
    {
        columns<Question, bool>();
        for (int type = PollType::TRUE_FALSE; type <= PollType::MATH_FORMULA; ++type)
            QTest::addRow("usual %d", type) << Question::usual(PollType::POLL_TYPE(type)) << false;
        const auto row = [](const char* name, Question question, const QStringList& right, bool isFaulty) {
            question.right = right;
            QTest::newRow(name) << question << isFaulty;
        };
        row("no options", Question::of(PollType::MULTIPLE, OrdinalType::ALPHA_UPPER, 0), {}, true);
        row("all letters", Question::of(PollType::MULTIPLE, OrdinalType::ALPHA_UPPER, 26), {}, false);
        row("no such letter", Question::of(PollType::MULTIPLE, OrdinalType::ALPHA_UPPER, 27), {}, true);
        row("options of a text", Question::of(PollType::TEXT, OrdinalType::GENERIC, 1), {}, true);
        row("decimals", Question::of(PollType::NUMBER, OrdinalType::NUMBER, 11), {}, true);
        row("right", Question::usual(PollType::MULTIPLE), {"AC", "B"}, false);
        row("right by text", withTexts(PollType::MULTIPLE, {"Oxygen", "Carbon"}), {"Carbon"}, false);
        row("right by text with a comma", withTexts(PollType::MULTIPLE, {"Oxygen", "Carbon, soot"}),
            {"Carbon, soot"}, false);
        row("right is no option", Question::usual(PollType::MULTIPLE), {"E"}, true);
        row("right twice", Question::usual(PollType::MULTIPLE), {"AA"}, true);
        row("a whole order", Question::usual(PollType::SORT), {"BACD"}, false);
        row("half an order", Question::usual(PollType::SORT), {"BA"}, true);
        row("right is no number", Question::usual(PollType::NUMBER), {"many"}, true);
        row("right is nothing", Question::usual(PollType::TEXT), {" "}, true);
    }
    void faults()
    {
        const auto [question, isFaulty] = row<Question, bool>();
        QCOMPARE(!question.fault().isEmpty(), isFaulty);
    }

    void equalAnswersHaveEqualForms_data()
    {
        columns<Question, QString, QString, bool>();
        const auto row = [](PollType::POLL_TYPE type, const char* one, const char* other, bool areEqual) {
            QTest::addRow("%d %s %s", type, one, other)
                << Question::usual(type) << QString::fromUtf8(one) << QString::fromUtf8(other) << areEqual;
        };
        row(PollType::TEXT, " The  leaf. ", "the leaf!", true);
        row(PollType::TEXT, "LEAF", "leaf\u2026", true);
        row(PollType::TEXT, "cafe\u0301", "caf\u00e9", true);
        row(PollType::TEXT, "?", "!", false);
        row(PollType::TEXT, "leaf", "leaves", false);
        row(PollType::NUMBER, "1,50", "1.5", true);
        row(PollType::NUMBER, "1.5", "15", false);
        row(PollType::MULTIPLE, "CA", "A,C", true);
        row(PollType::MULTIPLE, "A, C", "AC", true);
        row(PollType::SORT, "ABCD", "DCBA", false);
        row(PollType::MATH_FORMULA, "x + y", "x+y", true);
        row(PollType::MATH_FORMULA, "x", "X", false);
        row(PollType::TRUE_FALSE, "TRUE", "A", true);
    }
    void equalAnswersHaveEqualForms()
    {
        auto [question, one, other, areEqual] = row<Question, QString, QString, bool>();
        QCOMPARE(question.formOf(one) == question.formOf(other), areEqual);
        question.right = QStringList{one};
        QCOMPARE(question.isRight(other), areEqual);
    }

    void longIdsAreTakenFirst()
    {
        const Question question = Question::of(PollType::SCALE, OrdinalType::NUMBER, 12);
        QCOMPARE(question.picksOf("112"), (QStringList{"11", "2"}));
        QCOMPARE(question.picksOf("1,12"), (QStringList{"1", "1", "2"}));
        QCOMPARE(question.picksOf("1x"), QStringList());
        QCOMPARE(question.picksOf("1,"), QStringList());
    }

    void menusListEachKindOnce()
    {
        QVector<PollType::POLL_TYPE> kinds = Question::kinds();
        std::sort(kinds.begin(), kinds.end());
        QCOMPARE(kinds.toList(), PollType::POLL_TYPE_STR().keys());
    }

    void isAMap()
    {
        Question question = withTexts(PollType::MULTIPLE, {"Oxygen", "Carbon dioxide"});
        question.text = "Which gas?";
        question.right = QStringList{"B"};
        const Question read = Question::fromMap(question.toMap());
        QCOMPARE(read.toMap(), question.toMap());
        QCOMPARE(read.optionIds(), (QStringList{"A", "B"}));
        QCOMPARE(Question::fromMap({}).type, PollType::TEXT);
        QCOMPARE(Question::fromMap({{QStringLiteral("kind"), 2.0}}).type,
                 PollType::MULTIPLE); // as QML gives it
    }
};

QTEST_GUILESS_MAIN(tst_Question)
#include "tst_Question.moc"
