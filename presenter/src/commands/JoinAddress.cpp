#include "commands/JoinAddress.h"

#include "text/Words.h"

#include <QHostAddress>
#include <QNetworkInterface>
#include <QProcess>

namespace {

bool isLoopback(const QString& host)
{
    return host == QLatin1String("localhost") || QHostAddress(host).isLoopback();
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

QString JoinAddress::hint(const QUrl& address)
{
    if (!isLoopback(address.host()))
        return QString();
    const QString own = ownAddress();
    if (own.isEmpty())
        return Words::tr("Only this machine can reach that address, and it is in no network.");
    return Words::tr("Only this machine can reach that address. For phones, start the service with "
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
