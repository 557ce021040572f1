#include "model/JsonSerializer.h"
#include "model/QuestionMultiChoice.h"
#include "model/QuestionText.h"
#include "model/QuestionYesNo.h"
#include "support/Rows.h"
#include "support/SessionTest.h"

#include <QTest>

namespace {

const auto noReference = QStringLiteral("[PresenterCollab] No image reference has been set!");

// What stands in the brackets "<" and ">" is filled in.
const char* const cardText =
    R"({"segment":{"id":"any"},"isTeacherCard":true,"autoSend":true,"notes":null,"tracks":[],"visible":true,)"
    R"("ordinal":1,"styles":{"backgroundColor":"","backgroundImage":""},"components":[{"ordinal":1397148149039,)"
    R"("styles":{"anchor":false,"width":770,"left":15,"height":570,"top":15},"blob":{"url":"<url>"},"type":"image"}],)"
    R"("trackSortSeq":0,"_tId":"DF8A71DA-3EF2-44E3-9B2F-F651C7A8B0F9","hasStudentCards":false})";

QString card(const QString& url)
{
    return QString::fromLatin1(cardText).replace(QLatin1String("<url>"), url);
}

} // namespace

/// Questions of the host, image cards, and what the remote control is told.
class TestPresenterCollabCards : public SessionTest
{
    Q_OBJECT

private Q_SLOTS:
    void sendsAQuestionToAnAddress_data()
    {
        rows<QString, QString>({
            {"a device", ".user.d1", "abc.user.d1"},
            {"without the point", "elsewhere", "elsewhere"},
            {"empty", "", ""},
        });
    }

    void sendsAQuestionToAnAddress()
    {
        const auto [address, resolved] = row<QString, QString>();
        QVERIFY(m_session->open());
        Calyx::QuestionMultiChoice question;
        question.addActivityOption("A", "x [ 1 ]", 1);

        collab()->sendQuestion(address, &question);

        const auto publish = m_session->nextPublish();
        QCOMPARE(publish.address, resolved);
        QCOMPARE(publish.type, QStringLiteral("questionStart"));
        QCOMPARE(publish.from, QStringLiteral("teacher-7"));
        QCOMPARE(publish.data, Calyx::JsonSerializer::serializeToJson(&question));
        QVERIFY(publish.data.contains(QLatin1String("\"optionText\": \"x [ 1 ]\"")));
        QCOMPARE(log().debug("TRANSMIT: ").size(), 1);
    }

    // Of which kind each class is, is in tst_QuestionBase, and the id of each kind in tst_PollType.
    void setsTheActivityType()
    {
        QVERIFY(m_session->open());
        Calyx::QuestionYesNo question;
        question.setTrueFalse(true);
        question.setactivityType({{"id", "another"}, {"more", 1}});

        collab()->sendQuestion(&question);

        const QVariantMap expected{{"id", "3c476afbcfce45eda0b44df4737c3d27"}, {"name", "true-false"}};
        QCOMPARE(question.activityType(), expected);
        QCOMPARE(m_session->nextPublish().map().value("activityType").toMap(), expected);
    }

    void aTypeThatIsUnknownHasNoActivityId()
    {
        QVERIFY(m_session->open());
        Calyx::QuestionBase question;
        question.setType("riddle");

        collab()->sendQuestion(&question);

        const auto publish = m_session->nextPublish();
        QCOMPARE(publish.address, QStringLiteral("abc"));
        QCOMPARE(publish.map().value("id").toString(), question.id());
        QCOMPARE(publish.map().value("activityType").toMap(), QVariantMap({{"id", ""}, {"name", "riddle"}}));
    }

    void aQuestionStaysTheCallers()
    {
        QVERIFY(m_session->open());
        QObject parent;
        const QPointer<Calyx::QuestionText> question = new Calyx::QuestionText(&parent);

        collab()->sendQuestion(question);
        collab()->sendQuestion(question);

        QCOMPARE(m_session->nextPublish().type, QStringLiteral("questionStart"));
        QCOMPARE(m_session->nextPublish().type, QStringLiteral("questionStart"));
        m_session->deleteCollab();
        QVERIFY(question);
        QCOMPARE(question->parent(), &parent);
    }

    void cardImageReference_data()
    {
        const QByteArray none;
        const QString null;
        rows<QByteArray, QString, bool, QString, int>({
            {"nothing", none, null, false, "", 1},
            {"nothing, for CSS", none, null, true, "", 1},
            {"reference", none, "http://h/p.png", false, "http://h/p.png", 0},
            {"reference, for CSS", none, "http://h/p.png", true, "url('http://h/p.png')", 0},
            {"empty reference", none, "", false, "", 0},
            {"empty reference, for CSS", none, "", true, "url('')", 0},
            {"placeholder", none, "%0%1", true, "url('%0%1')", 0},
            {"bytes", "png", null, false, "data:image/png;base64,cG5n", 0},
            {"bytes, for CSS", "png", null, true, "data:image/png;base64,cG5n", 0},
            {"bytes win", "png", "p.png", true, "data:image/png;base64,cG5n", 0},
            {"empty bytes", "", "p.png", false, "p.png", 0},
            {"a zero byte", QByteArray("\0", 1), null, false, "data:image/png;base64,AA==", 0},
            {"plus and slash", QByteArray("\xfb\xff"), null, false, "data:image/png;base64,+/8=", 0},
        });
    }

    void cardImageReference()
    {
        const auto [bytes, reference, asCssUrl, expected, logged] =
            row<QByteArray, QString, bool, QString, int>();
        collab()->setCardImage(bytes);
        collab()->setCardImageRef(reference);

        QCOMPARE(collab()->getCardImageRef(asCssUrl), expected);

        QCOMPARE(log().debug(noReference).size(), logged);
    }

    void clearingTheCardImageForgetsBothForms()
    {
        collab()->setCardImage("png");
        collab()->setCardImageRef(QString());
        collab()->clearCardImage();
        QCOMPARE(collab()->getCardImageRef(true), QString());
        QCOMPARE(log().debug(noReference).size(), 1);

        collab()->setCardImageRef("p.png");
        collab()->clearCardImage();
        QCOMPARE(collab()->getCardImageRef(true), QString());
        QCOMPARE(log().debug(noReference).size(), 2);

        collab()->setCardImageRef("p.png");
        collab()->setCardImageRef(QString());
        QCOMPARE(collab()->getCardImageRef(true), QString());
        QCOMPARE(log().debug(noReference).size(), 3);
    }

    void showsAnImageCard_data()
    {
        rows<QByteArray, QString, QString>({
            {"reference", QByteArray(), "http://h/p.png", "http://h/p.png"},
            {"bytes", "png", QString(), "data:image/png;base64,cG5n"},
            {"none", QByteArray(), QString(), ""},
            {"placeholders", QByteArray(), "%0%1%2", "%0%1%2"},
        });
    }

    void showsAnImageCard()
    {
        const auto [bytes, reference, url] = row<QByteArray, QString, QString>();
        QVERIFY(m_session->open());

        for (bool checkHeavy : {false, true}) {
            collab()->setCardImage(bytes);
            collab()->setCardImageRef(reference);
            collab()->showImageCard(checkHeavy);
            QCOMPARE(nextPublish("abc.learner", "showCard").data, card(url));
        }
        QVERIFY(m_session->nothingWasSent());
    }

    void largeImagesAreAnnounced_data()
    {
        const QByteArray none;
        const auto reference = [](int length) { return QString(length, QLatin1Char('r')); };
        rows<QByteArray, QString, bool, bool>({
            {"524288", none, reference(524288), true, false},
            {"524289", none, reference(524289), true, true},
            {"a million", none, reference(1000000), true, true},
            {"524289, unchecked", none, reference(524289), false, false},
            // 22 characters in front of four for each three bytes.
            {"bytes of 524286 characters", QByteArray(393198, 'x'), QString(), true, false},
            {"bytes of 524290 characters", QByteArray(393199, 'x'), QString(), true, true},
        });
    }

    void largeImagesAreAnnounced()
    {
        const auto [bytes, reference, checkHeavy, announced] = row<QByteArray, QString, bool, bool>();
        QVERIFY(m_session->open());
        collab()->setCardImage(bytes);
        collab()->setCardImageRef(reference);
        const QString url = collab()->getCardImageRef(false);

        collab()->showImageCard(checkHeavy);

        if (announced)
            QCOMPARE(nextPublish("abc.learner", "heavy").data, QStringLiteral("\"%0\""));
        QVERIFY(nextPublish("abc.learner", "showCard").data == card(url));
        QVERIFY(m_session->nothingWasSent());
    }

    void aShownCardIsForgotten()
    {
        QVERIFY(m_session->open());
        collab()->setCardImage("png");
        collab()->setCardImageRef("p.png");
        collab()->showImageCard(true);
        QCOMPARE(nextPublish("abc.learner", "showCard").data, card("data:image/png;base64,cG5n"));
        QCOMPARE(log().debug(noReference).size(), 0);

        collab()->showImageCard(true);

        QCOMPARE(log().debug(noReference).size(), 1);
        QCOMPARE(nextPublish("abc.learner", "showCard").data, card(QString()));
    }

    void currentLesson_data()
    {
        rows<QString, QString, QString>({
            {"plain", "l1", "Fractions", R"({"lessonId":"l1", "name":"Fractions"})"},
            {"empty", "", "", R"({"lessonId":"", "name":""})"},
            {"placeholders", "%1", "%0%1", R"({"lessonId":"%1", "name":"%0%1"})"},
            {"not escaped", "a\"b", "c\\d", "{\"lessonId\":\"a\"b\", \"name\":\"c\\d\"}"},
            {"outside ASCII", "l2", "Übung", R"({"lessonId":"l2", "name":"Übung"})"},
        });
    }

    void currentLesson()
    {
        const auto [id, name, data] = row<QString, QString, QString>();
        QVERIFY(m_session->open());

        collab()->sendCurrentLessonToRemote(id, name);

        QCOMPARE(nextPublish("abc.controller", "currentLesson").data, data);
    }

    void whatHasNoDataGoesOutUnfilled()
    {
        QVERIFY(m_session->open());

        collab()->sendHeavy();
        QCOMPARE(nextPublish("abc.learner", "heavy").data, QStringLiteral("\"%0\""));
        collab()->sendPresenterIsActiveToRemote();
        QCOMPARE(nextPublish("abc.controller", "presenterIsActive").data, QStringLiteral("\"%0\""));
    }

    void currentCard_data()
    {
        rows<int, int, QString>({
            {"none", 3, 0, R"({"currentCard":"3", "cards": [], "totalCards":"0"})"},
            {"one", 1, 1, R"({"currentCard":"1", "cards": [{"name":"1"}], "totalCards":"1"})"},
            {"three", 2, 3,
             R"({"currentCard":"2", "cards": [{"name":"1"},{"name":"2"},{"name":"3"}], "totalCards":"3"})"},
            {"negative", -1, -2, R"({"currentCard":"-1", "cards": [], "totalCards":"-2"})"},
        });
    }

    void currentCard()
    {
        const auto [current, total, data] = row<int, int, QString>();
        QVERIFY(m_session->open());

        collab()->sendCurrentCardToRemote(current, total);

        QCOMPARE(nextPublish("abc.controller", "currentCard").data, data);
    }
};

QTEST_GUILESS_MAIN(TestPresenterCollabCards)
#include "tst_PresenterCollabCards.moc"
