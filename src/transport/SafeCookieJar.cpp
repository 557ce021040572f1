#include "transport/SafeCookieJar.h"

#include "Diagnostics.h"
#include "transport/RequestText.h"

#include <QHostAddress>
#include <QNetworkCookie>
#include <QUrl>

namespace {

// An address has no domain but itself, and a name without a point is everybody's.
bool isOwnDomain(const QString& domain, const QString& host)
{
    return domain == host || (QHostAddress(host).isNull() && domain.indexOf(QLatin1Char('.'), 1) > 0);
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
