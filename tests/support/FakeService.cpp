#include "support/FakeService.h"

#include <QTest>

namespace {

QByteArray reason(int status)
{
    static const QMap<int, QByteArray> reasons = {
        {200, "OK"}, {401, "Unauthorized"}, {500, "Internal Server Error"}};
    return reasons.value(status, "Status");
}

} // namespace

FakeService::Answer::Answer(Kind kind, const QByteArray& body, int status)
    : m_kind(kind), m_status(QByteArray::number(status) + ' ' + reason(status)), m_body(body)
{
    if (!body.isNull())
        with("Content-Type", "application/json;charset=UTF-8");
}

FakeService::Answer FakeService::Answer::json(const QByteArray& text, int status)
{
    return Answer(Whole, text.isNull() ? QByteArray("") : text, status);
}

FakeService::Answer FakeService::Answer::redirect(const QByteArray& location, int status)
{
    return Answer(Whole, QByteArray(), status).with("Location", location);
}

FakeService::Answer FakeService::Answer::cut(const QByteArray& text)
{
    return Answer(Cut, text);
}

FakeService::Answer FakeService::Answer::stalled(const QByteArray& text)
{
    return Answer(Stalled, text);
}

FakeService::Answer& FakeService::Answer::with(const QByteArray& name, const QByteArray& value)
{
    m_headers += name + ": " + value + "\r\n";
    return *this;
}

FakeService::Answer& FakeService::Answer::held()
{
    m_held = true;
    return *this;
}

FakeService::Answer& FakeService::Answer::then(std::function<void()> action)
{
    m_action = std::move(action);
    return *this;
}

QByteArray FakeService::Answer::bytes() const
{
    const QByteArray whole = HttpText::plain(m_body, m_headers, m_status);
    return m_kind == Whole ? whole : whole.chopped(m_body.size() - m_body.size() / 2);
}

FakeService::~FakeService()
{
    for (const auto& step : qAsConst(m_script))
        m_failures.append(QStringLiteral("no request came for %1").arg(QString::fromUtf8(step.first)));
    if (!m_failures.isEmpty() && !QTest::currentTestFailed())
        QTest::qFail(qPrintable(m_failures.join(QStringLiteral("; "))), __FILE__, __LINE__);
}

QString FakeService::url() const
{
    return QStringLiteral("%1://127.0.0.1:%2").arg(isSecure() ? "https" : "http").arg(serverPort());
}

void FakeService::release()
{
    if (m_heldAnswers.isEmpty()) {
        m_failures.append(QStringLiteral("no answer is held"));
        return;
    }
    const auto held = m_heldAnswers.takeFirst();
    if (held.first)
        send(held.first, held.second);
}

QList<QByteArray> FakeService::paths() const
{
    QList<QByteArray> paths;
    for (const Request& request : m_requests)
        paths.append(request.path);
    return paths;
}

void FakeService::onRequest(HttpConnection* connection, const Request& request)
{
    m_requests.append(request);
    m_unanswered.insert(connection);
    if (m_script.isEmpty() || m_script.first().first != request.path) {
        m_failures.append(QStringLiteral("unexpected request for %1").arg(QString::fromUtf8(request.path)));
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

void FakeService::onEnded(HttpConnection* connection)
{
    m_abandoned += m_unanswered.remove(connection) ? 1 : 0;
}

void FakeService::send(HttpConnection* connection, const Answer& answer)
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
