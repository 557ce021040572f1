#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QPointer>
#include <QSslConfiguration>
#include <QString>
#include <QStringList>
#include <QTcpServer>

#include <functional>

class FakeServiceConnection;

/// An HTTP/1.1 server on a free port of loopback that answers requests from a script, in the order of their
/// arrival, and keeps every request as it came.
///
/// A request that the script does not expect next gets status 501 and fails the test; so does, when the
/// server is destroyed, a script that is not used up. Declare it before the client that talks to it, so that
/// it also sees what the client's destructor sends. It lives on the test's thread: what waits for it must run
/// an event loop.
///
/// It serves as an HTTP proxy as well: the path of a request is then the whole URL, or "host:port" of
/// CONNECT.
class FakeService : public QTcpServer
{
    Q_OBJECT

public:
    struct Request
    {
        QByteArray method;
        QByteArray path;
        QList<QPair<QByteArray, QByteArray>> headers;
        QByteArray body;

        /// The value of the header (case of \p name ignored); null when it was not sent.
        QByteArray header(const char* name) const;
    };

    class Answer
    {
    public:
        static Answer json(const QByteArray& text, int status = 200);
        static Answer redirect(const QByteArray& location, int status = 302);
        /// The request stays without an answer, the connection open.
        static Answer never();
        /// The connection is closed without an answer, and no other is accepted any more. (A client that
        /// merely loses its connection tries again by itself.)
        static Answer gone();
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

        QByteArray bytes() const;

        Kind m_kind = Whole;
        bool m_held = false;
        int m_status = 200;
        QList<QPair<QByteArray, QByteArray>> m_headers;
        QByteArray m_body;
        std::function<void()> m_action;
    };

    FakeService();
    /// With TLS: \p tls carries the certificate and its key.
    explicit FakeService(const QSslConfiguration& tls);
    ~FakeService() override;

    /// The base address, without "/" at its end.
    QString url() const;

    /// The next request is for \p path and gets \p answer.
    void expect(const QByteArray& path, const Answer& answer);
    /// Forgets what is still expected.
    void expectNoMore();
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
    void incomingConnection(qintptr handle) override;

private:
    friend class FakeServiceConnection;
    struct Step
    {
        QByteArray path;
        Answer answer;
    };

    void start();
    void handle(FakeServiceConnection* connection, const Request& request);
    void send(FakeServiceConnection* connection, const Answer& answer);
    void fail(const QString& reason);

    bool m_secure = false;
    QSslConfiguration m_tls;
    QList<Step> m_script;
    QList<Request> m_requests;
    QList<QPair<QPointer<FakeServiceConnection>, Answer>> m_heldAnswers;
    QStringList m_failures;
    int m_abandoned = 0;
};
