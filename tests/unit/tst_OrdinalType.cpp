#include <CalyxClient/OrdinalType>

#include <QObject>
#include <QTest>

#include <type_traits>

using namespace Calyx;

class tst_OrdinalType : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void schemes_data() { table(); }

    void schemes()
    {
        QFETCH(int, scheme);
        QFETCH(int, value);
        QFETCH(QString, name);
        QCOMPARE(scheme, value);
        QCOMPARE(OrdinalType::ORDINAL_TYPE_STR().value(static_cast<OrdinalType::ORDINAL_TYPE>(value)), name);
    }

    void idsOfOptions_data() { table(); }

    void idsOfOptions()
    {
        QFETCH(int, scheme);
        QFETCH(QString, ids);
        QStringList made;
        for (int i = 0; i < 4; ++i)
            made.append(OrdinalType::optionId(static_cast<OrdinalType::ORDINAL_TYPE>(scheme), i));
        QCOMPARE(made, ids.split(QLatin1Char(' ')));
    }

    void textsOfOptions_data() { table(); }

    void textsOfOptions()
    {
        QFETCH(int, scheme);
        QFETCH(QString, texts);
        QStringList made;
        for (int i = 0; i < 4; ++i)
            made.append(OrdinalType::optionText(static_cast<OrdinalType::ORDINAL_TYPE>(scheme), i));
        QCOMPARE(made, texts.split(QLatin1Char(' ')));
    }

    void everyFurtherOptionIsUnknown()
    {
        for (int i = 2; i < 40; ++i) {
            QCOMPARE(OrdinalType::optionId(OrdinalType::YES_NO, i), QStringLiteral("?"));
            QCOMPARE(OrdinalType::optionText(OrdinalType::TRUE_FALSE, i), QStringLiteral("DONTKNOW"));
        }
    }

    void lettersAndNumbersGoOn()
    {
        QCOMPARE(OrdinalType::optionId(OrdinalType::ALPHA_UPPER, 25), QStringLiteral("Z"));
        QCOMPARE(OrdinalType::optionId(OrdinalType::ALPHA_LOWER, 25), QStringLiteral("z"));
        QCOMPARE(OrdinalType::optionId(OrdinalType::ALPHA_UPPER, 26), QStringLiteral("["));
        QCOMPARE(OrdinalType::optionId(OrdinalType::NUMBER, 10), QStringLiteral("10"));
        QCOMPARE(OrdinalType::optionId(OrdinalType::GENERIC, 123), QStringLiteral("123"));
    }

    void tableHoldsNothingElse()
    {
        static_assert(std::is_same_v<decltype(OrdinalType::ORDINAL_TYPE_STR()),
                                     QMap<OrdinalType::ORDINAL_TYPE, QString>>);
        QCOMPARE(OrdinalType::ORDINAL_TYPE_STR().size(), 11);
        QCOMPARE(OrdinalType::ORDINAL_TYPE_STR()[static_cast<OrdinalType::ORDINAL_TYPE>(11)], QString());
    }

    void tableIsMadeAnewOnEachCall()
    {
        auto names = OrdinalType::ORDINAL_TYPE_STR();
        names[OrdinalType::NUMBER] = QStringLiteral("changed");
        QCOMPARE(OrdinalType::ORDINAL_TYPE_STR().value(OrdinalType::NUMBER), QStringLiteral("number"));
    }

private:
    void table()
    {
        QTest::addColumn<int>("scheme");
        QTest::addColumn<int>("value");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("ids");
        QTest::addColumn<QString>("texts");

        const auto add = [](OrdinalType::ORDINAL_TYPE scheme, int value, const char* name, const char* ids,
                            const char* texts) {
            QTest::newRow(name) << int(scheme) << value << QString::fromLatin1(name)
                                << QString::fromLatin1(ids) << QString::fromLatin1(texts);
        };
        add(OrdinalType::TRUE_FALSE, 0, "true-false", "A B ? ?", "TRUE FALSE DONTKNOW DONTKNOW");
        add(OrdinalType::YES_NO, 1, "yes-no", "A B ? ?", "YES NO DONTKNOW DONTKNOW");
        add(OrdinalType::YES_NO_MAYBE, 2, "yes-no-maybe", "A B ? ?", "YES NO DONTKNOW DONTKNOW");
        add(OrdinalType::YES_NO_UNSURE, 3, "yes-no-unsure", "A B ? ?", "YES NO DONTKNOW DONTKNOW");
        add(OrdinalType::YES_NO_OTHER, 4, "yes-no-other", "A B ? ?", "YES NO DONTKNOW DONTKNOW");
        add(OrdinalType::ALPHA_UPPER, 5, "alpha-upper", "A B C D", "   ");
        add(OrdinalType::ALPHA_LOWER, 6, "alpha-lower", "a b c d", "   ");
        add(OrdinalType::NUMBER, 7, "number", "0 1 2 3", "   ");
        add(OrdinalType::AGREEMENT, 8, "agreement", "0 1 2 3", "   ");
        add(OrdinalType::CONFIDENCE, 9, "confidence", "0 1 2 3", "   ");
        add(OrdinalType::GENERIC, 10, "generic", "0 1 2 3", "   ");
    }
};

QTEST_GUILESS_MAIN(tst_OrdinalType)
#include "tst_OrdinalType.moc"
