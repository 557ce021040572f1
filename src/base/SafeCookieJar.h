#pragma once

#include <QNetworkCookieJar>

/// Keeps cookies that can do no harm in the text of a request, and gives them to the server that set them.
///
/// What a plain jar takes, and this one does not: a CR, LF or NUL in a cookie's name or value, which
/// could begin a header line of its own; and a domain that is the end of an IP address, which other addresses
/// share.
class SafeCookieJar : public QNetworkCookieJar
{
public:
    /// Refusals are logged with \p tag at the beginning of the line.
    SafeCookieJar(const char* tag, QObject* parent);

    /// Keeps \p cookie, that of an address under the address alone, and of all those that were set last, a
    /// hundred. False when it is refused or expired.
    bool insertCookie(const QNetworkCookie& cookie) override;

protected:
    bool validateCookie(const QNetworkCookie& cookie, const QUrl& url) const override;

private:
    const char* m_tag;
};
