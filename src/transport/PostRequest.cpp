#include "transport/PostRequest.h"

#include "base/FileDescriptors.h"
#include "transport/OpenConnections.h"

#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>

#include <cerrno>

namespace {

// The ports at which the connection of a request to \p url may end: its server's, or a proxy's.
QSet<int> farPorts(const QNetworkAccessManager* manager, const QUrl& url)
{
    constexpr int httpPort = 80;
    constexpr int httpsPort = 443;
    QSet<int> ports{url.port(url.scheme() == QLatin1String("https") ? httpsPort : httpPort),
                    manager->proxy().port()};
    if (QNetworkProxyFactory* factory = manager->proxyFactory()) {
        const QList<QNetworkProxy> proxies = factory->queryProxy(QNetworkProxyQuery(url));
        for (const QNetworkProxy& proxy : proxies)
            ports.insert(proxy.port());
    }
    return ports;
}

} // namespace

QNetworkRequest PostRequest::make(const QUrl& url, const QString& contentType)
{
    QNetworkRequest request(url);
    // What goes over the wire is the same with every Qt: their defaults differ.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    request.setRawHeader("accept-encoding", "identity");
    request.setHeader(QNetworkRequest::ContentTypeHeader, contentType);
    return request;
}

QNetworkReply* PostRequest::send(QNetworkAccessManager* manager, QNetworkRequest request,
                                 const QByteArray& body)
{
    OpenConnections* connections = OpenConnections::of(manager);
    if (!connections->isKept() && !FileDescriptors::sufficeForThread())
        request.setUrl(QUrl());
    connections->beginRequest();
    QNetworkReply* reply = manager->post(request, body);
    QObject::connect(reply, &QNetworkReply::finished, connections, [=, url = request.url()] {
        if (connections->endRequest())
            connections->sendAtOnce(farPorts(manager, url));
    });
    return reply;
}

QString PostRequest::errorText(const QNetworkReply* reply)
{
    return reply->url().isEmpty() ? qt_error_string(EMFILE) : reply->errorString();
}
