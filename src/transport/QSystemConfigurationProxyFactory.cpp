#include "transport/QSystemConfigurationProxyFactory.h"

#include <QMutex>
#include <QMutexLocker>
#include <QScopedValueRollback>
#include <QUrl>

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

// Takes our own value out of the environment for the length of one look-up. Emptied rather than removed: Qt
// reads both as "not set", and a variable that stays in place never makes the C library move its table.
class ExportSuspension
{
public:
    ExportSuspension()
        : m_lock(&currentExport().mutex)
        , m_active(currentExport().done && qgetenv(proxyVariable) == currentExport().exported)
    {
        if (m_active)
            qputenv(proxyVariable, currentExport().before);
    }
    ~ExportSuspension()
    {
        if (m_active)
            qputenv(proxyVariable, currentExport().exported);
    }
    Q_DISABLE_COPY(ExportSuspension)

private:
    QMutexLocker m_lock;
    bool m_active;
};

} // namespace

QNetworkProxy QSystemConfigurationProxyFactory::getPrimaryProxy()
{
    // Only asked about, never contacted: any public web address gives the proxy for ordinary web traffic.
    static const QNetworkProxyQuery query(QUrl(QStringLiteral("http://www.example.com/")),
                                          QNetworkProxyQuery::UrlRequest);
    const ExportSuspension suspension;
    const QList<QNetworkProxy> proxies = QNetworkProxyFactory::systemProxyForQuery(query);
    if (!proxies.isEmpty() && proxies.first().port() != 0)
        return proxies.first();
    return QNetworkProxy(QNetworkProxy::NoProxy);
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
    Export& state = currentExport();
    const QMutexLocker lock(&state.mutex);
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
    const ExportSuspension suspension;
    if (asking) // the application has one of this class as its own
        return QNetworkProxyFactory::systemProxyForQuery(query);
    const QScopedValueRollback<bool> guard(asking, true);
    return QNetworkProxyFactory::proxyForQuery(query);
}
