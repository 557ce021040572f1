#include "base/FileDescriptors.h"

#include "support/ProcessResources.h"
#include "support/Rows.h"

#include <QTest>

/// Whether a thread can begin. What a transport does where none can is in tst_FailingCalls.
class tst_FileDescriptors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sufficeWhereNobodyTakesThem()
    {
        const int before = ProcessResources::descriptors();
        QVERIFY(FileDescriptors::sufficeForThread());
        QCOMPARE(ProcessResources::descriptors(), before);
    }

    void fewAreNotEnough_data()
    {
        rows<int, bool>({
            {"none", 0, false},
            {"one", 1, false},
            {"an event loop's", 2, false},
            {"with one for somebody else", 3, false},
            {"enough", 4, true},
            {"more", 5, true},
        });
    }
    void fewAreNotEnough()
    {
        const auto [left, expected] = row<int, bool>();
        const int before = ProcessResources::descriptors();
        bool suffice = false;
        {
            const ProcessResources::FewDescriptors scarcity(left, 64);
            suffice = FileDescriptors::sufficeForThread();
        }
        QCOMPARE(suffice, expected);
        QCOMPARE(ProcessResources::descriptors(), before);
    }

    void sufficeAgain()
    {
        const ProcessResources::FewDescriptors scarcity(4, 64);
        // What one look took would be missing at the next.
        QVERIFY(FileDescriptors::sufficeForThread());
        QVERIFY(FileDescriptors::sufficeForThread());
    }
};

QTEST_APPLESS_MAIN(tst_FileDescriptors)
#include "tst_FileDescriptors.moc"
