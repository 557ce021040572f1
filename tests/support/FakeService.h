#pragma once

#include "support/HttpServer.h"

#include <QMap>
#include <QPair>
#include <QPointer>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QTest>

#include <functional>
#include <utility>

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
        static Answer json(const QByteArray& text, int status = 200)
        {
            return Answer(Whole, text.isNull() ? QByteArray("") : text, status);
        }
        static Answer redirect(const QByteArray& location, int status = 302)
        {
            return Answer(Whole, QByteArray(), status).with("Location", location);
        }
        /// The request stays without an answer, the connection open.
        static Answer never() { return Answer(Never); }
        /// The connection is closed without an answer, and no other is accepted any more. (A client that
        /// merely loses its connection tries again by itself.)
        static Answer gone() { return Answer(Gone); }
        /// The status line, the headers and the first half of the body, then the connection is closed.
        static Answer cut(const QByteArray& text) { return Answer(Cut, text); }
        /// The same, but the connection stays open.
        static Answer stalled(const QByteArray& text) { return Answer(Stalled, text); }

        Answer& with(const QByteArray& name, const QByteArray& value)
        {
            m_headers += name + ": " + value + "\r\n";
            return *this;
        }
        /// The answer is kept back until release().
        Answer& held()
        {
            m_held = true;
            return *this;
        }
        /// \p action is run when the request has arrived, before the answer is sent.
        Answer& then(std::function<void()> action)
        {
            m_action = std::move(action);
            return *this;
        }

    private:
        friend class FakeService;
        static QByteArray reason(int status)
        {
            static const QMap<int, QByteArray> reasons = {
                {200, "OK"}, {401, "Unauthorized"}, {500, "Internal Server Error"}};
            return reasons.value(status, "Status");
        }

        enum Kind { Whole, Cut, Stalled, Never, Gone };

        explicit Answer(Kind kind, const QByteArray& body = QByteArray(), int status = 200)
            : m_kind(kind), m_status(QByteArray::number(status) + ' ' + reason(status)), m_body(body)
        {
            if (!body.isNull())
                with("Content-Type", "application/json;charset=UTF-8");
        }
        QByteArray bytes() const
        {
            const QByteArray whole = HttpText::plain(m_body, m_headers, m_status);
            return m_kind == Whole ? whole : whole.chopped(m_body.size() - m_body.size() / 2);
        }

        Kind m_kind = Never;
        bool m_held = false;
        QByteArray m_status;
        QByteArray m_headers;
        QByteArray m_body;
        std::function<void()> m_action;
    };

    using HttpServer::HttpServer;
    ~FakeService() override
    {
        for (const auto& step : std::as_const(m_script))
            m_failures.append(QStringLiteral("no request came for %1").arg(QString::fromUtf8(step.first)));
        if (!m_failures.isEmpty() && !QTest::currentTestFailed())
            QTest::qFail(qPrintable(m_failures.join(QStringLiteral("; "))), __FILE__, __LINE__);
    }

    /// The base address, without "/" at its end.
    QString url() const
    {
        return QStringLiteral("%1://127.0.0.1:%2").arg(isSecure() ? "https" : "http").arg(serverPort());
    }

    /// The next request is for \p path and gets \p answer.
    void expect(const QByteArray& path, const Answer& answer) { m_script.append({path, answer}); }
    /// Forgets what is still expected.
    void expectNoMore() { m_script.clear(); }
    /// Sends the answer that has been held longest.
    void release()
    {
        if (m_heldAnswers.isEmpty()) {
            m_failures.append(QStringLiteral("no answer is held"));
            return;
        }
        const auto held = m_heldAnswers.takeFirst();
        if (held.first)
            send(held.first, held.second);
    }
    bool isHolding() const { return !m_heldAnswers.isEmpty(); }

    const QList<Request>& requests() const { return m_requests; }
    Request last() const { return m_requests.value(m_requests.size() - 1); }
    QList<QByteArray> paths() const
    {
        QList<QByteArray> paths;
        for (const Request& request : m_requests)
            paths.append(request.path);
        return paths;
    }
    /// Whether every expected request has come.
    bool isUsedUp() const { return m_script.isEmpty(); }
    /// How many requests the other side has given up by closing the connection before it had the answer.
    int abandoned() const { return m_abandoned; }

protected:
    void onRequest(HttpConnection* connection, const Request& request) override
    {
        m_requests.append(request);
        m_unanswered.insert(connection);
        if (m_script.isEmpty() || m_script.first().first != request.path) {
            m_failures.append(
                QStringLiteral("unexpected request for %1").arg(QString::fromUtf8(request.path)));
            send(connection, Answer::json("unexpected", 501));
            return;
        }
        const Answer answer = m_script.takeFirst().second;
        const QPointer<HttpConnection> guard(connection);
        if (answer.m_held)
            m_heldAnswers.append({guard, answer});
        if (answer.m_action)
            answer.m_action();
        if (guard && !answer.m_held)
            send(guard, answer);
    }
    void onEnded(HttpConnection* connection) override
    {
        m_abandoned += m_unanswered.remove(connection) ? 1 : 0;
    }

private:
    void send(HttpConnection* connection, const Answer& answer)
    {
        if (answer.m_kind != Answer::Stalled && answer.m_kind != Answer::Never)
            m_unanswered.remove(connection);
        switch (answer.m_kind) {
        case Answer::Whole:
        case Answer::Stalled:
            connection->append({HttpScript::send(answer.bytes())});
            break;
        case Answer::Cut:
            connection->append({HttpScript::send(answer.bytes()), HttpScript::close()});
            break;
        case Answer::Never:
            break;
        case Answer::Gone:
            close();
            connection->socket()->abort();
            break;
        }
    }

    QList<QPair<QByteArray, Answer>> m_script;
    QList<Request> m_requests;
    QList<QPair<QPointer<HttpConnection>, Answer>> m_heldAnswers;
    QSet<HttpConnection*> m_unanswered;
    QStringList m_failures;
    int m_abandoned = 0;
};

Q_DECLARE_METATYPE(FakeService::Answer)
