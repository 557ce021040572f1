#include "transport/SockJSXHRPolling.h"

SockJSXHRPolling::SockJSXHRPolling(QObject* parent) : QObject(parent) {}
SockJSXHRPolling::~SockJSXHRPolling() = default;
bool SockJSXHRPolling::start(QString, int, bool, QString, bool)
{
    return false;
}
void SockJSXHRPolling::doPoll() {}
void SockJSXHRPolling::sendTextMessage(QString) {}
void SockJSXHRPolling::close() {}
void SockJSXHRPolling::retire()
{
    deleteLater();
}
int SockJSXHRPolling::getCookieCount()
{
    return 0;
}
QString SockJSXHRPolling::getCookieString()
{
    return QString();
}
void SockJSXHRPolling::doRequestXHR(const QString&, const QString&) {}
void SockJSXHRPolling::onReceivedHeadersResponse(XHRRequest*, QStringMap) {}
void SockJSXHRPolling::onReceivedMessageResponse(XHRRequest*, QString) {}
void SockJSXHRPolling::onNAMRequestFinished(QNetworkReply*) {}
void SockJSXHRPolling::onReconnected() {}
