#pragma once

#include "support/ClientOperations.h"
#include "support/HttpServer.h"

#include <QRandomGenerator>
#include <QUrl>

/// A service on loopback that says yes to every request after some milliseconds, and names a bus. One in \p
/// losses requests loses its connection instead; 0 is none.
class WillingService : public HttpServer
{
public:
    WillingService(const QUrl& bus, QRandomGenerator* random, int losses)
        : m_random(random), m_losses(losses), m_body(ClientOperations::ALL_IS_WELL)
    {
        m_body.replace("http://127.0.0.1:1/", bus.toEncoded());
    }

    QString url() const { return QStringLiteral("http://127.0.0.1:%1").arg(serverPort()); }

protected:
    void onRequest(HttpConnection* connection, const Request&) override
    {
        const bool loses = m_losses > 0 && m_random->bounded(m_losses) == 0;
        connection->append({HttpScript::pause(2 + m_random->bounded(10)),
                            loses ? HttpScript::reset() : HttpScript::send(HttpText::plain(m_body))});
    }

private:
    QRandomGenerator* m_random;
    int m_losses;
    QByteArray m_body;
};
