#include "interop/support/Host.h"

#include <QJsonDocument>
#include <QTest>
#include <QTimer>

namespace {

constexpr int openLimit = 20000; // milliseconds
constexpr int numbersLimit = 90000;

} // namespace

Host::Host(const QUrl& server, const QString& token)
    : Host(new PresenterCollab(nullptr, server.toString(), QStringLiteral("code"), token,
                               QStringLiteral("host")))
{
    m_isOwner = true;
}

Host::Host(PresenterCollab* collab) : m_collab(collab), m_isOwner(false)
{
    connect(connector(), &SockJSConnector::connected, this, [this] { ++m_connected; });
    connect(connector(), &SockJSConnector::sockJSMessage, this, &Host::take);
    connect(m_collab, &PresenterCollab::connectionClosed, this,
            [this](bool forInactivity) { ++(forInactivity ? m_closedForInactivity : m_closed); });
}

Host::~Host()
{
    if (m_isOwner)
        delete m_collab;
}

void Host::take(const QString& message)
{
    if (!message.isEmpty() && message.at(0).isDigit())
        m_numbers.take(message);
    else
        m_messages.append(message);
}

bool Host::tryOpen(const QStringList& transports)
{
    bool late = false;
    QTimer guard;
    guard.setSingleShot(true);
    connect(&guard, &QTimer::timeout, this, [this, &late] {
        late = true;
        if (m_collab)
            connector()->close();
    });
    guard.start(openLimit);
    m_collab->open(transports);
    if (late)
        qWarning("open() did not come back.");
    return !late;
}

bool Host::open(const QStringList& transports)
{
    const int before = m_connected;
    return tryOpen(transports) &&
           QTest::qWaitFor([&] { return m_collab->isConnected() && m_connected == before + 1; }, openLimit);
}

bool Host::close()
{
    const int before = m_closed;
    m_collab->close();
    return waitForClosed(before + 1);
}

bool Host::waitForClosed(int times)
{
    return QTest::qWaitFor([&] { return m_closed >= times; }, openLimit) && m_closed == times &&
           !m_collab->isConnected();
}

void Host::publish(const QString& type)
{
    m_collab->publishMessage(QStringLiteral(".peer"), type, QStringLiteral("\"Prüfung €\""));
}

bool Host::exchange(int count)
{
    QStringList sent;
    m_messages.clear();
    for (int number = 0; number < count; ++number) {
        sent.append(QStringLiteral("übung %1").arg(number));
        m_collab->publishMessage(sent.last(), QStringLiteral("\"%1\"").arg(number));
    }
    if (!QTest::qWaitFor([&] { return m_messages.size() >= count; }, openLimit) || m_messages.size() > count)
        return false;
    QStringList received;
    for (const QString& message : qAsConst(m_messages)) {
        const QVariantMap frame = QJsonDocument::fromJson(message.toUtf8()).toVariant().toMap();
        received.append(frame.value(QStringLiteral("body")).toMap().value(QStringLiteral("type")).toString());
    }
    return received == sent;
}

bool Host::receiveNumbers(int count)
{
    m_numbers.restart();
    publish(QStringLiteral("numbers"));
    return QTest::qWaitFor([&] { return m_numbers.count() >= count || !m_numbers.fault().isNull(); },
                           numbersLimit) &&
           m_numbers.count() == count && m_numbers.fault().isNull();
}
