#include "lesson/PollKinds.h"

#include <QTest>

using namespace Calyx;

namespace {

QStringList labels(const PollPlan& plan)
{
    QStringList labels;
    const QVector<Bar> bars = PollKinds::tally(plan).bars();
    for (const Bar& bar : bars)
        labels.append(bar.label);
    return labels;
}

} // namespace

class tst_PollKinds : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void allTypesOfTheLibraryHaveAName()
    {
        QCOMPARE(PollKinds::typeNames().size(), PollType::POLL_TYPE_STR().size());
        QCOMPARE(PollKinds::ordinalNames().size(), OrdinalType::ORDINAL_TYPE_STR().size());
        const QStringList names = PollKinds::typeNames() + PollKinds::ordinalNames();
        for (const QString& name : names)
            QVERIFY2(!name.contains(QLatin1Char(' ')), qPrintable(name));
    }

    void namesAreReadLeniently_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("type");
        QTest::newRow("wire") << "math formula" << int(PollType::MATH_FORMULA);
        QTest::newRow("hyphen") << "math-formula" << int(PollType::MATH_FORMULA);
        QTest::newRow("case") << "Word_Seed" << int(PollType::WORD_SEED);
        QTest::newRow("together") << "truefalse" << int(PollType::TRUE_FALSE);
        QTest::newRow("unknown") << "essay" << -1;
        QTest::newRow("empty") << "" << -1;
    }

    void namesAreReadLeniently()
    {
        QFETCH(QString, name);
        QFETCH(int, type);
        PollType::POLL_TYPE read = PollType::TEXT;
        QCOMPARE(PollKinds::readType(name, read), type >= 0);
        if (type >= 0)
            QCOMPARE(int(read), type);
    }

    void everyNameIsReadBack()
    {
        const QList<PollType::POLL_TYPE> types = PollType::POLL_TYPE_STR().keys();
        for (const PollType::POLL_TYPE type : types) {
            PollType::POLL_TYPE read;
            QVERIFY(PollKinds::readType(PollKinds::typeName(type), read));
            QCOMPARE(read, type);
            QCOMPARE(PollKinds::usual(type).type, type);
            QCOMPARE(PollKinds::fault(PollKinds::usual(type)), QString());
        }
        const QList<OrdinalType::ORDINAL_TYPE> ordinals = OrdinalType::ORDINAL_TYPE_STR().keys();
        for (const OrdinalType::ORDINAL_TYPE ordinal : ordinals) {
            OrdinalType::ORDINAL_TYPE read;
            QVERIFY(PollKinds::readOrdinal(PollKinds::ordinalName(ordinal), read));
            QCOMPARE(read, ordinal);
        }
    }

    void numbersAreChecked_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("ordinal");
        QTest::addColumn<int>("options");
        QTest::addColumn<int>("extra");
        QTest::addColumn<bool>("good");
        QTest::newRow("letters") << int(PollType::MULTIPLE) << int(OrdinalType::ALPHA_UPPER) << 26 << 1
                                 << true;
        QTest::newRow("too many letters")
            << int(PollType::MULTIPLE) << int(OrdinalType::ALPHA_LOWER) << 27 << 1 << false;
        QTest::newRow("negative") << int(PollType::SCALE) << int(OrdinalType::NUMBER) << -1 << 0 << false;
        QTest::newRow("enormous") << int(PollType::SCALE) << int(OrdinalType::NUMBER) << 2000000000 << 0
                                  << false;
        QTest::newRow("options of a text")
            << int(PollType::TEXT) << int(OrdinalType::GENERIC) << 2 << 0 << false;
        QTest::newRow("decimals") << int(PollType::NUMBER) << int(OrdinalType::NUMBER) << 10 << 0 << true;
        QTest::newRow("too many decimals")
            << int(PollType::NUMBER) << int(OrdinalType::NUMBER) << 11 << 0 << false;
        QTest::newRow("more correct than options")
            << int(PollType::MULTIPLE) << int(OrdinalType::ALPHA_UPPER) << 3 << 4 << false;
        QTest::newRow("extra of a scale")
            << int(PollType::SCALE) << int(OrdinalType::NUMBER) << 5 << 1 << false;
    }

    void numbersAreChecked()
    {
        QFETCH(int, type);
        QFETCH(int, ordinal);
        QFETCH(int, options);
        QFETCH(int, extra);
        const PollPlan plan = {static_cast<PollType::POLL_TYPE>(type),
                               static_cast<OrdinalType::ORDINAL_TYPE>(ordinal), options, extra, false};
        QTEST(PollKinds::fault(plan).isEmpty(), "good");
    }

    void barsAreThoseOfTheOptions()
    {
        QCOMPARE(labels(PollKinds::usual(PollType::TRUE_FALSE)), QStringList({"A True", "B False"}));
        QCOMPARE(labels(PollKinds::usual(PollType::SCALE)), QStringList({"0", "1", "2", "3", "4"}));
        QCOMPARE(labels(PollKinds::usual(PollType::SORT)), QStringList{});
        QCOMPARE(labels(PollKinds::usual(PollType::TEXT)), QStringList{});
    }

    void everyLabelIsThereOnceAndIsAWord()
    {
        PollPlan plan = PollKinds::usual(PollType::MULTIPLE);
        plan.ordinal = OrdinalType::YES_NO_MAYBE;
        plan.options = PollKinds::usualOptions(plan);
        QCOMPARE(labels(plan), QStringList({"A Yes", "B No", "? Maybe"}));
        Tally tally = PollKinds::tally(plan);
        tally.add("d", "DONTKNOW");
        QCOMPARE(tally.bars().at(2).count, 1);
    }

    // Such a poll goes out as a document, whose answers name options by number.
    void picksByNumberAreShownByLabel()
    {
        PollPlan plan = PollKinds::usual(PollType::WORD_SEED);
        plan.ordinal = OrdinalType::ALPHA_UPPER;
        plan.options = 3;
        Tally tally = PollKinds::tally(plan);
        tally.add("d", "0,2");
        QCOMPARE(tally.bars().at(0).label, QStringLiteral("A"));
        QCOMPARE(tally.bars().at(0).count, 1);
        QCOMPARE(tally.bars().at(1).count, 0);
        QCOMPARE(tally.bars().at(2).count, 1);
    }

    void aSortIsCountedAsAWhole()
    {
        Tally tally = PollKinds::tally(PollKinds::usual(PollType::SORT));
        tally.add("d", "BCDA");
        QCOMPARE(tally.bars().size(), 1);
        QCOMPARE(tally.bars().first().label, QStringLiteral("BCDA"));
    }

    void descriptionsReadWell()
    {
        QCOMPARE(PollKinds::description(PollKinds::usual(PollType::TRUE_FALSE)),
                 QStringLiteral("true-false, 2 options"));
        PollPlan plan = {PollType::MULTIPLE, OrdinalType::ALPHA_UPPER, 4, 2, true};
        QCOMPARE(PollKinds::description(plan),
                 QStringLiteral("multiple, alpha-upper, 4 options, 2 correct, with a picture"));
        plan = {PollType::NUMBER, OrdinalType::NUMBER, 1, 0, false};
        QCOMPARE(PollKinds::description(plan), QStringLiteral("number, 1 decimal"));
    }
};

QTEST_APPLESS_MAIN(tst_PollKinds)
#include "tst_PollKinds.moc"
