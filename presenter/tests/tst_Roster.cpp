#include "lesson/Roster.h"

#include <QTest>

using Calyx::Learner;

class tst_Roster : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void joinsAndDeparturesAreCounted()
    {
        Roster roster;
        QVERIFY(roster.join(Learner("d1", "Ann", "tablet")));
        QVERIFY(roster.join(Learner("d2", "Bea", "phone")));
        QVERIFY(!roster.join(Learner("d1", "Ann", "tablet")));
        QCOMPARE(roster.presentCount(), 2);
        QVERIFY(roster.leave("d1"));
        QVERIFY(!roster.leave("d1"));
        QVERIFY(!roster.leave("unknown"));
        QCOMPARE(roster.presentCount(), 1);
        QCOMPARE(roster.presentIds(), QStringList{"d2"});
        QCOMPARE(roster.members().size(), 2);
    }

    void whoComesBackIsHereAgain()
    {
        Roster roster;
        roster.join(Learner("d1", "Ann", ""));
        roster.leave("d1");
        QVERIFY(roster.join(Learner("d1", "Anna", "")));
        QCOMPARE(roster.presentCount(), 1);
        QCOMPARE(roster.members().size(), 1);
        QCOMPARE(roster.name("d1"), QStringLiteral("Anna"));
    }

    void aDeviceWithoutAnIdIsNobody()
    {
        Roster roster;
        QVERIFY(!roster.join(Learner("", "Ann", "")));
        QCOMPARE(roster.presentCount(), 0);
    }

    void namesAreHarmless()
    {
        Roster roster;
        roster.join(Learner("d1", "A\033[2Jnn", ""));
        roster.join(Learner("d2\a", "", ""));
        QCOMPARE(roster.name("d1"), QStringLiteral("A[2Jnn"));
        QCOMPARE(roster.name("d2\a"), QStringLiteral("d2"));
        QCOMPARE(roster.name("d3"), QStringLiteral("d3"));
    }

    void whoIsNotListedIsTold()
    {
        Roster roster;
        roster.join(Learner("d1", "Ann", ""));
        roster.join(Learner("d2", "Bea", ""));
        QCOMPARE(roster.presentExcept({Learner("d2", "Bea", ""), Learner("d3", "Cy", "")}),
                 QStringList{"d1"});
    }

    void learnersAreFound()
    {
        Roster roster;
        roster.join(Learner("d1", "Ann", ""));
        roster.join(Learner("d2", "Anna", ""));
        roster.join(Learner("d3", "Bea", ""));
        roster.join(Learner("d4", "Bob", ""));
        roster.leave("d4");
        QCOMPARE(roster.find("d3"), QStringList{"d3"});
        QCOMPARE(roster.find("ann"), QStringList{"d1"});
        QCOMPARE(roster.find("An"), QStringList({"d1", "d2"}));
        QCOMPARE(roster.find("b"), QStringList{"d3"});
        QCOMPARE(roster.find("x"), QStringList{});
    }

    void aNewSessionBeginsEmpty()
    {
        Roster roster;
        roster.join(Learner("d1", "Ann", ""));
        roster.clear();
        QCOMPARE(roster.presentCount(), 0);
        QVERIFY(roster.members().isEmpty());
    }
};

QTEST_APPLESS_MAIN(tst_Roster)
#include "tst_Roster.moc"
