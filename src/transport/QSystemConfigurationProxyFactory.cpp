#include "transport/QSystemConfigurationProxyFactory.h"

#include <QMutex>
#include <QScopedValueRollback>
#include <QUrl>

#include <mutex>

namespace {

const char proxyVariable[] = "http_proxy";

struct Export
{
    QRecursiveMutex mutex; // the application's own factory may ask this class again
    bool done = false;
    QByteArray exported;
    QByteArray before; // empty when the variable was not set
};

Export& currentExport()
{
    static Export instance;
    return instance;
}

// Qt takes what stands before the colon of "host:port" for the scheme.
QByteArray withScheme(const QByteArray& value)
{
    return value.isEmpty() || value.contains("://") ? value : "http://" + value;
}

// Puts a value that Qt can read into the environment for the length of one look-up: the one from before our
// own export, and with a scheme. Emptied rather than removed: Qt reads both as "not set", and a variable that
// stays in place never makes the C library move its table.
class ReadableEnvironment
{
public:
    ReadableEnvironment() : m_lock(currentExport().mutex), m_value(qgetenv(proxyVariable))
    {
        const Export& state = currentExport();
        const bool isOurs = state.done && m_value == state.exported;
        const QByteArray readable = withScheme(isOurs ? state.before : m_value);
        m_active = readable != m_value;
        if (m_active)
            qputenv(proxyVariable, readable);
    }
    ~ReadableEnvironment()
    {
        if (m_active)
            qputenv(proxyVariable, m_value);
    }
    Q_DISABLE_COPY(ReadableEnvironment)

private:
    std::unique_lock<QRecursiveMutex> m_lock;
    QByteArray m_value;
    bool m_active = false;
};

} // namespace

QNetworkProxy QSystemConfigurationProxyFactory::getPrimaryProxy()
{
    // Only asked about, never contacted: any public web address gives the proxy for ordinary web traffic.
    static const QNetworkProxyQuery query(QUrl(QStringLiteral("http://www.example.com/")),
                                          QNetworkProxyQuery::UrlRequest);
    const ReadableEnvironment environment;
    const QList<QNetworkProxy> proxies = QNetworkProxyFactory::systemProxyForQuery(query);
    // Asked for the web, a Qt that leaves the question to libproxy may name one that knows FTP alone.
    if (proxies.isEmpty() || proxies.first().port() == 0 ||
        proxies.first().type() == QNetworkProxy::FtpCachingProxy)
        return QNetworkProxy(QNetworkProxy::NoProxy);
    return proxies.first();
}

QString QSystemConfigurationProxyFactory::getProxyString()
{
    const QNetworkProxy proxy = getPrimaryProxy();
    if (proxy.port() == 0)
        return QString();
    return proxy.hostName() + QLatin1Char(':') + QString::number(proxy.port());
}

void QSystemConfigurationProxyFactory::exportToEnvironment(const QString& proxy)
{
    if (proxy.startsWith(QLatin1Char(':')))
        return;
    Export& state = currentExport();
    const std::lock_guard<QRecursiveMutex> lock(state.mutex);
    const QByteArray current = qgetenv(proxyVariable);
    if (!state.done || current != state.exported)
        state.before = current;
    state.exported = proxy.toLatin1();
    state.done = true;
    qputenv(proxyVariable, state.exported);
}

QList<QNetworkProxy> QSystemConfigurationProxyFactory::queryProxy(const QNetworkProxyQuery& query)
{
    static thread_local bool asking = false;
    const ReadableEnvironment environment;
    if (asking) // the application has one of this class as its own
        return QNetworkProxyFactory::systemProxyForQuery(query);
    const QScopedValueRollback<bool> guard(asking, true);
    return QNetworkProxyFactory::proxyForQuery(query);
}
