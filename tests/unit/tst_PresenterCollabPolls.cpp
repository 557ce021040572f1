#include "model/QuestionYesNo.h"
#include "support/Rows.h"
#include "support/SessionTest.h"

#include <QTest>
#include <QUuid>

#include <limits>

using Calyx::OrdinalType::ORDINAL_TYPE;
using Calyx::PollType::POLL_TYPE;

namespace {

// What stands in the brackets "<" and ">" is filled in.
const char* const documentText =
    R"({"type":"<type>","expressionQuestionId":1,"metadata":{"ordinalType":"<ordinal>","options":[<options>]},)"
    R"("id":"<id>","sessionToken":"<token>","sessionCode":"123456","lessonId":null,"startTime":1395358151638,)"
    R"("lastUpdatedOn":1395358151638,"card":{"segment":"fake-id","tracks":[{"placeholder":true}],"visible":true,)"
    R"("ordinal":1395358139515,"styles":{"backgroundColor":"","backgroundImage":"<image>",)"
    R"("backgroundSize":"100%"},"components":[]},"unrespondedUsers":[]})";

QString document(const QString& type, const QString& ordinal, const QString& options, const QString& id,
                 const QString& token = QStringLiteral("abc"), const QString& image = QString())
{
    return QString::fromLatin1(documentText)
        .replace(QLatin1String("<type>"), type)
        .replace(QLatin1String("<ordinal>"), ordinal)
        .replace(QLatin1String("<options>"), options)
        .replace(QLatin1String("<id>"), id)
        .replace(QLatin1String("<token>"), token)
        .replace(QLatin1String("<image>"), image);
}

} // namespace

/// Polls that go out as documents, the ids that answers come back under, and the steering of a running poll.
class TestPresenterCollabPolls : public SessionTest
{
    Q_OBJECT

private Q_SLOTS:
    void publishesAPollDocument_data()
    {
        columns<int, int, int, QString, QString, QString>();

        const char* ordinals[] = {"true-false",   "yes-no",      "yes-no-maybe", "yes-no-unsure",
                                  "yes-no-other", "alpha-upper", "alpha-lower",  "number",
                                  "agreement",    "confidence",  "generic"};
        for (int i = 0; i <= 10; ++i)
            QTest::addRow("word-seed, %s", ordinals[i])
                << 6 << i << 3 << "word-seed" << ordinals[i] << "0,1,2";
        QTest::newRow("creative") << 8 << 7 << 1 << "creative"
                                  << "number"
                                  << "0";
        QTest::newRow("no options") << 6 << 5 << 0 << "word-seed"
                                    << "alpha-upper"
                                    << "";
        QTest::newRow("fewer than none") << 8 << 5 << -3 << "creative"
                                         << "alpha-upper"
                                         << "";
        QTest::newRow("the least") << 6 << 5 << std::numeric_limits<int>::min() << "word-seed"
                                   << "alpha-upper"
                                   << "";
        QTest::newRow("twelve") << 6 << 5 << 12 << "word-seed"
                                << "alpha-upper"
                                << "0,1,2,3,4,5,6,7,8,9,10,11";
        QTest::newRow("unknown type") << 12 << 5 << 2 << ""
                                      << "alpha-upper"
                                      << "0,1";
        QTest::newRow("unknown ordinal") << 6 << 14 << 2 << "word-seed"
                                         << ""
                                         << "0,1";
        QTest::newRow("both unknown") << 15 << 15 << 0 << ""
                                      << ""
                                      << "";
    }

    void publishesAPollDocument()
    {
        const auto [type, ordinal, count, typeName, ordinalName, options] =
            row<int, int, int, QString, QString, QString>();
        QVERIFY(m_session->open());

        collab()->startPoll(POLL_TYPE(type), ORDINAL_TYPE(ordinal), count, 9);

        const auto publish = m_session->nextPublish();
        QCOMPARE(publish.text,
                 LiveSession::compressedFrame(QStringLiteral("abc"), QStringLiteral("teacher-7"),
                                              QStringLiteral("poll"), publish.base64));
        QCOMPARE(publish.data, document(typeName, ordinalName, options, collab()->currentPollId()));
        QVERIFY(m_session->nothingWasSent());
    }

    void thePollDocumentCarriesTheCardImage_data()
    {
        rows<QByteArray, QString, QString>({
            {"reference", QByteArray(), "http://h/p.png", "url('http://h/p.png')"},
            {"empty reference", QByteArray(), "", "url('')"},
            {"bytes are not wrapped", "png", "unused", "data:image/png;base64,cG5n"},
            {"placeholders", QByteArray(), "%1%5%6%7", "url('%1%5%6%7')"},
        });
    }

    void thePollDocumentCarriesTheCardImage()
    {
        const auto [bytes, reference, image] = row<QByteArray, QString, QString>();
        QVERIFY(m_session->open());
        collab()->setCardImage(bytes);
        collab()->setCardImageRef(reference);

        collab()->startPoll(Calyx::PollType::WORD_SEED, Calyx::OrdinalType::GENERIC, 0, 0);

        QCOMPARE(m_session->nextPublish().data,
                 document(QStringLiteral("word-seed"), QStringLiteral("generic"), QString(),
                          collab()->currentPollId(), QStringLiteral("abc"), image));
    }

    void placeholdersInValuesGoOutAsTheyAre()
    {
        m_session = std::make_unique<LiveSession>(QStringLiteral("t%4%7"));
        QVERIFY(m_session->open());

        collab()->startPoll(Calyx::PollType::CREATIVE, Calyx::OrdinalType::NUMBER, 2, 0);

        const auto publish = m_session->nextPublish();
        QCOMPARE(publish.address, QStringLiteral("t%4%7"));
        QCOMPARE(publish.data,
                 document(QStringLiteral("creative"), QStringLiteral("number"), QStringLiteral("0,1"),
                          collab()->currentPollId(), QStringLiteral("t%4%7")));
    }

    void eachPollHasAnIdOfItsOwn_data()
    {
        rows<int>({
            {"question", 2},
            {"document", 6},
        });
    }

    void eachPollHasAnIdOfItsOwn()
    {
        const auto [type] = row<int>();
        QVERIFY(m_session->open());
        QStringList ids;

        for (int i = 0; i < 5; ++i) {
            collab()->startPoll(POLL_TYPE(type), Calyx::OrdinalType::ALPHA_UPPER, 2, 1);
            const auto id = collab()->currentPollId();
            QCOMPARE(id.size(), 36);
            QVERIFY2(!id.contains(QLatin1Char('{')) && !id.contains(QLatin1Char('}')), qPrintable(id));
            QVERIFY(!QUuid::fromString(id).isNull());
            QVERIFY(!ids.contains(id));
            ids.append(id);
            // The one before is not stopped.
            QVERIFY(m_session->nextPublish().type != QLatin1String("pollStop"));
        }
        QVERIFY(m_session->nothingWasSent());
    }

    void theCurrentQuestionIdIsThatOfTheAnswers()
    {
        QVERIFY(m_session->open());
        QVERIFY(collab()->currentQuestionId().isEmpty());

        auto question = startedQuestion(Calyx::PollType::TEXT, Calyx::OrdinalType::GENERIC, 0);
        QCOMPARE(collab()->currentQuestionId().size(), 8);
        QCOMPARE(collab()->currentQuestionId(), question.value("id").toString());
        QVERIFY(collab()->currentQuestionId() != collab()->currentPollId());

        collab()->startPoll(Calyx::PollType::WORD_SEED, Calyx::OrdinalType::GENERIC, 0, 0);
        QVERIFY(collab()->currentQuestionId().isEmpty());
        QCOMPARE(m_session->nextPublish().type, QStringLiteral("poll"));

        Calyx::QuestionYesNo mine;
        mine.setID(QStringLiteral("mine"));
        collab()->sendQuestion(&mine);
        QCOMPARE(collab()->currentQuestionId(), QStringLiteral("mine"));
        collab()->pausePoll();
        collab()->resumePoll();
        collab()->sendHeavy();
        QCOMPARE(collab()->currentQuestionId(), QStringLiteral("mine"));
    }

    void startPollKeepsTheCardImage()
    {
        collab()->setCardImageRef(QStringLiteral("p.png"));

        collab()->startPoll(Calyx::PollType::WORD_SEED, Calyx::OrdinalType::GENERIC, 0, 0);
        collab()->startPoll(Calyx::PollType::TEXT, Calyx::OrdinalType::GENERIC, 0, 0);

        QCOMPARE(collab()->getCardImageRef(false), QStringLiteral("p.png"));
    }

    void stopPollPublishesTheIdAndForgets()
    {
        QVERIFY(m_session->open());
        startedQuestion(Calyx::PollType::TEXT, Calyx::OrdinalType::GENERIC, 0);
        const auto id = collab()->currentPollId();
        collab()->setCardImage("png");
        collab()->setCardImageRef(QStringLiteral("p.png"));

        collab()->stopPoll();

        const auto publish = m_session->nextPublish();
        QCOMPARE(publish.text,
                 LiveSession::compressedFrame(QStringLiteral("abc"), QStringLiteral("teacher-7"),
                                              QStringLiteral("pollStop"), publish.base64));
        QCOMPARE(publish.data, QLatin1Char('"') + id + QLatin1Char('"'));
        QVERIFY(collab()->currentPollId().isEmpty());
        m_session->forgetLog();
        QCOMPARE(collab()->getCardImageRef(true), QString());
        QCOMPARE(log().debug(QStringLiteral("[PresenterCollab] No image reference has been set!")).size(), 1);
    }

    void stopPollWithoutAPollPublishesAnEmptyText()
    {
        QVERIFY(m_session->open());

        collab()->stopPoll();

        const auto publish = m_session->nextPublish();
        QCOMPARE(publish.type, QStringLiteral("pollStop"));
        QCOMPARE(publish.data, QStringLiteral("\"\""));
        QVERIFY(collab()->currentPollId().isEmpty());
    }

    void pauseAndResumePublishTheIdAndKeepIt()
    {
        QVERIFY(m_session->open());
        collab()->setCardImageRef(QStringLiteral("p.png"));
        startedQuestion(Calyx::PollType::TEXT, Calyx::OrdinalType::GENERIC, 0);
        const auto id = collab()->currentPollId();

        collab()->pausePoll();
        auto publish = m_session->nextPublish();
        QCOMPARE(publish.type, QStringLiteral("pause"));
        QCOMPARE(publish.address, QStringLiteral("abc"));
        QCOMPARE(publish.data, QLatin1Char('"') + id + QLatin1Char('"'));

        collab()->resumePoll();
        publish = m_session->nextPublish();
        QCOMPARE(publish.type, QStringLiteral("resume"));
        QCOMPARE(publish.address, QStringLiteral("abc"));
        QCOMPARE(publish.data, QLatin1Char('"') + id + QLatin1Char('"'));

        QCOMPARE(collab()->currentPollId(), id);
        QCOMPARE(collab()->getCardImageRef(false), QStringLiteral("p.png"));
    }

    void pollsWhileDisconnectedAreDropped()
    {
        collab()->setCardImageRef(QStringLiteral("p.png"));

        collab()->startPoll(Calyx::PollType::WORD_SEED, Calyx::OrdinalType::GENERIC, 0, 0);
        QCOMPARE(dropped(), 1);
        QCOMPARE(collab()->currentPollId().size(), 36);
        collab()->pausePoll();
        QCOMPARE(dropped(), 2);
        collab()->resumePoll();
        QCOMPARE(dropped(), 3);
        collab()->stopPoll();
        QCOMPARE(dropped(), 4);

        QVERIFY(collab()->currentPollId().isEmpty());
        QVERIFY(collab()->getCardImageRef(false).isEmpty());
        QVERIFY(m_session->open());
        QVERIFY(m_session->nothingWasSent());
    }

    void aQuestionWhileDisconnectedIsHandedOn()
    {
        collab()->startPoll(Calyx::PollType::TEXT, Calyx::OrdinalType::GENERIC, 0, 0);

        QCOMPARE(dropped(), 0);
        QCOMPARE(log().debug(QStringLiteral("TRANSMIT: ")).size(), 1);
        QVERIFY(m_session->open());
        QVERIFY(m_session->nothingWasSent());
    }
};

QTEST_GUILESS_MAIN(TestPresenterCollabPolls)
#include "tst_PresenterCollabPolls.moc"
