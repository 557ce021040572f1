#pragma once

#include "support/ConnectorProbe.h"
#include "support/ScriptedHttpServer.h"

#include <CalyxClient/SockJSConnector>

/// A session over an XHR transport to whose second receive request a server does something wrong; the first
/// one opens the session, and the third one brings the message "after".
class FaultSession
{
public:
    struct Fault
    {
        QString name;
        ScriptedHttpServer::Script script;
        QStringList messages = {};
        bool asksAgain = true; ///< otherwise the answer just goes on
        bool endsSession = false;
    };

    FaultSession(const Fault& fault, bool streaming);

    bool open();
    /// Whether everything has come that has to come.
    bool isThrough() const;
    /// What has come, against what had to; empty when they are the same.
    QString verdict() const;
    /// Milliseconds between the first and the last request.
    qint64 duration() const;

    QString name() const { return m_fault.name; }
    SockJSConnector* connector() { return &m_connector; }
    ScriptedHttpServer* server() { return &m_server; }
    const ConnectorProbe& probe() const { return m_probe; }

    /// A good answer with this frame.
    static QByteArray good(bool streaming, const QByteArray& frame);

private:
    QStringList expected() const;

    Fault m_fault;
    bool m_streaming;
    ScriptedHttpServer m_server;
    SockJSConnector m_connector;
    ConnectorProbe m_probe;
};
