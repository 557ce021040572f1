#include "base/SafeCookieJar.h"

#include "base/Diagnostics.h"
#include "base/RequestText.h"

#include <QHostAddress>
#include <QNetworkCookie>
#include <QUrl>

namespace {

// What a plain jar takes for each request grows with the square of this.
constexpr int mostCookies = 100;

// Qt puts a point before a domain that is a name, and a server may put one before an address.
QString withoutPoint(const QString& domain)
{
    return domain.startsWith(QLatin1Char('.')) ? domain.mid(1) : domain;
}

bool isAddress(const QString& server)
{
    return !QHostAddress(server).isNull();
}

// An address has no domain but itself. A name without a point, such as "com", is everybody's, but where the
// server itself is called so.
bool isOwnDomain(const QString& domain, const QString& server)
{
    const QString name = withoutPoint(domain);
    return name == server || (!isAddress(server) && name.contains(QLatin1Char('.')));
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

// A plain jar gives the cookie of a domain with a point to all names that end with it.
bool SafeCookieJar::insertCookie(const QNetworkCookie& cookie)
{
    QNetworkCookie kept(cookie);
    if (isAddress(withoutPoint(cookie.domain())))
        kept.setDomain(withoutPoint(cookie.domain()));
    if (!QNetworkCookieJar::insertCookie(kept))
        return false;
    if (allCookies().size() > mostCookies)
        deleteCookie(QNetworkCookie(allCookies().constFirst()));
    return true;
}
