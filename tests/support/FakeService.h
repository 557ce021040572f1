#pragma once

#include "support/HttpServer.h"

#include <QPair>
#include <QPointer>
#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>

/// A server that answers requests from a script, in the order of their arrival, and keeps every request as it
/// came.
///
/// A request that the script does not expect next gets status 501 and fails the test; so does, when the
/// server is destroyed, a script that is not used up. Declare it before the client that talks to it, so that
/// it also sees what the client's destructor sends.
///
/// It serves as an HTTP proxy as well: the path of a request is then the whole URL, or "host:port" of
/// CONNECT.
class FakeService : public HttpServer
{
public:
    class Answer
    {
    public:
        /// As never().
        Answer() = default;
        static Answer json(const QByteArray& text, int status = 200);
        static Answer redirect(const QByteArray& location, int status = 302);
        /// The request stays without an answer, the connection open.
        static Answer never() { return Answer(Never); }
        /// The connection is closed without an answer, and no other is accepted any more. (A client that
        /// merely loses its connection tries again by itself.)
        static Answer gone() { return Answer(Gone); }
        /// The status line, the headers and the first half of the body, then the connection is closed.
        static Answer cut(const QByteArray& text);
        /// The same, but the connection stays open.
        static Answer stalled(const QByteArray& text);

        Answer& with(const QByteArray& name, const QByteArray& value);
        /// The answer is kept back until release().
        Answer& held();
        /// \p action is run when the request has arrived, before the answer is sent.
        Answer& then(std::function<void()> action);

    private:
        friend class FakeService;
        enum Kind { Whole, Cut, Stalled, Never, Gone };

        explicit Answer(Kind kind, const QByteArray& body = QByteArray(), int status = 200);
        QByteArray bytes() const;

        Kind m_kind = Never;
        bool m_held = false;
        QByteArray m_status;
        QByteArray m_headers;
        QByteArray m_body;
        std::function<void()> m_action;
    };

    using HttpServer::HttpServer;
    ~FakeService() override;

    /// The base address, without "/" at its end.
    QString url() const;

    /// The next request is for \p path and gets \p answer.
    void expect(const QByteArray& path, const Answer& answer) { m_script.append({path, answer}); }
    /// Forgets what is still expected.
    void expectNoMore() { m_script.clear(); }
    /// Sends the answer that has been held longest.
    void release();
    bool isHolding() const { return !m_heldAnswers.isEmpty(); }

    const QList<Request>& requests() const { return m_requests; }
    Request last() const { return m_requests.value(m_requests.size() - 1); }
    QList<QByteArray> paths() const;
    /// Whether every expected request has come.
    bool isUsedUp() const { return m_script.isEmpty(); }
    /// How many requests the other side has given up by closing the connection before it had the answer.
    int abandoned() const { return m_abandoned; }

protected:
    void onRequest(HttpConnection* connection, const Request& request) override;
    void onEnded(HttpConnection* connection) override;

private:
    void send(HttpConnection* connection, const Answer& answer);

    QList<QPair<QByteArray, Answer>> m_script;
    QList<Request> m_requests;
    QList<QPair<QPointer<HttpConnection>, Answer>> m_heldAnswers;
    QSet<HttpConnection*> m_unanswered;
    QStringList m_failures;
    int m_abandoned = 0;
};

Q_DECLARE_METATYPE(FakeService::Answer)
