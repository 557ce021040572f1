#pragma once

#include <QSslCertificate>
#include <QSslConfiguration>
#include <QString>

/// The certificates in tests/support/certs.
namespace TestCertificates {

/// "root" (common name "Calyx Test Root"), which signed "loopback" (for 127.0.0.1), "expired" (the same, no
/// longer valid) and "elsewhere" (for another host); "unknown" (for 127.0.0.1), which another root signed; or
/// "nameless" (a root without a common name).
QSslCertificate certificate(const QString& name);
/// The same in PEM, with the private key of those who show it.
QByteArray withKey(const QString& name);
/// The configuration of a server that shows the certificate \p name and its root.
QSslConfiguration server(const QString& name);

/// Makes the root one that this program trusts, for as long as it lives.
class TrustedRoot
{
public:
    TrustedRoot();
    ~TrustedRoot();
    Q_DISABLE_COPY(TrustedRoot)

private:
    QSslConfiguration m_before;
};

} // namespace TestCertificates
