#pragma once

#include <QSslCertificate>
#include <QSslConfiguration>
#include <QString>

/// The certificates in tests/support/certs.
namespace TestCertificates {

/// "root" (common name "Calyx Test Root"), which signed "loopback" (for 127.0.0.1), "expired" (the same, no
/// longer valid) and "elsewhere" (for another host); "stranger", another root, which signed "unknown" (for
/// 127.0.0.1); or "nameless" (a root without a common name).
QSslCertificate certificate(const QString& name);
/// Where it is kept, in PEM; the private key is beside it, with ".key" after its name, where haproxy looks
/// for it.
QString fileName(const QString& certificate);
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
