#include "base/FileDescriptors.h"

#include "support/ProcessResources.h"
#include "support/Rows.h"

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
            const Scarcity scarcity(left);
            suffice = FileDescriptors::sufficeForThread();
        }
        QCOMPARE(suffice, expected);
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
