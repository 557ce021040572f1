#include "transport/SockJSXHRPollingWorker.h"

#include "transport/HttpAnswerParser.h"

SockJSXHRPollingWorker::SockJSXHRPollingWorker(QObject* parent, QTcpSocket*, QString, int, bool, bool)
    : QObject(parent)
{}
SockJSXHRPollingWorker::~SockJSXHRPollingWorker() = default;
bool SockJSXHRPollingWorker::connectToServer()
{
    return false;
}
bool SockJSXHRPollingWorker::queueRequest(XHRRequest*)
{
    return false;
}
void SockJSXHRPollingWorker::forceClose()
{
    m_stop = true;
}
bool SockJSXHRPollingWorker::isReceiving() const
{
    return false;
}
void SockJSXHRPollingWorker::transmitNextRequest() {}
int SockJSXHRPollingWorker::parseHttpHeaderResponse(QByteArray, int*, QMap<QString, QString>*)
{
    return 0;
}
int SockJSXHRPollingWorker::parseMessageResponse(QByteArray, bool, QString*, int)
{
    return 0;
}
void SockJSXHRPollingWorker::process()
{
    Q_EMIT finished();
}
