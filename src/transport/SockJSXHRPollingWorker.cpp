#include "transport/SockJSXHRPollingWorker.h"

#include "base/Diagnostics.h"
#include "transport/HttpResponseParser.h"
#include "transport/RawConnection.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int lockLimit = 1000; // milliseconds, as all below
constexpr int idleWait = 1000;

constexpr int maxQueueSize = 51;
constexpr int maxConnectAttempts = 10;

bool isStreaming(const XHRRequest* request)
{
    return request->path().endsWith(QLatin1String("xhr_streaming"));
}

bool isReceiveRequest(const XHRRequest* request)
{
    return isStreaming(request) || request->path().endsWith(QLatin1String("xhr"));
}

// An open frame, a heartbeat or an array of messages.
bool isGoodFrame(const QString& text)
{
    return text == QLatin1String("o") || text == QLatin1String("h") || text.startsWith(QLatin1Char('a'));
}

void logEndChunk(int size)
{
    qCDebug(diagnostics).nospace() << "[SockJSXHRPollingWorker] chunk complete size " << size;
}

} // namespace

SockJSXHRPollingWorker::SockJSXHRPollingWorker(QObject* parent, QTcpSocket* socket, QString host, int port,
                                               bool ssl, bool keepAlive)
    : QObject(parent)
    , m_keepAlive(keepAlive)
    , m_connection(new RawConnection(this, socket, host, port, ssl))
    , m_parser(std::make_unique<HttpResponseParser>())
{
    qRegisterMetaType<QStringMap>("QStringMap");
}

SockJSXHRPollingWorker::~SockJSXHRPollingWorker() = default;

bool SockJSXHRPollingWorker::connectToServer(int msecs)
{
    return m_connection->connectBlocking(msecs);
}

bool SockJSXHRPollingWorker::connectInEventLoop(int msecs)
{
    return m_connection->connectWaiting(msecs, &m_stop);
}

void SockJSXHRPollingWorker::setStallLimit(int msecs)
{
    m_stallLimit = msecs;
}

bool SockJSXHRPollingWorker::queueRequest(XHRRequest* request)
{
    if (m_stop) {
        qCDebug(diagnostics) << "[SockJSXHRPollingWorker] Async socket tx queue error: Socket closing!";
        return false;
    }
    if (!m_mutex.tryLock(lockLimit)) {
        qCDebug(diagnostics)
            << "[SockJSXHRPollingWorker] Async socket tx queue error: Failed to establish mutex lock!";
        return false;
    }
    const bool accepted = m_waiting < maxQueueSize;
    if (accepted) {
        m_txQueue.append(request);
        if (isReceiveRequest(request))
            ++m_receiving;
        ++m_waiting;
    }
    m_mutex.unlock();
    if (accepted)
        wakeFromAnyThread();
    else
        qCDebug(diagnostics)
            << "[SockJSXHRPollingWorker] Async socket tx queue error: Too many items in queue!";
    return accepted;
}

void SockJSXHRPollingWorker::forceClose()
{
    m_stop = true;
    wakeFromAnyThread();
}

void SockJSXHRPollingWorker::wakeFromAnyThread()
{
    QMetaObject::invokeMethod(m_connection, &RawConnection::wake, Qt::QueuedConnection);
}

void SockJSXHRPollingWorker::transmitNextRequest()
{
    if (!m_mutex.tryLock(lockLimit))
        return;
    XHRRequest* request = nullptr;
    if (m_waiting > 0) {
        request = m_txQueue.takeFirst();
        --m_waiting;
    }
    m_mutex.unlock();
    if (!request)
        return;
    if (request->payload().isNull()) {
        lose(request);
        return;
    }
    m_parser->setStreaming(isStreaming(request));
    m_sentQueue.append(request);
    m_connection->write(request->payload().toUtf8());
}

void SockJSXHRPollingWorker::process()
{
    m_connected = m_connection->isConnected();
    while (!m_stop && runOnce()) {
    }
    Q_EMIT finished();
}

bool SockJSXHRPollingWorker::runOnce()
{
    if (m_connection->isClosed() && m_keepAlive)
        return false;
    receive();
    if (m_connection->isUnconnected())
        return restoreConnection();
    if (m_connection->isConnected())
        serve();
    else
        wait(idleWait);
    return true;
}

void SockJSXHRPollingWorker::serve()
{
    m_connected = true;
    if (mayTransmit()) {
        m_parser->reset();
        transmitNextRequest();
        return;
    }
    wait(timeToWait());
    if (!m_connection->hasBytes())
        checkTimeLimits();
}

// What is left over from the last response is not half received; a response to no request is.
bool SockJSXHRPollingWorker::mayTransmit() const
{
    return m_waiting > 0 && !isInFlight() && m_hold.hasExpired() && m_parser->isBetweenResponses();
}

void SockJSXHRPollingWorker::wait(qint64 msecs)
{
    if (!m_connection->wait(static_cast<int>(msecs)))
        m_stop = true;
}

qint64 SockJSXHRPollingWorker::timeToWait() const
{
    qint64 msecs = idleWait;
    if (!m_hold.hasExpired())
        msecs = std::min(msecs, m_hold.remainingTime());
    if (m_parser->hasPending())
        msecs = std::min(msecs, pauseLimit() + 1 - m_lastReceived.elapsed());
    if (!m_resync.isForever())
        msecs = std::min(msecs, m_resync.remainingTime());
    return std::max<qint64>(msecs, 0);
}

// A body that has neither length nor chunks ends with the pause.
int SockJSXHRPollingWorker::pauseLimit() const
{
    return m_parser->isUnbounded() ? StallLimit : m_stallLimit;
}

void SockJSXHRPollingWorker::receive()
{
    if (!m_connection->hasBytes())
        return;
    m_lastReceived.start();
    m_parser->add(m_connection->readAll());
    readEvents();
}

void SockJSXHRPollingWorker::readEvents()
{
    using Event = HttpResponseParser::Event;
    while (!m_stop) {
        const Event event = m_parser->next();
        switch (event.type) {
        case Event::Incomplete:
            return;
        case Event::Header:
            beginResponse(event.headers, event.chunked, event.contentLength, event.closes);
            break;
        case Event::ChunkContinued:
            qCDebug(diagnostics) << "[SockJSXHRPollingWorker] Chunk_continued";
            break;
        case Event::Message:
        case Event::Empty:
            if (event.endChunkSize >= 0)
                logEndChunk(event.endChunkSize);
            if (event.type == Event::Message)
                deliver(event.text, event.ends);
            else
                deliverEnd();
            break;
        case Event::Broken:
            m_hold.setRemainingTime(idleWait);
            dropConnection();
            return;
        }
    }
}

void SockJSXHRPollingWorker::beginResponse(const QStringMap& headers, bool chunked, int contentLength,
                                           bool closes)
{
    // Text of the response that was cut can look like a header, but without a length, and its end would never
    // come.
    if (!m_resync.isForever() && m_parser->isUnbounded()) {
        dropConnection();
        return;
    }
    m_resync = QDeadlineTimer(QDeadlineTimer::Forever);
    XHRRequest* request = m_sentQueue.isEmpty() ? m_response.request : m_sentQueue.takeFirst();
    m_response = Response();
    m_response.request = request;
    m_response.closes = closes;
    if (!request)
        return;
    if (chunked)
        qCDebug(diagnostics) << "[SockJSXHRPollingWorker] Detected transfer-encoding: chunked header";
    request->setChunked(chunked);
    request->setContentLength(contentLength);
    Q_EMIT receivedHeadersResponse(request, headers);
}

// The request counts as answered before the signal goes out, because the receiver asks for the next response
// at once.
void SockJSXHRPollingWorker::deliver(const QString& text, bool ends)
{
    XHRRequest* request = m_response.request;
    m_response.hasText = true;
    m_response.isGood = m_response.isGood || isGoodFrame(text);
    // A stream that is cut after its frames has answered.
    m_answered = m_answered || (request && m_response.isGood);
    if (ends)
        endResponse();
    if (request)
        Q_EMIT receivedMessageResponse(request, text);
}

void SockJSXHRPollingWorker::deliverEnd()
{
    XHRRequest* request = m_response.request;
    const bool empty = !m_response.hasText;
    endResponse();
    if (request && empty)
        Q_EMIT receivedEmptyResponse(request);
}

void SockJSXHRPollingWorker::endResponse()
{
    const Response response = std::exchange(m_response, Response());
    if (response.request) {
        m_answered = true;
        letGo(response.request);
        // A server that fails is asked once a second.
        if (!response.isGood)
            m_hold.setRemainingTime(idleWait);
    }
    // The next streaming request follows from the reconnection.
    if (response.closes || (response.request && isStreaming(response.request)))
        dropConnection();
}

void SockJSXHRPollingWorker::checkTimeLimits()
{
    if (m_parser->hasPending() && m_lastReceived.hasExpired(pauseLimit())) {
        if (m_parser->isUnbounded()) {
            m_parser->endUnbounded();
            readEvents();
        } else {
            discardPending();
        }
    } else if (m_resync.hasExpired()) {
        dropConnection();
    }
}

// Where the next response begins is unknown now. One that comes at once is taken; otherwise the connection is
// given up, because the request would never be answered.
void SockJSXHRPollingWorker::discardPending()
{
    qCDebug(diagnostics) << "[SockJSXHRPollingWorker] Incoming data timeout, clearing buffer";
    qCDebug(diagnostics).noquote().nospace()
        << "[SockJSXHRPollingWorker.BufferData] = " << m_parser->pending();
    m_parser->reset();
    if (isInFlight())
        m_resync.setRemainingTime(idleWait);
}

// Ends the connection so that it is made anew. What is in flight on it is lost.
void SockJSXHRPollingWorker::dropConnection()
{
    m_connected = false;
    m_connection->drop();
    m_parser->reset();
    loseInFlight();
}

// The far end has ended the connection.
void SockJSXHRPollingWorker::endConnection()
{
    m_connected = false;
    m_parser->endUnbounded();
    readEvents();
    if (!m_answered)
        m_hold.setRemainingTime(idleWait);
    m_parser->reset();
    loseInFlight();
}

bool SockJSXHRPollingWorker::restoreConnection()
{
    if (m_connected)
        endConnection();
    if (!m_hold.hasExpired()) {
        wait(m_hold.remainingTime());
        return true;
    }
    if (m_keepAlive)
        qCDebug(diagnostics) << "[SockJSXHRPollingWorker] Connection lost, attempting to re-establish...";
    m_answered = false;
    m_connected = m_connection->connectWaiting(ConnectLimit, &m_stop);
    if (m_connected) {
        m_connectAttempts = 0;
        Q_EMIT reconnected();
        return true;
    }
    if (m_stop || m_connectAttempts++ < maxConnectAttempts)
        return true;
    qCDebug(diagnostics) << "[SockJSXHRPollingWorker] Connection attempts exceeded retry limit!";
    return false;
}

void SockJSXHRPollingWorker::loseInFlight()
{
    m_resync = QDeadlineTimer(QDeadlineTimer::Forever);
    if (XHRRequest* request = std::exchange(m_response, Response()).request)
        lose(request);
    while (!m_sentQueue.isEmpty())
        lose(m_sentQueue.takeFirst());
}

void SockJSXHRPollingWorker::lose(XHRRequest* request)
{
    letGo(request);
    Q_EMIT requestLost(request);
}

void SockJSXHRPollingWorker::letGo(const XHRRequest* request)
{
    if (isReceiveRequest(request))
        --m_receiving;
}

int SockJSXHRPollingWorker::parseHttpHeaderResponse(QByteArray data, int* status,
                                                    QMap<QString, QString>* headers)
{
    *status = -1;
    int position = data.indexOf("HTTP/");
    if (position < 0)
        return 0;
    *status = 200;
    HttpResponseParser::takeLine(data, &position);
    while (position < data.size()) {
        const QByteArray line = HttpResponseParser::takeLine(data, &position);
        if (line.isEmpty())
            break;
        const int colon = line.indexOf(':');
        if (colon > 0)
            headers->insert(QString::fromUtf8(line.left(colon)), QString::fromUtf8(line.mid(colon + 1)));
    }
    return position;
}

int SockJSXHRPollingWorker::parseMessageResponse(QByteArray data, bool chunked, QString* out,
                                                 int contentLength)
{
    if (!chunked) {
        const int size = contentLength < 2 ? data.size() : std::min(contentLength, data.size());
        out->append(QString::fromUtf8(data.constData(), size));
        return size;
    }
    int position = 0;
    QByteArray line = HttpResponseParser::takeLine(data, &position);
    if (line.isEmpty()) {
        qCDebug(diagnostics) << "[SockJSXHRPollingWorker] Chunk_continued";
        line = HttpResponseParser::takeLine(data, &position);
    }
    const int size = line.toInt(nullptr, 16);
    if (size < 2) {
        logEndChunk(out->length());
        return -1;
    }
    if (size > data.size() - position)
        return 0;
    out->append(QString::fromUtf8(data.constData() + position, size));
    return position + size + 2;
}
