#include "commands/JoinAddress.h"

#include <QHostAddress>
#include <QNetworkInterface>
#include <QProcess>
#include <QUrl>

#include <algorithm>

namespace {

bool isLoopback(const QString& host)
{
    return host == QLatin1String("localhost") || QHostAddress(host).isLoopback();
}

bool isAnywhere(const QString& host)
{
    const QHostAddress address(host);
    const auto isOneOf = {QHostAddress::AnyIPv4, QHostAddress::AnyIPv6, QHostAddress::Any};
    return std::any_of(isOneOf.begin(), isOneOf.end(), [&](auto any) { return address == any; });
}

// The address that other machines of the network know this one by; empty when there is none.
QString ownAddress()
{
    const QList<QHostAddress> addresses = QNetworkInterface::allAddresses();
    for (const QHostAddress& address : addresses) {
        if (address.protocol() == QAbstractSocket::IPv4Protocol && !address.isLoopback() &&
            !address.isLinkLocal())
            return address.toString();
    }
    return QString();
}

} // namespace

QString JoinAddress::ofService(const QString& server)
{
    QUrl url(server);
    const QString own = ownAddress();
    if (isAnywhere(url.host()))
        url.setHost(own.isEmpty() ? QStringLiteral("127.0.0.1") : own);
    return url.toString(QUrl::StripTrailingSlash);
}

QString JoinAddress::withCode(const QString& server, const QString& code)
{
    return QStringLiteral("%1/?code=%2")
        .arg(ofService(server), QString::fromUtf8(QUrl::toPercentEncoding(code)));
}

QString JoinAddress::hint(const QString& server)
{
    if (!isLoopback(QUrl(ofService(server)).host()))
        return QString();
    const QString own = ownAddress();
    if (own.isEmpty())
        return QStringLiteral("Only this machine can reach that address, and it is in no network.");
    return QStringLiteral("Only this machine can reach that address. For phones, start the service with "
                          "--host %1.")
        .arg(own);
}

QStringList JoinAddress::qrCode(const QString& text, const Style& style)
{
    constexpr int patience = 2000; // ms
    QProcess program;
    // With colours of its own where there are any, so that it is dark on light whatever the terminal's are.
    program.start(QStringLiteral("qrencode"),
                  {QStringLiteral("--type"), QLatin1String(style.colour ? "ANSIUTF8" : "UTF8"),
                   QStringLiteral("--margin"), QStringLiteral("2"), text});
    if (!program.waitForFinished(patience) || program.exitCode() != 0)
        return {};
    return QString::fromUtf8(program.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}
