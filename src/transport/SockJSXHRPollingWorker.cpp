#include "transport/SockJSXHRPollingWorker.h"

#include "base/Diagnostics.h"
#include "transport/HttpResponseParser.h"
#include "transport/RawConnection.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QList>
#include <QMetaMethod>
#include <QMutex>

#include <algorithm>
#include <atomic>
#include <utility>

namespace {

constexpr int lockLimit = 1000; // milliseconds, as all below
constexpr int idleWait = 1000;

constexpr int maxQueueSize = 51;
constexpr int maxConnectAttempts = 10;
// Of the receiver, whose event loop Qt would not let go of while texts come as fast as they are heard.
constexpr int maxAhead = 1000; // texts, or kilobytes

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

class SockJSXHRPollingWorker::Private
{
public:
    Private(SockJSXHRPollingWorker* worker, RawConnection* raw, bool keepsAlive)
        : q(worker), connection(raw), keepAlive(keepsAlive)
    {}

    // What is known of the response that is being received.
    struct Response
    {
        XHRRequest* request = nullptr; // null: it answers no request of ours
        bool closes = false;           // the connection ends after it
        bool hasText = false;
        bool isGood = false; // it has given a frame that keeps the session going
    };

    bool runOnce();
    void serve();
    bool mayTransmit() const;
    bool isPaused() const { return pauses && ahead >= maxAhead; }
    bool isInFlight() const { return response.request || !sentQueue.isEmpty(); }
    qint64 timeToWait() const;
    int pauseLimit() const;
    void wait(qint64 msecs);
    void wakeFromAnyThread();

    void receive();
    void readEvents();
    void beginResponse(const QStringMap& headers, bool chunked, int contentLength, bool closes);
    void deliver(const QString& text, bool ends);
    void deliverEnd();
    void endResponse();
    void checkTimeLimits();
    void discardPending();

    void dropConnection();
    void endConnection();
    bool restoreConnection();
    void loseInFlight();
    void lose(XHRRequest* request);
    void forget(const XHRRequest* request);

    SockJSXHRPollingWorker* q;
    RawConnection* connection; // a child of the worker's, which moves to its thread with it
    const bool keepAlive;
    HttpResponseParser parser;
    QElapsedTimer lastReceived;
    int stallLimit = StallLimit;
    int connectAttempts = 0;
    std::atomic<bool> stop{false};
    bool pauses = false;
    std::atomic<int> ahead{0};

    QMutex mutex; // guards txQueue
    QList<XHRRequest*> txQueue;
    std::atomic<int> waiting{0};   // the size of txQueue
    std::atomic<int> receiving{0}; // receive requests that are waiting or in flight

    QList<XHRRequest*> sentQueue;
    Response response;
    bool connected = false;
    bool answered = false; // this connection has brought a response
    QDeadlineTimer hold;   // no request is written and no connection made before it has passed
    QDeadlineTimer resync{QDeadlineTimer::Forever}; // when to give up on a response that was cut by a stall
};

SockJSXHRPollingWorker::SockJSXHRPollingWorker(QObject* parent, QTcpSocket* socket, QString server, int port,
                                               bool ssl, bool keepAlive)
    : QObject(parent)
    , d(std::make_unique<Private>(this, new RawConnection(this, socket, server, port, ssl), keepAlive))
{
    qRegisterMetaType<QStringMap>("QStringMap");
}

SockJSXHRPollingWorker::~SockJSXHRPollingWorker() = default;

bool SockJSXHRPollingWorker::connectToServer(int msecs)
{
    return d->connection->connectBlocking(msecs);
}

bool SockJSXHRPollingWorker::connectInEventLoop(int msecs)
{
    return d->connection->connectWaiting(msecs, &d->stop);
}

void SockJSXHRPollingWorker::setStallLimit(int msecs)
{
    d->stallLimit = msecs;
}

bool SockJSXHRPollingWorker::queueRequest(XHRRequest* request)
{
    if (d->stop) {
        qCDebug(diagnostics) << "[SockJSXHRPollingWorker] Async socket tx queue error: Socket closing!";
        return false;
    }
    if (!d->mutex.tryLock(lockLimit)) {
        qCDebug(diagnostics)
            << "[SockJSXHRPollingWorker] Async socket tx queue error: Failed to establish mutex lock!";
        return false;
    }
    const bool accepted = d->waiting < maxQueueSize;
    if (accepted) {
        d->txQueue.append(request);
        if (isReceiveRequest(request))
            ++d->receiving;
        ++d->waiting;
    }
    d->mutex.unlock();
    if (accepted)
        d->wakeFromAnyThread();
    else
        qCDebug(diagnostics)
            << "[SockJSXHRPollingWorker] Async socket tx queue error: Too many items in queue!";
    return accepted;
}

void SockJSXHRPollingWorker::forceClose()
{
    d->stop = true;
    d->wakeFromAnyThread();
}

void SockJSXHRPollingWorker::resume()
{
    d->ahead = 0;
    d->wakeFromAnyThread();
}

bool SockJSXHRPollingWorker::isReceiving() const
{
    return d->receiving > 0;
}

void SockJSXHRPollingWorker::Private::wakeFromAnyThread()
{
    QMetaObject::invokeMethod(connection, &RawConnection::wake, Qt::QueuedConnection);
}

void SockJSXHRPollingWorker::transmitNextRequest()
{
    if (!d->mutex.tryLock(lockLimit))
        return;
    XHRRequest* request = nullptr;
    if (d->waiting > 0) {
        request = d->txQueue.takeFirst();
        --d->waiting;
    }
    d->mutex.unlock();
    if (!request)
        return;
    if (request->payload().isNull()) {
        d->lose(request);
        return;
    }
    d->parser.setStreaming(isStreaming(request));
    d->sentQueue.append(request);
    d->connection->write(request->payload().toUtf8());
}

void SockJSXHRPollingWorker::process()
{
    d->connected = d->connection->isConnected();
    d->pauses = isSignalConnected(QMetaMethod::fromSignal(&SockJSXHRPollingWorker::paused));
    while (!d->stop && d->runOnce()) {
    }
    Q_EMIT finished();
}

bool SockJSXHRPollingWorker::Private::runOnce()
{
    if (connection->isClosed() && keepAlive)
        return false;
    receive();
    if (isPaused()) {
        wait(idleWait);
        return true;
    }
    if (connection->isUnconnected())
        return restoreConnection();
    if (connection->isConnected())
        serve();
    else
        wait(idleWait);
    return true;
}

void SockJSXHRPollingWorker::Private::serve()
{
    connected = true;
    if (mayTransmit()) {
        parser.reset();
        q->transmitNextRequest();
        return;
    }
    wait(timeToWait());
    if (!connection->hasBytes())
        checkTimeLimits();
}

// Bytes left over from the last response do not hold a request back; a response to no request does.
bool SockJSXHRPollingWorker::Private::mayTransmit() const
{
    return waiting > 0 && !isInFlight() && hold.hasExpired() && parser.isBetweenResponses();
}

void SockJSXHRPollingWorker::Private::wait(qint64 msecs)
{
    if (!connection->wait(static_cast<int>(msecs)))
        stop = true;
}

qint64 SockJSXHRPollingWorker::Private::timeToWait() const
{
    qint64 msecs = idleWait;
    if (!hold.hasExpired())
        msecs = std::min(msecs, hold.remainingTime());
    if (parser.hasPending())
        msecs = std::min(msecs, pauseLimit() + 1 - lastReceived.elapsed());
    if (!resync.isForever())
        msecs = std::min(msecs, resync.remainingTime());
    return std::max<qint64>(msecs, 0);
}

// A body that has neither length nor chunks ends with the pause.
int SockJSXHRPollingWorker::Private::pauseLimit() const
{
    return parser.isUnbounded() ? StallLimit : stallLimit;
}

void SockJSXHRPollingWorker::Private::receive()
{
    readEvents(); // what a pause has left
    if (isPaused() || !connection->hasBytes())
        return;
    lastReceived.start();
    parser.add(connection->readAll());
    readEvents();
}

void SockJSXHRPollingWorker::Private::readEvents()
{
    using Event = HttpResponseParser::Event;
    while (!stop && !isPaused()) {
        const Event event = parser.next();
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
            hold.setRemainingTime(idleWait);
            dropConnection();
            return;
        }
    }
}

void SockJSXHRPollingWorker::Private::beginResponse(const QStringMap& headers, bool chunked,
                                                    int contentLength, bool closes)
{
    // Text of the response that was cut can look like a header, but without a length, and its end would never
    // come.
    if (!resync.isForever() && parser.isUnbounded()) {
        dropConnection();
        return;
    }
    resync = QDeadlineTimer(QDeadlineTimer::Forever);
    XHRRequest* request = sentQueue.isEmpty() ? response.request : sentQueue.takeFirst();
    response = Response();
    response.request = request;
    response.closes = closes;
    if (!request)
        return;
    if (chunked)
        qCDebug(diagnostics) << "[SockJSXHRPollingWorker] Detected transfer-encoding: chunked header";
    request->setChunked(chunked);
    request->setContentLength(contentLength);
    Q_EMIT q->receivedHeadersResponse(request, headers);
}

// The request counts as answered before the signal goes out, because the receiver asks for the next response
// at once.
void SockJSXHRPollingWorker::Private::deliver(const QString& text, bool ends)
{
    XHRRequest* request = response.request;
    response.hasText = true;
    response.isGood = response.isGood || isGoodFrame(text);
    // A stream that is cut after its frames has answered.
    answered = answered || (request && response.isGood);
    if (ends)
        endResponse();
    if (!request)
        return;
    Q_EMIT q->receivedMessageResponse(request, text);
    ahead += 1 + int(text.size() / 1024);
    if (isPaused())
        Q_EMIT q->paused();
}

void SockJSXHRPollingWorker::Private::deliverEnd()
{
    XHRRequest* request = response.request;
    const bool empty = !response.hasText;
    endResponse();
    if (request && empty)
        Q_EMIT q->receivedEmptyResponse(request);
}

void SockJSXHRPollingWorker::Private::endResponse()
{
    const Response ended = std::exchange(response, Response());
    if (ended.request) {
        answered = true;
        forget(ended.request);
        // A server that fails is asked once a second.
        if (!ended.isGood)
            hold.setRemainingTime(idleWait);
    }
    // The next streaming request follows from the reconnection.
    if (ended.closes || (ended.request && isStreaming(ended.request)))
        dropConnection();
}

void SockJSXHRPollingWorker::Private::checkTimeLimits()
{
    if (parser.hasPending() && lastReceived.hasExpired(pauseLimit())) {
        if (parser.isUnbounded()) {
            parser.endUnbounded();
            readEvents();
        } else {
            discardPending();
        }
    } else if (resync.hasExpired()) {
        dropConnection();
    }
}

// Where the next response begins is unknown now. One that comes at once is taken; otherwise the connection is
// given up, because the request would never be answered.
void SockJSXHRPollingWorker::Private::discardPending()
{
    qCDebug(diagnostics) << "[SockJSXHRPollingWorker] Incoming data timeout, clearing buffer";
    qCDebug(diagnostics).noquote().nospace() << "[SockJSXHRPollingWorker.BufferData] = " << parser.pending();
    parser.reset();
    if (isInFlight())
        resync.setRemainingTime(idleWait);
}

// Ends the connection so that it is made anew. What is in flight on it is lost.
void SockJSXHRPollingWorker::Private::dropConnection()
{
    connected = false;
    connection->drop();
    parser.reset();
    loseInFlight();
}

// The far end has ended the connection.
void SockJSXHRPollingWorker::Private::endConnection()
{
    connected = false;
    parser.endUnbounded();
    readEvents();
    if (!answered)
        hold.setRemainingTime(idleWait);
    parser.reset();
    loseInFlight();
}

bool SockJSXHRPollingWorker::Private::restoreConnection()
{
    if (connected)
        endConnection();
    if (!hold.hasExpired()) {
        wait(hold.remainingTime());
        return true;
    }
    if (keepAlive)
        qCDebug(diagnostics) << "[SockJSXHRPollingWorker] Connection lost, attempting to re-establish...";
    answered = false;
    connected = connection->connectWaiting(ConnectLimit, &stop);
    if (connected) {
        connectAttempts = 0;
        Q_EMIT q->reconnected();
        return true;
    }
    if (stop || connectAttempts++ < maxConnectAttempts)
        return true;
    qCDebug(diagnostics) << "[SockJSXHRPollingWorker] Connection attempts exceeded retry limit!";
    return false;
}

void SockJSXHRPollingWorker::Private::loseInFlight()
{
    resync = QDeadlineTimer(QDeadlineTimer::Forever);
    if (XHRRequest* request = std::exchange(response, Response()).request)
        lose(request);
    while (!sentQueue.isEmpty())
        lose(sentQueue.takeFirst());
}

void SockJSXHRPollingWorker::Private::lose(XHRRequest* request)
{
    forget(request);
    Q_EMIT q->requestLost(request);
}

void SockJSXHRPollingWorker::Private::forget(const XHRRequest* request)
{
    if (isReceiveRequest(request))
        --receiving;
}

int SockJSXHRPollingWorker::parseHttpHeaderResponse(QByteArray data, int* status,
                                                    QMap<QString, QString>* headers)
{
    *status = -1;
    int position = int(data.indexOf("HTTP/"));
    if (position < 0)
        return 0;
    *status = 200;
    HttpResponseParser::takeLine(data, &position);
    while (position < data.size()) {
        const QByteArray line = HttpResponseParser::takeLine(data, &position);
        if (line.isEmpty())
            break;
        const auto colon = line.indexOf(':');
        if (colon > 0)
            headers->insert(QString::fromUtf8(line.constData(), int(colon)),
                            QString::fromUtf8(line.constData() + colon + 1, int(line.size() - colon - 1)));
    }
    return position;
}

int SockJSXHRPollingWorker::parseMessageResponse(QByteArray data, bool chunked, QString* out,
                                                 int contentLength)
{
    if (!chunked) {
        const int size = contentLength < 2 ? int(data.size()) : std::min(contentLength, int(data.size()));
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
        logEndChunk(int(out->length()));
        return -1;
    }
    if (size > data.size() - position)
        return 0;
    out->append(QString::fromUtf8(data.constData() + position, size));
    return position + size + 2;
}
