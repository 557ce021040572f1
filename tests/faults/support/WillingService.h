#pragma once

#include "support/ClientOperations.h"

#include <QRandomGenerator>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <QUrl>

/// A service on loopback that says yes to every request after some milliseconds, and names a bus. One in \p
/// losses requests loses its connection instead; 0 is none.
class WillingService : public QTcpServer
{
public:
    WillingService(const QUrl& bus, QRandomGenerator* random, int losses)
        : m_random(random), m_losses(losses), m_body(ClientOperations::ALL_IS_WELL)
    {
        m_body.replace("http://127.0.0.1:1/", bus.toEncoded());
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this] {
            QTcpSocket* socket = nextPendingConnection();
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { read(socket); });
        });
    }

    QString url() const { return QStringLiteral("http://127.0.0.1:%1").arg(serverPort()); }

private:
    // Every request is small, and comes alone.
    void read(QTcpSocket* socket)
    {
        const QByteArray request = socket->peek(65536);
        const int head = request.indexOf("\r\n\r\n");
        const int at = request.toLower().indexOf("content-length:");
        if (head < 0 || request.size() < head + 4 + request.mid(at + 15, 8).split('\r').first().toInt())
            return;
        socket->readAll();
        const bool loses = m_losses > 0 && m_random->bounded(m_losses) == 0;
        QTimer::singleShot(2 + m_random->bounded(10), socket, [this, socket, loses] {
            if (loses)
                socket->abort();
            else
                socket->write("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(m_body.size()) +
                              "\r\n\r\n" + m_body);
        });
    }

    QRandomGenerator* m_random;
    int m_losses;
    QByteArray m_body;
};
