#include "base/FileDescriptors.h"

#include "support/ProcessResources.h"

#include <QTest>

#include <sys/resource.h>
#include <unistd.h>
#include <vector>

namespace {

// Takes all descriptors of a process that may have only a few more than it has, and leaves some.
class Scarcity
{
public:
    explicit Scarcity(int left)
    {
        getrlimit(RLIMIT_NOFILE, &m_before);
        rlimit few = m_before;
        few.rlim_cur = 64;
        setrlimit(RLIMIT_NOFILE, &few);
        for (int taken = dup(STDOUT_FILENO); taken >= 0; taken = dup(STDOUT_FILENO))
            m_taken.push_back(taken);
        for (int i = 0; i < left; ++i) {
            close(m_taken.back());
            m_taken.pop_back();
        }
    }
    ~Scarcity()
    {
        for (const int taken : m_taken)
            close(taken);
        setrlimit(RLIMIT_NOFILE, &m_before);
    }
    Q_DISABLE_COPY(Scarcity)

private:
    rlimit m_before{};
    std::vector<int> m_taken;
};

} // namespace

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
        QTest::addColumn<int>("left");
        QTest::addColumn<bool>("suffice");
        QTest::newRow("none") << 0 << false;
        QTest::newRow("one") << 1 << false;
        QTest::newRow("an event loop's") << 2 << false;
        QTest::newRow("with one for somebody else") << 3 << false;
        QTest::newRow("enough") << 4 << true;
        QTest::newRow("more") << 5 << true;
    }

    void fewAreNotEnough()
    {
        QFETCH(int, left);
        const int before = ProcessResources::descriptors();
        bool suffice = false;
        {
            const Scarcity scarcity(left);
            suffice = FileDescriptors::sufficeForThread();
        }
        QTEST(suffice, "suffice");
        QCOMPARE(ProcessResources::descriptors(), before);
    }

    void sufficeAgain()
    {
        const Scarcity scarcity(4);
        // What one look took would be missing at the next.
        QVERIFY(FileDescriptors::sufficeForThread());
        QVERIFY(FileDescriptors::sufficeForThread());
    }
};

QTEST_APPLESS_MAIN(tst_FileDescriptors)
#include "tst_FileDescriptors.moc"
