#include "support/ValueTypeContract.h"

#include <CalyxClient/Learner>

#include <QSignalSpy>
#include <QTest>

#include <type_traits>

using Calyx::Learner;

namespace {

QString textOf(const Learner& learner)
{
    return learner.deviceId + QLatin1Char('/') + learner.userName + QLatin1Char('/') + learner.deviceType;
}

} // namespace

/// A host's own signals and slots, in both spellings.
class Host : public ValueTypeHost
{
    Q_OBJECT

public:
    using Learner = Calyx::Learner;

    void tell(bool qualified) override
    {
        const Learner learner(QStringLiteral("id"), QStringLiteral("name"), QStringLiteral("phone"));
        qualified ? toldQualified(learner) : told(learner);
    }

Q_SIGNALS:
    void told(Learner learner);
    void toldQualified(Calyx::Learner learner);

public Q_SLOTS:
    void take(Learner learner) { taken.append(textOf(learner)); }
    void takeQualified(Calyx::Learner learner) { taken.append(textOf(learner)); }
};

class tst_Learner : public ValueTypeContract
{
    Q_OBJECT

public:
    tst_Learner() : ValueTypeContract(learnerType()) {}

private Q_SLOTS:
    void isEmptyAtFirst()
    {
        const Learner learner;
        QVERIFY(learner.deviceId.isEmpty() && learner.userName.isEmpty() && learner.deviceType.isEmpty());
    }

    void takesIdNameAndDeviceInThisOrder()
    {
        const Learner learner(QStringLiteral("id"), QStringLiteral("name"), QStringLiteral("tablet"));
        QCOMPARE(learner.deviceId, QStringLiteral("id"));
        QCOMPARE(learner.userName, QStringLiteral("name"));
        QCOMPARE(learner.deviceType, QStringLiteral("tablet"));
    }

    void isAValue()
    {
        static_assert(std::is_copy_constructible_v<Learner> && std::is_copy_assignable_v<Learner>);
        static_assert(std::is_default_constructible_v<Learner>);
        const Learner learner(QStringLiteral("id"), QStringLiteral("name"), QStringLiteral("tablet"));
        Learner copy = learner;
        copy.userName = QStringLiteral("other");
        QCOMPARE(learner.userName, QStringLiteral("name"));
        const QVariant variant = QVariant::fromValue(copy);
        QCOMPARE(textOf(variant.value<Learner>()), QStringLiteral("id/other/tablet"));
    }

    void queuedConnectionToALambda()
    {
        QStringList taken;
        connect(
            m_handler.get(), &CollaborationMessageHandler::learnerJoin, this,
            [&taken](const Learner& learner) { taken.append(textOf(learner)); }, Qt::QueuedConnection);
        m_handler->dataJoin({{QStringLiteral("from"), QStringLiteral("dev")}}, QVariant());
        QTRY_COMPARE(taken, QStringList({QStringLiteral("dev//")}));
    }

    void signalSpyByPointer()
    {
        QSignalSpy spy(m_handler.get(), &CollaborationMessageHandler::learnerJoin);
        QVERIFY(spy.isValid());
        m_handler->dataJoin({{QStringLiteral("from"), QStringLiteral("dev")}}, QVariant());
        QCOMPARE(spy.size(), 1);
        QCOMPARE(textOf(spy.first().first().value<Learner>()), QStringLiteral("dev//"));
    }

private:
    static ValueType learnerType()
    {
        ValueType type;
        type.name = "Learner";
        type.id = qMetaTypeId<Learner>();
        type.registerAgain = &Calyx::registerLearner;
        type.textOf = [](const QVariant& value) { return textOf(value.value<Learner>()); };
        type.newHost = [] { return std::make_unique<Host>(); };
        type.told = QStringLiteral("id/name/phone");
        type.signal = "learnerJoin";
        type.handle = [](CollaborationMessageHandler* handler) {
            handler->dataJoin({{QStringLiteral("from"), QStringLiteral("dev")}},
                              QVariantMap{{QStringLiteral("userName"), QStringLiteral("Ann")}});
        };
        type.handled = QStringLiteral("dev/Ann/");
        return type;
    }
};

QTEST_GUILESS_MAIN(tst_Learner)
#include "tst_Learner.moc"
