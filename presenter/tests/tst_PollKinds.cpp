#include "lesson/PollKinds.h"

#include <QTest>

using namespace Calyx;

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
        }
        const QList<OrdinalType::ORDINAL_TYPE> ordinals = OrdinalType::ORDINAL_TYPE_STR().keys();
        for (const OrdinalType::ORDINAL_TYPE ordinal : ordinals) {
            OrdinalType::ORDINAL_TYPE read;
            QVERIFY(PollKinds::readOrdinal(PollKinds::ordinalName(ordinal), read));
            QCOMPARE(read, ordinal);
        }
    }

    void descriptionsReadWell()
    {
        QCOMPARE(PollKinds::description(Question::usual(PollType::TRUE_FALSE)),
                 QStringLiteral("true-false, 2 options"));
        Question question = Question::of(PollType::MULTIPLE, OrdinalType::ALPHA_UPPER, 4);
        question.choices = 2;
        question.pictureUrl = QStringLiteral("x");
        QCOMPARE(PollKinds::description(question),
                 QStringLiteral("multiple, alpha-upper, 4 options, 2 correct, with a picture"));
        QCOMPARE(PollKinds::description(Question::of(PollType::NUMBER, OrdinalType::NUMBER, 1)),
                 QStringLiteral("number, 1 decimal"));
    }
};

QTEST_APPLESS_MAIN(tst_PollKinds)
#include "tst_PollKinds.moc"
