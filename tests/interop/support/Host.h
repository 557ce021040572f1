#pragma once

#include "interop/support/NumberedText.h"

#include <CalyxClient/PresenterCollab>
#include <CalyxClient/SockJSConnector>

#include <QJsonDocument>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTest>
#include <QTimer>
#include <QUrl>

#include <utility>

/// A host with one live channel, which counts what the channel tells.
class Host : public QObject
{
    Q_OBJECT

public:
    /// \p server is where the bus is, \p token the session's.
    explicit Host(const QUrl& server, const QString& token = QStringLiteral("session"))
        : Host(new PresenterCollab(nullptr, server.toString(), QStringLiteral("code"), token,
                                   QStringLiteral("host")))
    {
        m_isOwner = true;
    }
    /// A host whose channel \p collab has been opened already; that stays the caller's.
    explicit Host(PresenterCollab* collab) : m_collab(collab), m_isOwner(false)
    {
        connect(connector(), &SockJSConnector::connected, this, [this] { ++m_connected; });
        connect(connector(), &SockJSConnector::sockJSMessage, this, &Host::take);
        connect(m_collab, &PresenterCollab::connectionClosed, this,
                [this](bool forInactivity) { m_closed += forInactivity ? 0 : 1; });
    }
    ~Host() override
    {
        if (m_isOwner)
            delete m_collab;
    }

    PresenterCollab* collab() const { return m_collab; }
    SockJSConnector* connector() const { return m_collab->connector(); }

    /// Opens with \p transports and waits until the session is open. False when it does not open.
    bool open(const QStringList& transports)
    {
        const int before = m_connected;
        return tryOpen(transports) &&
               QTest::qWaitFor([&] { return m_collab->isConnected() && m_connected == before + 1; },
                               openLimit);
    }
    bool open(const QString& transport) { return open(QStringList{transport}); }
    /// PresenterCollab::open(). False when that does not come back within some seconds.
    bool tryOpen(const QStringList& transports)
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
    /// PresenterCollab::close(), then waits for the one `connectionClosed` that follows.
    bool close()
    {
        const int before = m_closed;
        m_collab->close();
        return waitForClosed(before + 1);
    }
    /// Waits until `connectionClosed` has come \p times times, and not once more.
    bool waitForClosed(int times)
    {
        return QTest::qWaitFor([&] { return m_closed >= times; }, openLimit) && m_closed == times &&
               !m_collab->isConnected();
    }
    /// Publishes a message of type \p type: a peer does what it names.
    void publish(const QString& type)
    {
        m_collab->publishMessage(QStringLiteral(".peer"), type, QStringLiteral("\"Prüfung €\""));
    }
    /// Publishes \p count messages to the whole session, and waits until they have come back in order.
    bool exchange(int count)
    {
        QStringList sent;
        m_messages.clear();
        for (int number = 0; number < count; ++number) {
            sent.append(QStringLiteral("übung %1").arg(number));
            m_collab->publishMessage(sent.last(), QStringLiteral("\"%1\"").arg(number));
        }
        if (!QTest::qWaitFor([&] { return m_messages.size() >= count; }, openLimit) ||
            m_messages.size() > count)
            return false;
        QStringList received;
        for (const QString& message : std::as_const(m_messages)) {
            const QVariantMap frame = QJsonDocument::fromJson(message.toUtf8()).toVariant().toMap();
            received.append(
                frame.value(QStringLiteral("body")).toMap().value(QStringLiteral("type")).toString());
        }
        return received == sent;
    }
    /// Has the peer send its numbered texts, and waits for the first \p count of them.
    bool receiveNumbers(int count)
    {
        m_numbers.restart();
        publish(QStringLiteral("numbers"));
        return QTest::qWaitFor([&] { return m_numbers.count() >= count || !m_numbers.fault().isNull(); },
                               numbersLimit) &&
               m_numbers.count() == count && m_numbers.fault().isNull();
    }

    int connected() const { return m_connected; }
    /// How often `connectionClosed(false)` has come.
    int closed() const { return m_closed; }
    /// The messages that have come, but for numbered texts.
    QStringList messages() const { return m_messages; }
    NumberedText::Sequence& numbers() { return m_numbers; }

private:
    static constexpr int openLimit = 20000; // milliseconds
    static constexpr int numbersLimit = 90000;

    void take(const QString& message)
    {
        if (!message.isEmpty() && message.at(0).isDigit())
            m_numbers.take(message);
        else
            m_messages.append(message);
    }

    QPointer<PresenterCollab> m_collab;
    bool m_isOwner;
    int m_connected = 0;
    int m_closed = 0;
    QStringList m_messages;
    NumberedText::Sequence m_numbers;
};

/// The three transports, as hosts name them.
namespace Transport {

const QString webSocket = QStringLiteral("websocket");
const QString streaming = QStringLiteral("xhr-streaming");
const QString polling = QStringLiteral("xhr-polling");
const QStringList all = {webSocket, streaming, polling};

/// The column "transport", and a row for each.
inline void addRows(const QStringList& transports = all)
{
    QTest::addColumn<QString>("transport");
    for (const QString& transport : transports)
        QTest::newRow(qPrintable(transport)) << transport;
}

} // namespace Transport
