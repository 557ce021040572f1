#pragma once

#include <CalyxClient/calyxclient_export.h>

#include <QList>
#include <QNetworkProxy>
#include <QString>

/// The proxy that the system's network settings prescribe for ordinary web traffic.
///
/// The static operations answer for the raw sockets. As a factory it answers for a QNetworkAccessManager:
/// it gives the proxies that the application would have used if this library had never exported one.
/// A proxy variable without a scheme ("host:port") is read as one with "http://". All operations may be
/// called on any thread; none sends anything.
class CALYXCLIENT_EXPORT QSystemConfigurationProxyFactory : public QNetworkProxyFactory
{
public:
    /// The first proxy that the system names for a plain-HTTP request, or a QNetworkProxy::NoProxy value with
    /// empty host, port 0 and no credentials when that entry has port 0 or is for FTP alone, or there is
    /// none.
    static QNetworkProxy getPrimaryProxy();

    /// getPrimaryProxy() as host, ":" and port; without scheme and credentials. Empty when there is none.
    static QString getProxyString();

    /// Puts \p proxy (as from getProxyString()) into the process environment as `http_proxy`; one without a
    /// host is left out. The value has no scheme, which Qt misreads on the next look-up; from then on this
    /// class looks past it.
    static void exportToEnvironment(const QString& proxy);

    /// The application's proxies for \p query, not disturbed by exportToEnvironment().
    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery& query) override;
};
