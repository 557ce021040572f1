#include "support/ValueTypeContract.h"

#include <CalyxClient/RemoteControlMessage>

#include <QSignalSpy>
#include <QTest>

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
class Host : public ValueTypeHost
{
    Q_OBJECT

public:
    using RemoteControlMessage = Calyx::RemoteControlMessage;

    void tell(bool qualified) override
    {
        const RemoteControlMessage message(QStringLiteral("sender"), QStringLiteral("nextCard"), 7);
        qualified ? toldQualified(message) : told(message);
    }

Q_SIGNALS:
    void told(RemoteControlMessage message);
    void toldQualified(Calyx::RemoteControlMessage message);

public Q_SLOTS:
    void take(RemoteControlMessage message) { taken.append(textOf(message)); }
    void takeQualified(Calyx::RemoteControlMessage message) { taken.append(textOf(message)); }
};

class tst_RemoteControlMessage : public ValueTypeContract
{
    Q_OBJECT

public:
    tst_RemoteControlMessage() : ValueTypeContract(messageType()) {}

private Q_SLOTS:
    void isEmptyAtFirst()
    {
        const RemoteControlMessage message;
        QVERIFY(message.from.isEmpty() && message.type.isEmpty());
        QVERIFY(!message.data.isValid());
    }

    void takesSenderTypeAndDataInThisOrder()
    {
        const RemoteControlMessage message(QStringLiteral("sender"), QStringLiteral("pause"),
                                           QVariantList{1});
        QCOMPARE(message.from, QStringLiteral("sender"));
        QCOMPARE(message.type, QStringLiteral("pause"));
        QCOMPARE(message.data, QVariant(QVariantList{1}));
    }

    void isAValue()
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

    void queuedConnectionToALambda()
    {
        QStringList taken;
        connect(
            m_handler.get(), &CollaborationMessageHandler::remoteControl, this,
            [&taken](const RemoteControlMessage& message) { taken.append(textOf(message)); },
            Qt::QueuedConnection);
        m_handler->dataRemote(BODY, QVariant());
        QTRY_COMPARE(taken, QStringList({QStringLiteral("dev/resume/")}));
    }

    void signalSpyByPointer()
    {
        QSignalSpy spy(m_handler.get(), &CollaborationMessageHandler::remoteControl);
        QVERIFY(spy.isValid());
        m_handler->dataRemote(BODY, QVariant());
        QCOMPARE(spy.size(), 1);
        QCOMPARE(textOf(spy.first().first().value<RemoteControlMessage>()), QStringLiteral("dev/resume/"));
    }

private:
    static ValueType messageType()
    {
        ValueType type;
        type.name = "RemoteControlMessage";
        type.id = qMetaTypeId<RemoteControlMessage>();
        type.registerAgain = &Calyx::registerRemoteControlMessage;
        type.textOf = [](const QVariant& value) { return textOf(value.value<RemoteControlMessage>()); };
        type.newHost = [] { return std::make_unique<Host>(); };
        type.told = QStringLiteral("sender/nextCard/7");
        type.signal = "remoteControl";
        type.handle = [](CollaborationMessageHandler* handler) {
            handler->dataRemote(BODY, QStringLiteral("payload"));
        };
        type.handled = QStringLiteral("dev/resume/payload");
        return type;
    }
};

QTEST_GUILESS_MAIN(tst_RemoteControlMessage)
#include "tst_RemoteControlMessage.moc"
