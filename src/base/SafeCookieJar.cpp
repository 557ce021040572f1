#include "base/SafeCookieJar.h"

#include "base/Diagnostics.h"
#include "base/RequestText.h"

#include <QHostAddress>
#include <QNetworkCookie>
#include <QUrl>

namespace {

// An address has no domain but itself, and a name without a point is everybody's, but for the host that is
// called so. Qt puts a point before a name.
bool isOwnDomain(const QString& domain, const QString& host)
{
    if (domain == host || !QHostAddress(host).isNull())
        return domain == host;
    const QStringRef name = domain.midRef(domain.startsWith(QLatin1Char('.')) ? 1 : 0);
    return name == host || name.contains(QLatin1Char('.'));
}

} // namespace

SafeCookieJar::SafeCookieJar(const char* tag, QObject* parent) : QNetworkCookieJar(parent), m_tag(tag) {}

bool SafeCookieJar::validateCookie(const QNetworkCookie& cookie, const QUrl& url) const
{
    if (RequestText::isSafeInLine(cookie.name()) && RequestText::isSafeInLine(cookie.value()) &&
        isOwnDomain(cookie.domain(), url.host()))
        return QNetworkCookieJar::validateCookie(cookie, url);
    qCDebug(diagnostics) << m_tag << "Refused a cookie: control character, or a domain not its own";
    return false;
}
