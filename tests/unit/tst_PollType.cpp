// The tables of poll types and of the schemes by which options are labelled.

#include "support/Rows.h"

#include <CalyxClient/OrdinalType>
#include <CalyxClient/PollType>

#include <QTest>

#include <type_traits>

using namespace Calyx;
using OrdinalType::ORDINAL_TYPE;
using PollType::POLL_TYPE;

class tst_PollType : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nameAndIdOfEachType_data()
    {
        rows<int, int, QString, QString>({
            {"0", PollType::TRUE_FALSE, 0, "true-false", "3c476afbcfce45eda0b44df4737c3d27"},
            {"1", PollType::YES_NO_OTHER, 1, "yes-no-other", "3c476afbcfce45eda0b44df4737c3d27"},
            {"2", PollType::MULTIPLE, 2, "multiple", "8755bfc923cb492094df5c842a30da5f"},
            {"3", PollType::SCALE, 3, "scale", "c80eb89f2c7240fb83d53069bf4c1f2c"},
            {"4", PollType::SORT, 4, "sort", "be8a3a7f5d624a798ec54900385a9eb8"},
            {"5", PollType::TEXT, 5, "text", "6efc81c52cfe4502976de55df9af2f89"},
            {"6", PollType::WORD_SEED, 6, "word-seed", "cfd9a136d9c44699ae1d7f489f6c513b"},
            {"7", PollType::NUMBER, 7, "number", "24e7bda40c4140f896648511a5782466"},
            {"8", PollType::CREATIVE, 8, "creative", "5446bd7896d54c7d84e2aeb75904ddab"},
            {"9", PollType::MATH_FORMULA, 9, "math formula", "9f31dd1a55374c49a3127b8f94a1f1a6"},
        });
    }

    void nameAndIdOfEachType()
    {
        const auto [type, value, name, id] = row<int, int, QString, QString>();
        QCOMPARE(type, value);
        QCOMPARE(PollType::POLL_TYPE_STR().value(POLL_TYPE(value)), name);
        QCOMPARE(PollType::POLL_TYPE_ID().value(name), id);
    }

    void optionsOfEachScheme_data()
    {
        rows<int, int, QString, QString, QString>({
            {"0", OrdinalType::TRUE_FALSE, 0, "true-false", "A B ? ?", "TRUE FALSE DONTKNOW DONTKNOW"},
            {"1", OrdinalType::YES_NO, 1, "yes-no", "A B ? ?", "YES NO DONTKNOW DONTKNOW"},
            {"2", OrdinalType::YES_NO_MAYBE, 2, "yes-no-maybe", "A B ? ?", "YES NO DONTKNOW DONTKNOW"},
            {"3", OrdinalType::YES_NO_UNSURE, 3, "yes-no-unsure", "A B ? ?", "YES NO DONTKNOW DONTKNOW"},
            {"4", OrdinalType::YES_NO_OTHER, 4, "yes-no-other", "A B ? ?", "YES NO DONTKNOW DONTKNOW"},
            {"5", OrdinalType::ALPHA_UPPER, 5, "alpha-upper", "A B C D", "   "},
            {"6", OrdinalType::ALPHA_LOWER, 6, "alpha-lower", "a b c d", "   "},
            {"7", OrdinalType::NUMBER, 7, "number", "0 1 2 3", "   "},
            {"8", OrdinalType::AGREEMENT, 8, "agreement", "0 1 2 3", "   "},
            {"9", OrdinalType::CONFIDENCE, 9, "confidence", "0 1 2 3", "   "},
            {"10", OrdinalType::GENERIC, 10, "generic", "0 1 2 3", "   "},
        });
    }

    void optionsOfEachScheme()
    {
        const auto [scheme, value, name, ids, texts] = row<int, int, QString, QString, QString>();
        QCOMPARE(scheme, value);
        QCOMPARE(OrdinalType::ORDINAL_TYPE_STR().value(ORDINAL_TYPE(value)), name);
        QStringList madeIds;
        QStringList madeTexts;
        for (int i = 0; i < 4; ++i) {
            madeIds.append(OrdinalType::optionId(ORDINAL_TYPE(value), i));
            madeTexts.append(OrdinalType::optionText(ORDINAL_TYPE(value), i));
        }
        QCOMPARE(madeIds.join(' '), ids);
        QCOMPARE(madeTexts.join(' '), texts);
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

    void tablesHoldNothingElse()
    {
        static_assert(std::is_same_v<decltype(PollType::POLL_TYPE_STR()), QMap<POLL_TYPE, QString>>);
        static_assert(std::is_same_v<decltype(PollType::POLL_TYPE_ID()), QMap<QString, QString>>);
        static_assert(std::is_same_v<decltype(OrdinalType::ORDINAL_TYPE_STR()), QMap<ORDINAL_TYPE, QString>>);
        QCOMPARE(PollType::POLL_TYPE_STR().size(), 10);
        QCOMPARE(PollType::POLL_TYPE_ID().size(), 10);
        QCOMPARE(OrdinalType::ORDINAL_TYPE_STR().size(), 11);
    }

    void tablesAreMadeAnewOnEachCall()
    {
        PollType::POLL_TYPE_STR().clear();
        PollType::POLL_TYPE_ID().clear();
        OrdinalType::ORDINAL_TYPE_STR().clear();
        tablesHoldNothingElse();
    }
};

QTEST_GUILESS_MAIN(tst_PollType)
#include "tst_PollType.moc"
