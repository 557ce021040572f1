#include "support/LogRecorder.h"

#include <CalyxClient/CollaborationMessageHandler>
#include <CalyxClient/RemoteControlMessage>

#include <QObject>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <memory>
#include <type_traits>

using Calyx::RemoteControlMessage;

namespace {

const QVariantMap BODY{{QStringLiteral("from"), QStringLiteral("dev")},
                       {QStringLiteral("type"), QStringLiteral("resume")}};

QString textOf(const RemoteControlMessage& message)
{
    return message.from + QLatin1Char('/') + message.type + QLatin1Char('/') + message.data.toString();
}

} // namespace

/// A host's own signals and slots, in both spellings.
class Host : public QObject
{
    Q_OBJECT

public:
    using RemoteControlMessage = Calyx::RemoteControlMessage;
    QStringList taken;

Q_SIGNALS:
    void commanded(RemoteControlMessage message);
    void commandedQualified(Calyx::RemoteControlMessage message);

public Q_SLOTS:
    void take(RemoteControlMessage message) { taken.append(textOf(message)); }
    void takeQualified(Calyx::RemoteControlMessage message) { taken.append(textOf(message)); }
};

class tst_RemoteControlMessage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void isEmptyAtFirst();
    void takesSenderTypeAndDataInThisOrder();
    void isAValue();
    void isRegisteredUnderBothSpellings();
    void mayBeRegisteredAgain();

    void queuedConnectionByString_data();
    void queuedConnectionByString();
    void queuedConnectionOfTheHandlersSignal();
    void queuedConnectionToALambda();
    void connectionAcrossThreads();
    void signalSpyByString_data();
    void signalSpyByString();
    void signalSpyByPointer();

private:
    std::unique_ptr<CollaborationMessageHandler> m_handler;
    std::unique_ptr<LogRecorder> m_log;
};

void tst_RemoteControlMessage::init()
{
    m_log = std::make_unique<LogRecorder>();
    m_handler = std::make_unique<CollaborationMessageHandler>();
}

void tst_RemoteControlMessage::cleanup()
{
    m_handler.reset();
    // Qt warns of types that it cannot queue and of signatures that it does not know.
    const QStringList warnings = m_log->warnings();
    m_log.reset();
    QCOMPARE(warnings, QStringList());
}

void tst_RemoteControlMessage::isEmptyAtFirst()
{
    const RemoteControlMessage message;
    QVERIFY(message.from.isEmpty() && message.type.isEmpty());
    QVERIFY(!message.data.isValid());
}

void tst_RemoteControlMessage::takesSenderTypeAndDataInThisOrder()
{
    const RemoteControlMessage message(QStringLiteral("sender"), QStringLiteral("pause"), QVariantList{1});
    QCOMPARE(message.from, QStringLiteral("sender"));
    QCOMPARE(message.type, QStringLiteral("pause"));
    QCOMPARE(message.data, QVariant(QVariantList{1}));
}

void tst_RemoteControlMessage::isAValue()
{
    static_assert(std::is_copy_constructible_v<RemoteControlMessage> &&
                  std::is_copy_assignable_v<RemoteControlMessage>);
    static_assert(std::is_default_constructible_v<RemoteControlMessage>);
    const RemoteControlMessage message(QStringLiteral("sender"), QStringLiteral("pause"), 5);
    RemoteControlMessage copy = message;
    copy.data = QStringLiteral("other");
    QCOMPARE(message.data, QVariant(5));
    const QVariant variant = QVariant::fromValue(copy);
    QCOMPARE(textOf(variant.value<RemoteControlMessage>()), QStringLiteral("sender/pause/other"));
}

void tst_RemoteControlMessage::isRegisteredUnderBothSpellings()
{
    QCOMPARE(QMetaType::type("RemoteControlMessage"), qMetaTypeId<RemoteControlMessage>());
    QCOMPARE(QMetaType::type("Calyx::RemoteControlMessage"), qMetaTypeId<RemoteControlMessage>());
}

void tst_RemoteControlMessage::mayBeRegisteredAgain()
{
    const int type = qMetaTypeId<RemoteControlMessage>();
    Calyx::registerRemoteControlMessage();
    Calyx::registerRemoteControlMessage();
    QCOMPARE(QMetaType::type("RemoteControlMessage"), type);
    QCOMPARE(QMetaType::type("Calyx::RemoteControlMessage"), type);
}

void tst_RemoteControlMessage::queuedConnectionByString_data()
{
    QTest::addColumn<bool>("qualified");
    QTest::newRow("RemoteControlMessage") << false;
    QTest::newRow("Calyx::RemoteControlMessage") << true;
}

void tst_RemoteControlMessage::queuedConnectionByString()
{
    QFETCH(bool, qualified);
    Host sender;
    Host receiver;
    const char* signal = qualified ? SIGNAL(commandedQualified(Calyx::RemoteControlMessage))
                                   : SIGNAL(commanded(RemoteControlMessage));
    const char* slot =
        qualified ? SLOT(takeQualified(Calyx::RemoteControlMessage)) : SLOT(take(RemoteControlMessage));
    QVERIFY(connect(&sender, signal, &receiver, slot, Qt::QueuedConnection));
    const RemoteControlMessage message(QStringLiteral("sender"), QStringLiteral("nextCard"), 7);
    qualified ? sender.commandedQualified(message) : sender.commanded(message);
    QCOMPARE(receiver.taken, QStringList());
    QTRY_COMPARE(receiver.taken, QStringList({QStringLiteral("sender/nextCard/7")}));
}

void tst_RemoteControlMessage::queuedConnectionOfTheHandlersSignal()
{
    Host host;
    QVERIFY(connect(m_handler.get(), SIGNAL(remoteControl(RemoteControlMessage)), &host,
                    SLOT(take(RemoteControlMessage)), Qt::QueuedConnection));
    m_handler->dataRemote(BODY, QStringLiteral("payload"));
    QCOMPARE(host.taken, QStringList());
    QTRY_COMPARE(host.taken, QStringList({QStringLiteral("dev/resume/payload")}));
}

void tst_RemoteControlMessage::queuedConnectionToALambda()
{
    QStringList taken;
    connect(
        m_handler.get(), &CollaborationMessageHandler::remoteControl, this,
        [&taken](const RemoteControlMessage& message) { taken.append(textOf(message)); },
        Qt::QueuedConnection);
    m_handler->dataRemote(BODY, QVariant());
    QTRY_COMPARE(taken, QStringList({QStringLiteral("dev/resume/")}));
}

void tst_RemoteControlMessage::connectionAcrossThreads()
{
    QThread thread;
    Host host;
    host.moveToThread(&thread);
    QVERIFY(connect(m_handler.get(), SIGNAL(remoteControl(RemoteControlMessage)), &host,
                    SLOT(take(RemoteControlMessage))));
    connect(&host, &Host::commanded, &thread, &QThread::quit, Qt::DirectConnection);
    // Ends the thread behind the delivery.
    connect(m_handler.get(), &CollaborationMessageHandler::remoteControl, &host,
            [&host](const RemoteControlMessage& message) { emit host.commanded(message); });
    thread.start();
    m_handler->dataRemote(BODY, QVariant());
    QVERIFY(thread.wait(30000));
    QCOMPARE(host.taken, QStringList({QStringLiteral("dev/resume/")}));
}

void tst_RemoteControlMessage::signalSpyByString_data()
{
    queuedConnectionByString_data();
}

void tst_RemoteControlMessage::signalSpyByString()
{
    QFETCH(bool, qualified);
    Host host;
    QSignalSpy spy(&host, qualified ? SIGNAL(commandedQualified(Calyx::RemoteControlMessage))
                                    : SIGNAL(commanded(RemoteControlMessage)));
    QVERIFY(spy.isValid());
    const RemoteControlMessage message(QStringLiteral("sender"), QStringLiteral("nextCard"), 7);
    qualified ? host.commandedQualified(message) : host.commanded(message);
    QCOMPARE(spy.size(), 1);
    QCOMPARE(textOf(spy.first().first().value<RemoteControlMessage>()), QStringLiteral("sender/nextCard/7"));
}

void tst_RemoteControlMessage::signalSpyByPointer()
{
    QSignalSpy spy(m_handler.get(), &CollaborationMessageHandler::remoteControl);
    QVERIFY(spy.isValid());
    m_handler->dataRemote(BODY, QVariant());
    QCOMPARE(spy.size(), 1);
    QCOMPARE(textOf(spy.first().first().value<RemoteControlMessage>()), QStringLiteral("dev/resume/"));
}

QTEST_GUILESS_MAIN(tst_RemoteControlMessage)
#include "tst_RemoteControlMessage.moc"
