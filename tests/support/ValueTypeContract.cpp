#include "support/ValueTypeContract.h"

#include <QMetaType>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

namespace {

// As SIGNAL() and SLOT() write them.
QByteArray signal(const QByteArray& name, const QByteArray& type)
{
    return QByteArray::number(QSIGNAL_CODE) + name + '(' + type + ')';
}

QByteArray slot(const QByteArray& name, const QByteArray& type)
{
    return QByteArray::number(QSLOT_CODE) + name + '(' + type + ')';
}

} // namespace

void ValueTypeHost::endThread()
{
    thread()->quit();
}

ValueTypeContract::ValueTypeContract(const ValueType& type) : m_type(type) {}

void ValueTypeContract::init()
{
    m_log = std::make_unique<LogRecorder>();
    m_handler = std::make_unique<CollaborationMessageHandler>();
}

void ValueTypeContract::cleanup()
{
    m_handler.reset();
    // Qt warns of types that it cannot queue and of signatures that it does not know.
    const QStringList warnings = m_log->warnings();
    m_log.reset();
    QCOMPARE(warnings, QStringList());
}

void ValueTypeContract::isRegisteredUnderBothSpellings()
{
    QCOMPARE(QMetaType::type(m_type.name), m_type.id);
    QCOMPARE(QMetaType::type("Calyx::" + m_type.name), m_type.id);
}

void ValueTypeContract::mayBeRegisteredAgain()
{
    m_type.registerAgain();
    m_type.registerAgain();
    QCOMPARE(QMetaType::type(m_type.name), m_type.id);
    QCOMPARE(QMetaType::type("Calyx::" + m_type.name), m_type.id);
}

void ValueTypeContract::spellings()
{
    QTest::addColumn<QByteArray>("signal");
    QTest::addColumn<QByteArray>("slot");
    QTest::addColumn<bool>("qualified");
    const QByteArray qualified = "Calyx::" + m_type.name;
    QTest::newRow(m_type.name.constData())
        << signal("told", m_type.name) << slot("take", m_type.name) << false;
    QTest::newRow(qualified.constData())
        << signal("toldQualified", qualified) << slot("takeQualified", qualified) << true;
}

QByteArray ValueTypeContract::signalOfTheHandler() const
{
    return signal(m_type.signal, m_type.name);
}

void ValueTypeContract::queuedConnectionByString()
{
    QFETCH(QByteArray, signal);
    QFETCH(QByteArray, slot);
    QFETCH(bool, qualified);
    const auto sender = m_type.newHost();
    const auto receiver = m_type.newHost();
    QVERIFY(
        connect(sender.get(), signal.constData(), receiver.get(), slot.constData(), Qt::QueuedConnection));
    sender->tell(qualified);
    QCOMPARE(receiver->taken, QStringList());
    QTRY_COMPARE(receiver->taken, QStringList(m_type.told));
}

void ValueTypeContract::queuedConnectionOfTheHandlersSignal()
{
    const auto host = m_type.newHost();
    QVERIFY(connect(m_handler.get(), signalOfTheHandler().constData(), host.get(),
                    slot("take", m_type.name).constData(), Qt::QueuedConnection));
    m_type.handle(m_handler.get());
    QCOMPARE(host->taken, QStringList());
    QTRY_COMPARE(host->taken, QStringList(m_type.handled));
}

void ValueTypeContract::connectionAcrossThreads()
{
    QThread thread;
    const auto host = m_type.newHost();
    host->moveToThread(&thread);
    QVERIFY(connect(m_handler.get(), signalOfTheHandler().constData(), host.get(),
                    slot("take", m_type.name).constData()));
    // Behind the delivery.
    QVERIFY(connect(m_handler.get(), signalOfTheHandler().constData(), host.get(), SLOT(endThread())));
    thread.start();
    m_type.handle(m_handler.get());
    const bool ended = thread.wait(30000);
    thread.quit();
    thread.wait();
    QVERIFY(ended);
    QCOMPARE(host->taken, QStringList(m_type.handled));
}

void ValueTypeContract::signalSpyByString()
{
    QFETCH(QByteArray, signal);
    QFETCH(bool, qualified);
    const auto host = m_type.newHost();
    QSignalSpy spy(host.get(), signal.constData());
    QVERIFY(spy.isValid());
    host->tell(qualified);
    QCOMPARE(spy.size(), 1);
    QCOMPARE(m_type.textOf(spy.first().first()), m_type.told);
}
