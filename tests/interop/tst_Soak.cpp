#include "interop/support/Host.h"
#include "interop/support/Main.h"
#include "interop/support/Peers.h"
#include "support/ProcessResources.h"
#include "support/WaitFor.h"

#include <CalyxClient/CollaborationMessageHandler>
#include <CalyxClient/Lzma>

namespace {

constexpr int answersEach = 100;
constexpr int usualRounds = 300;
constexpr qint64 allowedGrowth = 1024 * 1024; // bytes

QString answerBlock()
{
    QString block;
    Lzma::compress64(
        QStringLiteral("{\"pollId\":\"p\",\"responseTime\":7,\"blob\":{\"input\":\"Photosynthese, 光\"}}"),
        &block);
    return block;
}

using ProcessResources::Use;

} // namespace

/// One long session: answers by the hundred for each message that goes out. CALYX_SOAK_ROUNDS says how many
/// messages; 20000 of them make two million answers.
class TestSoak : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingGrows_data() { combinations({Transport::all}); }
    void nothingGrows()
    {
        const auto [transport] = row<QString>();
        const Peer bus(Peers::nodeBus({QStringLiteral("--answer"), answerBlock()}));
        PresenterCollab collab(nullptr, bus.url().toString(), QStringLiteral("code"),
                               QStringLiteral("session"), QStringLiteral("host"));
        int answers = 0;
        int inOrder = 0;
        connect(collab.messageHandler(), &CollaborationMessageHandler::learnerPollResponse, this,
                [&](const QString& device, const QString&, int, const QString&) {
                    ++answers;
                    inOrder += QStringView(device).mid(7).toInt() == answers ? 1 : 0;
                });
        int closed = 0;
        connect(&collab, &PresenterCollab::connectionClosed, this, [&closed] { ++closed; });
        collab.open({transport});
        QTRY_VERIFY(collab.isConnected());
        const int all = Interop::amount("CALYX_SOAK_ROUNDS", usualRounds);
        const int warm = all / 3;
        Use atFirst;
        for (int round = 1; round <= all; ++round) {
            collab.publishMessage(QStringLiteral("answers"), QStringLiteral("\"more\""));
            QVERIFY(waitFor([&] { return answers >= round * answersEach || closed > 0; }));
            QCOMPARE(answers, round * answersEach);
            QCOMPARE(closed, 0);
            if (round == warm)
                atFirst = Use();
        }
        const Use atLast;
        QCOMPARE(answers, all * answersEach);
        QCOMPARE(inOrder, answers);
        qInfo("%d answers, %d messages, %lld bytes more after the first %d", answers, all,
              static_cast<long long>(atLast.bytes - atFirst.bytes), warm * answersEach);
        QVERIFY(atLast.bytes - atFirst.bytes < allowedGrowth);
        QCOMPARE(atLast.threads, atFirst.threads);
        QVERIFY(atLast.descriptors <=
                atFirst.descriptors + 1); // a second connection for posts comes and goes
        collab.close();
        QTRY_COMPARE(closed, 1);
    }
};

INTEROP_MAIN(TestSoak)
#include "tst_Soak.moc"
