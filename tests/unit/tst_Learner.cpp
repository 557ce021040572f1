#include "support/LogRecorder.h"

#include <CalyxClient/CollaborationMessageHandler>
#include <CalyxClient/Learner>

#include <QObject>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <memory>
#include <type_traits>

using Calyx::Learner;

namespace {

QString textOf(const Learner& learner)
{
    return learner.deviceId + QLatin1Char('/') + learner.userName + QLatin1Char('/') + learner.deviceType;
}

} // namespace

/// A host's own signals and slots, in both spellings.
class Host : public QObject
{
    Q_OBJECT

public:
    using Learner = Calyx::Learner;
    QStringList taken;

Q_SIGNALS:
    void joined(Learner learner);
    void joinedQualified(Calyx::Learner learner);

public Q_SLOTS:
    void take(Learner learner) { taken.append(textOf(learner)); }
    void takeQualified(Calyx::Learner learner) { taken.append(textOf(learner)); }
};

class tst_Learner : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void isEmptyAtFirst();
    void takesIdNameAndDeviceInThisOrder();
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

void tst_Learner::init()
{
    m_log = std::make_unique<LogRecorder>();
    m_handler = std::make_unique<CollaborationMessageHandler>();
}

void tst_Learner::cleanup()
{
    m_handler.reset();
    // Qt warns of types that it cannot queue and of signatures that it does not know.
    const QStringList warnings = m_log->warnings();
    m_log.reset();
    QCOMPARE(warnings, QStringList());
}

void tst_Learner::isEmptyAtFirst()
{
    const Learner learner;
    QVERIFY(learner.deviceId.isEmpty() && learner.userName.isEmpty() && learner.deviceType.isEmpty());
}

void tst_Learner::takesIdNameAndDeviceInThisOrder()
{
    const Learner learner(QStringLiteral("id"), QStringLiteral("name"), QStringLiteral("tablet"));
    QCOMPARE(learner.deviceId, QStringLiteral("id"));
    QCOMPARE(learner.userName, QStringLiteral("name"));
    QCOMPARE(learner.deviceType, QStringLiteral("tablet"));
}

void tst_Learner::isAValue()
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

void tst_Learner::isRegisteredUnderBothSpellings()
{
    QCOMPARE(QMetaType::type("Learner"), qMetaTypeId<Learner>());
    QCOMPARE(QMetaType::type("Calyx::Learner"), qMetaTypeId<Learner>());
}

void tst_Learner::mayBeRegisteredAgain()
{
    const int type = qMetaTypeId<Learner>();
    Calyx::registerLearner();
    Calyx::registerLearner();
    QCOMPARE(QMetaType::type("Learner"), type);
    QCOMPARE(QMetaType::type("Calyx::Learner"), type);
}

void tst_Learner::queuedConnectionByString_data()
{
    QTest::addColumn<bool>("qualified");
    QTest::newRow("Learner") << false;
    QTest::newRow("Calyx::Learner") << true;
}

void tst_Learner::queuedConnectionByString()
{
    QFETCH(bool, qualified);
    Host sender;
    Host receiver;
    const char* signal = qualified ? SIGNAL(joinedQualified(Calyx::Learner)) : SIGNAL(joined(Learner));
    const char* slot = qualified ? SLOT(takeQualified(Calyx::Learner)) : SLOT(take(Learner));
    QVERIFY(connect(&sender, signal, &receiver, slot, Qt::QueuedConnection));
    const Learner learner(QStringLiteral("id"), QStringLiteral("name"), QStringLiteral("phone"));
    qualified ? sender.joinedQualified(learner) : sender.joined(learner);
    QCOMPARE(receiver.taken, QStringList());
    QTRY_COMPARE(receiver.taken, QStringList({QStringLiteral("id/name/phone")}));
}

void tst_Learner::queuedConnectionOfTheHandlersSignal()
{
    Host host;
    QVERIFY(connect(m_handler.get(), SIGNAL(learnerJoin(Learner)), &host, SLOT(take(Learner)),
                    Qt::QueuedConnection));
    m_handler->dataJoin({{QStringLiteral("from"), QStringLiteral("dev")}},
                        QVariantMap{{QStringLiteral("userName"), QStringLiteral("Ann")}});
    QCOMPARE(host.taken, QStringList());
    QTRY_COMPARE(host.taken, QStringList({QStringLiteral("dev/Ann/")}));
}

void tst_Learner::queuedConnectionToALambda()
{
    QStringList taken;
    connect(
        m_handler.get(), &CollaborationMessageHandler::learnerJoin, this,
        [&taken](const Learner& learner) { taken.append(textOf(learner)); }, Qt::QueuedConnection);
    m_handler->dataJoin({{QStringLiteral("from"), QStringLiteral("dev")}}, QVariant());
    QTRY_COMPARE(taken, QStringList({QStringLiteral("dev//")}));
}

void tst_Learner::connectionAcrossThreads()
{
    QThread thread;
    Host host;
    host.moveToThread(&thread);
    QVERIFY(connect(m_handler.get(), SIGNAL(learnerJoin(Learner)), &host, SLOT(take(Learner))));
    connect(&host, &Host::joined, &thread, &QThread::quit, Qt::DirectConnection);
    // Ends the thread behind the delivery.
    connect(m_handler.get(), &CollaborationMessageHandler::learnerJoin, &host,
            [&host](const Learner& learner) { emit host.joined(learner); });
    thread.start();
    m_handler->dataJoin({{QStringLiteral("from"), QStringLiteral("dev")}}, QVariant());
    QVERIFY(thread.wait(30000));
    QCOMPARE(host.taken, QStringList({QStringLiteral("dev//")}));
}

void tst_Learner::signalSpyByString_data()
{
    queuedConnectionByString_data();
}

void tst_Learner::signalSpyByString()
{
    QFETCH(bool, qualified);
    Host host;
    QSignalSpy spy(&host, qualified ? SIGNAL(joinedQualified(Calyx::Learner)) : SIGNAL(joined(Learner)));
    QVERIFY(spy.isValid());
    const Learner learner(QStringLiteral("id"), QStringLiteral("name"), QStringLiteral("phone"));
    qualified ? host.joinedQualified(learner) : host.joined(learner);
    QCOMPARE(spy.size(), 1);
    QCOMPARE(textOf(spy.first().first().value<Learner>()), QStringLiteral("id/name/phone"));
}

void tst_Learner::signalSpyByPointer()
{
    QSignalSpy spy(m_handler.get(), &CollaborationMessageHandler::learnerJoin);
    QVERIFY(spy.isValid());
    m_handler->dataJoin({{QStringLiteral("from"), QStringLiteral("dev")}}, QVariant());
    QCOMPARE(spy.size(), 1);
    QCOMPARE(textOf(spy.first().first().value<Learner>()), QStringLiteral("dev//"));
}

QTEST_GUILESS_MAIN(tst_Learner)
#include "tst_Learner.moc"
