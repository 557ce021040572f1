// The values that go through signals, Learner and RemoteControlMessage: hosts connect to them by string in
// both spellings, queued, and across threads.

#include "support/LogRecorder.h"
#include "support/Rows.h"
#include "support/TypeNamed.h"

#include <CalyxClient/CollaborationMessageHandler>
#include <CalyxClient/Learner>
#include <CalyxClient/RemoteControlMessage>

#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <memory>
#include <type_traits>

namespace {

QString textOf(const Calyx::Learner& learner)
{
    return learner.deviceId + '/' + learner.userName + '/' + learner.deviceType;
}

QString textOf(const Calyx::RemoteControlMessage& message)
{
    return message.from + '/' + message.type + '/' + message.data.toString();
}

QString textOf(const QVariant& value)
{
    return value.userType() == qMetaTypeId<Calyx::Learner>()
               ? textOf(value.value<Calyx::Learner>())
               : textOf(value.value<Calyx::RemoteControlMessage>());
}

} // namespace

class Host : public QObject
{
    Q_OBJECT

public:
    using Learner = Calyx::Learner;
    using RemoteControlMessage = Calyx::RemoteControlMessage;

    void tellAll()
    {
        emit joined(Learner("id", "name", "phone"));
        emit joinedQualified(Learner("id", "name", "phone"));
        emit commanded(RemoteControlMessage("sender", "nextCard", 7));
        emit commandedQualified(RemoteControlMessage("sender", "nextCard", 7));
    }

    QStringList taken;

Q_SIGNALS:
    void joined(Learner learner);
    void joinedQualified(Calyx::Learner learner);
    void commanded(RemoteControlMessage message);
    void commandedQualified(Calyx::RemoteControlMessage message);

public Q_SLOTS:
    void take(Learner learner) { taken.append(textOf(learner)); }
    void takeQualified(Calyx::Learner learner) { taken.append(textOf(learner)); }
    void take(RemoteControlMessage message) { taken.append(textOf(message)); }
    void takeQualified(Calyx::RemoteControlMessage message) { taken.append(textOf(message)); }
    void endThread() { thread()->quit(); }
};

class tst_ValueTypes : public QObject
{
    Q_OBJECT

    using Learner = Calyx::Learner;
    using RemoteControlMessage = Calyx::RemoteControlMessage;

private Q_SLOTS:
    void init()
    {
        m_log = std::make_unique<LogRecorder>();
        m_handler = std::make_unique<CollaborationMessageHandler>();
    }

    void cleanup()
    {
        m_handler.reset();
        // Qt warns of types that it cannot queue and of signatures that it does not know.
        const QStringList warnings = m_log->warnings();
        m_log.reset();
        QCOMPARE(warnings, QStringList());
    }

    void learnerIsAValue()
    {
        static_assert(std::is_default_constructible_v<Learner> && std::is_copy_assignable_v<Learner>);
        QCOMPARE(textOf(Learner()), QStringLiteral("//"));
        const Learner learner("id", "name", "tablet");
        Learner copy = learner;
        copy.userName = "other";
        QCOMPARE(textOf(learner), QStringLiteral("id/name/tablet"));
        QCOMPARE(textOf(QVariant::fromValue(copy)), QStringLiteral("id/other/tablet"));
    }

    void remoteControlMessageIsAValue()
    {
        using Message = RemoteControlMessage;
        static_assert(std::is_default_constructible_v<Message> && std::is_copy_assignable_v<Message>);
        QCOMPARE(textOf(Message()), QStringLiteral("//"));
        QVERIFY(!Message().data.isValid());
        const Message message("sender", "pause", 5);
        Message copy = message;
        copy.data = QVariantList{1};
        QCOMPARE(textOf(message), QStringLiteral("sender/pause/5"));
        QCOMPARE(QVariant::fromValue(copy).value<Message>().data, QVariant(QVariantList{1}));
    }

    void areRegisteredUnderBothSpellings()
    {
        for (int times = 0; times < 3; ++times) {
            QCOMPARE(typeNamed("Learner"), qMetaTypeId<Learner>());
            QCOMPARE(typeNamed("Calyx::Learner"), qMetaTypeId<Learner>());
            QCOMPARE(typeNamed("RemoteControlMessage"), qMetaTypeId<RemoteControlMessage>());
            QCOMPARE(typeNamed("Calyx::RemoteControlMessage"), qMetaTypeId<RemoteControlMessage>());
            Calyx::registerLearner();
            Calyx::registerRemoteControlMessage();
        }
    }

    void signalsOfAHost_data()
    {
        const QString learner("id/name/phone");
        const QString message("sender/nextCard/7");
        rows<QByteArray, QByteArray, QString>({
            {"Learner", SIGNAL(joined(Learner)), SLOT(take(Learner)), learner},
            {"Calyx::Learner", SIGNAL(joinedQualified(Calyx::Learner)), SLOT(takeQualified(Calyx::Learner)),
             learner},
            {"RemoteControlMessage", SIGNAL(commanded(RemoteControlMessage)),
             SLOT(take(RemoteControlMessage)), message},
            {"Calyx::RemoteControlMessage", SIGNAL(commandedQualified(Calyx::RemoteControlMessage)),
             SLOT(takeQualified(Calyx::RemoteControlMessage)), message},
        });
    }

    void signalsOfAHost()
    {
        const auto [signal, slot, text] = row<QByteArray, QByteArray, QString>();
        Host sender;
        Host receiver;
        QVERIFY(connect(&sender, signal.constData(), &receiver, slot.constData(), Qt::QueuedConnection));
        QSignalSpy spy(&sender, signal.constData());
        QVERIFY(spy.isValid());
        sender.tellAll();
        QCOMPARE(spy.size(), 1);
        QCOMPARE(textOf(spy.first().first()), text);
        QCOMPARE(receiver.taken, QStringList());
        QTRY_COMPARE(receiver.taken, QStringList(text));
    }

    void signalsOfTheHandlerCrossThreads()
    {
        QThread thread;
        Host here;
        Host there;
        QVERIFY(connect(m_handler.get(), SIGNAL(learnerJoin(Learner)), &here, SLOT(take(Learner)),
                        Qt::QueuedConnection));
        QVERIFY(connect(m_handler.get(), SIGNAL(learnerJoin(Learner)), &there, SLOT(take(Learner))));
        QVERIFY(connect(m_handler.get(), SIGNAL(remoteControl(RemoteControlMessage)), &there,
                        SLOT(take(RemoteControlMessage))));
        // Behind the delivery.
        QVERIFY(
            connect(m_handler.get(), SIGNAL(remoteControl(RemoteControlMessage)), &there, SLOT(endThread())));
        there.moveToThread(&thread);
        thread.start();
        m_handler->dataJoin({{"from", "dev"}}, QVariantMap{{"userName", "Ann"}});
        m_handler->dataRemote({{"from", "dev"}, {"type", "resume"}}, "payload");
        const bool ended = thread.wait(30000);
        thread.quit();
        thread.wait();
        QVERIFY(ended);
        QCOMPARE(there.taken, QStringList({"dev/Ann/", "dev/resume/payload"}));
        QCOMPARE(here.taken, QStringList());
        QTRY_COMPARE(here.taken, QStringList("dev/Ann/"));
    }

    void connectionsByPointer()
    {
        using Handler = CollaborationMessageHandler;
        QStringList taken;
        const auto take = [&taken](const auto& value) { taken.append(textOf(value)); };
        connect(m_handler.get(), &Handler::learnerJoin, this, take, Qt::QueuedConnection);
        connect(m_handler.get(), &Handler::remoteControl, this, take, Qt::QueuedConnection);
        QSignalSpy joins(m_handler.get(), &Handler::learnerJoin);
        QSignalSpy commands(m_handler.get(), &Handler::remoteControl);
        m_handler->dataJoin({{"from", "dev"}}, QVariant());
        m_handler->dataRemote({{"from", "dev"}, {"type", "resume"}}, QVariant());
        QCOMPARE(textOf(joins.first().first()), QStringLiteral("dev//"));
        QCOMPARE(textOf(commands.first().first()), QStringLiteral("dev/resume/"));
        QTRY_COMPARE(taken, QStringList({"dev//", "dev/resume/"}));
    }

private:
    std::unique_ptr<LogRecorder> m_log;
    std::unique_ptr<CollaborationMessageHandler> m_handler;
};

QTEST_GUILESS_MAIN(tst_ValueTypes)
#include "tst_ValueTypes.moc"
