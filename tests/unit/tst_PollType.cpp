#include "support/Rows.h"

#include <CalyxClient/PollType>

#include <QObject>
#include <QRegularExpression>
#include <QTest>

#include <type_traits>

using namespace Calyx;

class tst_PollType : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nameAndIdOfEachType_data()
    {
        columns<int, int, QString, QString>();

        const auto add = [](PollType::POLL_TYPE type, int value, const char* name, const char* id) {
            QTest::newRow(name) << int(type) << value << QString::fromLatin1(name) << QString::fromLatin1(id);
        };
        add(PollType::TRUE_FALSE, 0, "true-false", "3c476afbcfce45eda0b44df4737c3d27");
        add(PollType::YES_NO_OTHER, 1, "yes-no-other", "3c476afbcfce45eda0b44df4737c3d27");
        add(PollType::MULTIPLE, 2, "multiple", "8755bfc923cb492094df5c842a30da5f");
        add(PollType::SCALE, 3, "scale", "c80eb89f2c7240fb83d53069bf4c1f2c");
        add(PollType::SORT, 4, "sort", "be8a3a7f5d624a798ec54900385a9eb8");
        add(PollType::TEXT, 5, "text", "6efc81c52cfe4502976de55df9af2f89");
        add(PollType::WORD_SEED, 6, "word-seed", "cfd9a136d9c44699ae1d7f489f6c513b");
        add(PollType::NUMBER, 7, "number", "24e7bda40c4140f896648511a5782466");
        add(PollType::CREATIVE, 8, "creative", "5446bd7896d54c7d84e2aeb75904ddab");
        add(PollType::MATH_FORMULA, 9, "math formula", "9f31dd1a55374c49a3127b8f94a1f1a6");
    }

    void nameAndIdOfEachType()
    {
        const auto [type, value, name, id] = row<int, int, QString, QString>();
        QCOMPARE(type, value);
        QCOMPARE(PollType::POLL_TYPE_STR().value(static_cast<PollType::POLL_TYPE>(value)), name);
        QCOMPARE(PollType::POLL_TYPE_ID().value(name), id);
    }

    void tablesHoldNothingElse()
    {
        QCOMPARE(PollType::POLL_TYPE_STR().size(), 10);
        QCOMPARE(PollType::POLL_TYPE_ID().size(), 10);
    }

    void idsAreThirtyTwoHexadecimalDigits()
    {
        const QRegularExpression digits(QStringLiteral("^[0-9a-f]{32}$"));
        const QStringList ids = PollType::POLL_TYPE_ID().values();
        for (const QString& id : ids)
            QVERIFY2(digits.match(id).hasMatch(), qPrintable(id));
    }

    void onlyTrueFalseAndYesNoShareAnId()
    {
        const auto ids = PollType::POLL_TYPE_ID();
        QCOMPARE(ids.value(QStringLiteral("true-false")), ids.value(QStringLiteral("yes-no-other")));
        QStringList distinct = ids.values();
        QCOMPARE(distinct.removeDuplicates(), 1);
    }

    void unknownNameGivesAnEmptyId()
    {
        QCOMPARE(PollType::POLL_TYPE_ID()[QStringLiteral("Multiple")], QString());
        QCOMPARE(PollType::POLL_TYPE_ID()[QString()], QString());
        QCOMPARE(PollType::POLL_TYPE_STR()[static_cast<PollType::POLL_TYPE>(10)], QString());
    }

    void tablesAreMadeAnewOnEachCall()
    {
        auto names = PollType::POLL_TYPE_STR();
        names[PollType::TEXT] = QStringLiteral("changed");
        QCOMPARE(PollType::POLL_TYPE_STR().value(PollType::TEXT), QStringLiteral("text"));
        auto ids = PollType::POLL_TYPE_ID();
        ids.clear();
        QCOMPARE(PollType::POLL_TYPE_ID().size(), 10);
    }

    void tablesAreOfTheTypesThatHostsUse()
    {
        static_assert(
            std::is_same_v<decltype(PollType::POLL_TYPE_STR()), QMap<PollType::POLL_TYPE, QString>>);
        static_assert(std::is_same_v<decltype(PollType::POLL_TYPE_ID()), QMap<QString, QString>>);
        QCOMPARE(PollType::POLL_TYPE_STR().firstKey(), PollType::TRUE_FALSE);
        QCOMPARE(PollType::POLL_TYPE_STR().lastKey(), PollType::MATH_FORMULA);
    }
};

QTEST_GUILESS_MAIN(tst_PollType)
#include "tst_PollType.moc"
