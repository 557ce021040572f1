#pragma once

#include <QSslCertificate>
#include <QSslConfiguration>
#include <QString>

/// The certificates in tests/support/certs.
namespace TestCertificates {

/// "root" (common name "Calyx Test Root"), which signed "loopback" (for 127.0.0.1) and "elsewhere" (for
/// another host), or "nameless" (a root without a common name).
QSslCertificate certificate(const QString& name);
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
