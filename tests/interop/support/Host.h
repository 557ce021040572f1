#pragma once

#include "interop/support/NumberedText.h"
#include "support/ConnectorProbe.h"
#include "support/Rows.h"

#include <CalyxClient/PresenterCollab>

#include <QTest>
#include <QUrl>

/// A host with one live channel, which counts what the channel tells.
class Host : public QObject
{
public:
    /// \p server is where the bus is, \p token the session's.
    explicit Host(const QUrl& server, const QString& token = QStringLiteral("session"))
        : m_collab(nullptr, server.toString(), QStringLiteral("code"), token, QStringLiteral("host"))
    {
        connect(connector(), &SockJSConnector::connected, this, [this] { ++m_connected; });
        connect(connector(), &SockJSConnector::sockJSMessage, this, [this](const QString& message) {
            if (!message.isEmpty() && message.at(0).isDigit())
                m_numbers.take(message);
        });
        connect(&m_collab, &PresenterCollab::connectionClosed, this,
                [this](bool forInactivity) { m_closed += forInactivity ? 0 : 1; });
    }

    PresenterCollab* collab() { return &m_collab; }
    SockJSConnector* connector() { return m_collab.connector(); }

    /// Opens with \p transports and waits until the session is open. False when it does not open.
    bool open(const QStringList& transports)
    {
        ++m_opened;
        return tryOpen(transports) &&
               QTest::qWaitFor([&] { return m_collab.isConnected() && m_connected == m_opened; }, openLimit);
    }
    bool open(const QString& transport) { return open(QStringList{transport}); }
    /// PresenterCollab::open(). False when that does not come back within some seconds.
    bool tryOpen(const QStringList& transports)
    {
        return comesBack(connector(), [&] { m_collab.open(transports); });
    }
    /// PresenterCollab::close(), then waits for the one `connectionClosed` that follows. False as well when
    /// the channel has told something else before: an end that nobody has waited for, `connected` without
    /// open(), a wrong text.
    bool close()
    {
        m_collab.close();
        return waitForEnd() && m_connected == m_opened && m_numbers.fault().isNull();
    }
    /// Waits until `connectionClosed` has come once more, and no more than that.
    bool waitForEnd()
    {
        ++m_ended;
        return QTest::qWaitFor([&] { return m_closed >= m_ended; }, openLimit) && m_closed == m_ended &&
               !m_collab.isConnected();
    }
    /// Publishes a message of type \p type: a peer does what it names.
    void publish(const QString& type)
    {
        m_collab.publishMessage(QStringLiteral(".peer"), type, QStringLiteral("\"Prüfung €\""));
    }
    /// Has the peer send its numbered texts, and waits for the first \p count of them; \p meanwhile is done
    /// when some have come.
    bool receiveNumbers(int count, const std::function<void()>& meanwhile = {})
    {
        m_numbers.restart();
        publish(QStringLiteral("numbers"));
        if (meanwhile && waitForNumbers(count / 10))
            meanwhile();
        return waitForNumbers(count) && m_numbers.count() == count;
    }
    /// Sends \p count numbered texts, the first of them number \p first, and waits for them to come back.
    bool exchangeNumbers(int first, int count)
    {
        m_numbers.restart(first);
        for (int number = first; number < first + count; ++number)
            connector()->sendMessage(NumberedText::text(number), false);
        return waitForNumbers(count) && m_numbers.count() == count;
    }

    int connected() const { return m_connected; }
    /// How often `connectionClosed(false)` has come.
    int closed() const { return m_closed; }
    NumberedText::Sequence& numbers() { return m_numbers; }

private:
    static constexpr int openLimit = 20000; // milliseconds
    static constexpr int numbersLimit = 90000;

    bool waitForNumbers(int count)
    {
        return QTest::qWaitFor([&] { return m_numbers.count() >= count || !m_numbers.fault().isNull(); },
                               numbersLimit) &&
               m_numbers.fault().isNull();
    }

    int m_connected = 0;
    int m_opened = 0;
    int m_closed = 0;
    int m_ended = 0;
    NumberedText::Sequence m_numbers;
    PresenterCollab m_collab; // goes first
};

/// The three transports, as hosts name them.
namespace Transport {

const QString webSocket = QStringLiteral("websocket");
const QString streaming = QStringLiteral("xhr-streaming");
const QString polling = QStringLiteral("xhr-polling");
const QStringList all = {webSocket, streaming, polling};
const QStringList xhr = {streaming, polling};

} // namespace Transport
