#pragma once

#include "interop/support/NumberedText.h"

#include <CalyxClient/PresenterCollab>
#include <CalyxClient/SockJSConnector>

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTest>
#include <QUrl>

/// A host with one live channel, which counts what the channel tells.
class Host : public QObject
{
    Q_OBJECT

public:
    /// \p server is where the bus is, \p token the session's.
    explicit Host(const QUrl& server, const QString& token = QStringLiteral("session"));
    /// A host whose channel \p collab has been opened already; that stays the caller's.
    explicit Host(PresenterCollab* collab);
    ~Host() override;

    PresenterCollab* collab() const { return m_collab; }
    SockJSConnector* connector() const { return m_collab->connector(); }

    /// Opens with \p transports and waits until the session is open. False when it does not open.
    bool open(const QStringList& transports);
    bool open(const QString& transport) { return open(QStringList{transport}); }
    /// PresenterCollab::open(). False when that does not come back within some seconds.
    bool tryOpen(const QStringList& transports);
    /// PresenterCollab::close(), then waits for the one `connectionClosed` that follows.
    bool close();
    /// Waits until `connectionClosed` has come \p times times, and not once more.
    bool waitForClosed(int times);
    /// Publishes a message of type \p type: a peer does what it names.
    void publish(const QString& type);
    /// Publishes \p count messages to the whole session, and waits until they have come back in order.
    bool exchange(int count);
    /// Has the peer send its numbered texts, and waits for the first \p count of them.
    bool receiveNumbers(int count);

    int connected() const { return m_connected; }
    /// How often `connectionClosed(false)` has come.
    int closed() const { return m_closed; }
    int closedForInactivity() const { return m_closedForInactivity; }
    /// The messages that have come, but for numbered texts.
    QStringList messages() const { return m_messages; }
    NumberedText::Sequence& numbers() { return m_numbers; }

private:
    void take(const QString& message);

    QPointer<PresenterCollab> m_collab;
    bool m_isOwner;
    int m_connected = 0;
    int m_closed = 0;
    int m_closedForInactivity = 0;
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
