#include "lesson/JoinAddress.h"

#include "lesson/Lesson.h"

#include <QHostAddress>
#include <QNetworkInterface>

#include <algorithm>

namespace {

// The first address by which other machines of the network know this one; empty when there is none.
QString ownAddress()
{
    const QList<QHostAddress> addresses = QNetworkInterface::allAddresses();
    const auto own = std::find_if(addresses.begin(), addresses.end(), [](const QHostAddress& address) {
        return address.protocol() == QAbstractSocket::IPv4Protocol && !address.isLoopback() &&
               !address.isLinkLocal();
    });
    return own == addresses.end() ? QString() : own->toString();
}

} // namespace

QString JoinAddress::of(const QString& server)
{
    QUrl url(server);
    const QList<QHostAddress> all{QHostAddress(QHostAddress::AnyIPv4), QHostAddress(QHostAddress::AnyIPv6)};
    if (!all.contains(QHostAddress(url.host())))
        return server;
    const QString own = ownAddress();
    url.setHost(own.isEmpty() ? QStringLiteral("127.0.0.1") : own);
    return url.toString();
}

QString JoinAddress::hint(const QUrl& address)
{
    const QString name = address.host();
    if (name != QLatin1String("localhost") && !QHostAddress(name).isLoopback())
        return QString();
    const QString own = ownAddress();
    if (own.isEmpty())
        return Calyx::Lesson::tr("Only this machine can reach that address, and it is in no network.");
    return Calyx::Lesson::tr("Only this machine can reach that address. For phones, start the service with "
                             "--host %1.")
        .arg(own);
}
