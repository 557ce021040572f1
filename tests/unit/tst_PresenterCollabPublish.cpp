#include "collab/CalyxCollabMessage.h"
#include "collab/PresenterCollab.h"
#include "support/Rows.h"
#include "support/SessionTest.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

using Calyx::CalyxCollabMessage;

namespace {

const auto emptyText = QStringLiteral("\"\"");

// What Qt's debug stream does to a text that it quotes.
QString unquoted(QString line)
{
    return line.replace(QLatin1String("\\\""), QLatin1String("\""))
        .replace(QLatin1String("\\n"), QLatin1String("\n"));
}

} // namespace

/// What the session publishes.
class TestPresenterCollabPublish : public SessionTest
{
    Q_OBJECT

private Q_SLOTS:
    void compressedPublish_data()
    {
        const QString large(300000, QLatin1Char('x'));
        rows<QString, QString, QString>({
            {"below the session", ".learner", "abc.learner", "{\"a\":1}"},
            {"without the point", "x.learner", "x.learner", "{}"},
            {"empty address", "", "", "{}"},
            {"a point alone", ".", "abc.", "{}"},
            {"the session itself", "abc", "abc", "[1]"},
            {"a device", ".user.d1", "abc.user.d1", "\"\""},
            {"empty data", ".learner", "abc.learner", ""},
            {"outside ASCII", ".learner", "abc.learner", "h\xc3\xa9 \xe4\xb8\xad \xf0\x9f\x98\x80"},
            {"brackets and blanks", ".learner", "abc.learner", "[ 1, [ 2 ] ]"},
            {"large", ".learner", "abc.learner", large},
        });
    }

    void compressedPublish()
    {
        const auto [address, resolved, data] = row<QString, QString, QString>();
        QVERIFY(m_session->open());
        m_session->forgetLog();

        collab()->publishMessage(address, "someType", data);
        collab()->publishMessage64(address, "someType", data);

        for (int i = 0; i < 2; ++i)
            QCOMPARE(nextPublish(qPrintable(resolved), "someType").data, data);
        QVERIFY2(log().messages().isEmpty(), "a compressed publish is not logged");
    }

    void compressedPublishToTheSession()
    {
        QVERIFY(m_session->open());

        collab()->publishMessage("hello", "{\"x\":2}");

        QCOMPARE(nextPublish("abc", "hello").data, QStringLiteral("{\"x\":2}"));
    }

    void placeholdersInValuesGoOutAsTheyAre()
    {
        m_session = std::make_unique<LiveSession>("t%1", "u%2%3");
        QVERIFY(m_session->open()); // reads the registers

        collab()->publishMessage(".%1%3", "%0%3", "%1 %2");
        auto publish = m_session->nextPublish();
        QCOMPARE(publish.text, LiveSession::compressedFrame("t%1.%1%3", "u%2%3", "%0%3", publish.base64));
        QCOMPARE(publish.data, QStringLiteral("%1 %2"));

        CalyxCollabMessage message;
        message.settype("%1");
        collab()->publishMessage("%1", &message);
        publish = m_session->nextPublish();
        QCOMPARE(publish.address, QStringLiteral("%1"));
        QCOMPARE(publish.type, QStringLiteral("%1"));
        QCOMPARE(publish.from, QStringLiteral("u%2%3"));
    }

    void compressedPublishWhileDisconnectedIsDropped()
    {
        collab()->publishMessage("type", "1");
        QCOMPARE(dropped(), 1);
        collab()->publishMessage(".learner", "type", "2");
        QCOMPARE(dropped(), 2);
        collab()->publishMessage64(".learner", "type", "3");
        QCOMPARE(dropped(), 3);

        QVERIFY(m_session->open());
        QVERIFY(m_session->nothingWasSent());

        server().closeSession();
        QTRY_VERIFY(!collab()->isConnected());
        collab()->publishMessage("type", "4");
        QCOMPARE(dropped(), 4);

        server().setUpgrade(Server::Mute);
        collab()->open({"websocket"});
        collab()->publishMessage("type", "5");
        QCOMPARE(dropped(), 5);
        QVERIFY(m_session->nothingWasSent());
    }

    void objectPublish_data()
    {
        const auto json = QStringLiteral("{\n    \"a\": 1,\n    \"b\": \"x\"\n}\n");
        rows<QString, QString, QVariantMap, QString>({
            {"below the session", ".learner", "abc.learner", QVariantMap{{"b", "x"}, {"a", 1}}, json},
            {"without the point", "x.y", "x.y", QVariantMap{{"b", "x"}, {"a", 1}}, json},
            {"empty address", "", "", QVariantMap{{"b", "x"}, {"a", 1}}, json},
            {"empty map", "abc", "abc", QVariantMap{}, "{\n}\n"},
        });
    }

    void objectPublish()
    {
        const auto [address, resolved, map, data] = row<QString, QString, QVariantMap, QString>();
        QVERIFY(m_session->open());
        CalyxCollabMessage message;
        message.setfrom("somebody else");
        message.settype("someType");
        message.setdata(map);
        m_session->forgetLog();

        collab()->publishMessage(address, &message);

        const auto publish = m_session->nextPublish();
        const auto json =
            QStringLiteral("{\n    \"data\": [\n        \"%1\"\n    ],\n    \"from\": \"teacher-7\",\n"
                           "    \"sourceSystem\": \"Lumora\",\n    \"type\": \"someType\",\n"
                           "    \"version\": \"3.0.0\"\n}\n")
                .arg(publish.base64);
        const auto frame = QStringLiteral("{\"type\":\"publish\",\"address\":\"") + resolved +
                           QStringLiteral("\",\"body\":") + json + QLatin1Char('}');
        // SockJS framing takes the blank in front of a closing bracket.
        QCOMPARE(publish.text, QString(frame).replace(QLatin1String(" ]"), QLatin1String("]")));
        QCOMPARE(publish.data, data);
        QCOMPARE(message.from(), QStringLiteral("teacher-7"));
        QCOMPARE(message.data(), QVariant(QVariantList{publish.base64}));

        const auto transmitted = log().debug("TRANSMIT: ");
        QCOMPARE(transmitted.size(), 1);
        QVERIFY2(unquoted(transmitted.first()).contains(frame), qPrintable(transmitted.first()));
    }

    void objectPublishOfADataObject()
    {
        QVERIFY(m_session->open());
        CalyxCollabMessage carried;
        carried.settype("inner");
        CalyxCollabMessage message;
        message.setdata(QVariantMap{{"not", "this"}});
        message.setdataobject(&carried);

        collab()->publishMessage(".learner", &message);

        const auto publish = m_session->nextPublish();
        QVERIFY2(publish.data.contains(QLatin1String("\"type\": \"inner\"")), qPrintable(publish.data));
        QVERIFY(!publish.data.contains(QLatin1String("this")));
    }

    void objectPublishWithoutDataIsLoggedAndSent()
    {
        const auto invalid = QStringLiteral("[CalyxCollabMessage] data object in message is invalid!");
        QVERIFY(m_session->open());

        CalyxCollabMessage empty;
        collab()->publishMessage(".learner", &empty);
        QCOMPARE(log().debug(invalid).size(), 1);
        auto publish = m_session->nextPublish();
        QVERIFY(publish.body.contains("data"));
        QVERIFY(publish.body.value("data").isNull());

        CalyxCollabMessage text;
        text.setdata("as it stood");
        collab()->publishMessage(".learner", &text);
        QCOMPARE(log().debug(invalid).size(), 2);
        publish = m_session->nextPublish();
        QCOMPARE(publish.body.value("data").toString(), QStringLiteral("as it stood"));
    }

    void objectPublishWhileDisconnectedIsHandedOn()
    {
        CalyxCollabMessage message;
        message.setdata(QVariantMap{{"a", 1}});

        collab()->publishMessage(".learner", &message);

        QVERIFY(log().debug(LiveSession::notConnected()).isEmpty());
        QCOMPARE(log().debug("TRANSMIT: ").size(), 1);
        QCOMPARE(message.from(), QStringLiteral("teacher-7"));
        QVERIFY(m_session->open());
        QVERIFY(m_session->nothingWasSent());
    }

    void removeLearnerTellsTheDevice()
    {
        QSignalSpy gone(collab(), &PresenterCollab::learnerUnregister);
        collab()->removeLearner("d1");
        QCOMPARE(gone.takeFirst().first().toString(), QStringLiteral("d1"));
        QCOMPARE(dropped(), 1);
        QVERIFY(m_session->open());

        collab()->removeLearner("d%1");

        QCOMPARE(gone.size(), 1);
        QCOMPARE(gone.first().first().toString(), QStringLiteral("d%1"));
        const auto publish = m_session->nextPublish();
        QCOMPARE(publish.address, QStringLiteral("abc.user.d%1"));
        QCOMPARE(publish.type, QStringLiteral("disconnect"));
        QCOMPARE(publish.data, emptyText);
    }
};

QTEST_GUILESS_MAIN(TestPresenterCollabPublish)

#include "tst_PresenterCollabPublish.moc"
