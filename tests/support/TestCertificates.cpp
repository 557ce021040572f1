#include "support/TestCertificates.h"

#include <QFile>
#include <QSslKey>

namespace {

QByteArray read(const QString& fileName)
{
    QFile file(QStringLiteral(TEST_SUPPORT_DIR "/certs/") + fileName);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(file.fileName()));
    return file.readAll();
}

} // namespace

QSslCertificate TestCertificates::certificate(const QString& name)
{
    return QSslCertificate(read(name + QStringLiteral(".pem")));
}

QByteArray TestCertificates::withKey(const QString& name)
{
    return read(name + QStringLiteral(".pem")) + read(QStringLiteral("key"));
}

QSslConfiguration TestCertificates::server(const QString& name)
{
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.setLocalCertificateChain({certificate(name), certificate(QStringLiteral("root"))});
    tls.setPrivateKey(QSslKey(read(QStringLiteral("key")), QSsl::Ec));
    tls.setPeerVerifyMode(QSslSocket::VerifyNone);
    return tls;
}

TestCertificates::TrustedRoot::TrustedRoot() : m_before(QSslConfiguration::defaultConfiguration())
{
    QSslConfiguration tls = m_before;
    tls.addCaCertificate(certificate(QStringLiteral("root")));
    QSslConfiguration::setDefaultConfiguration(tls);
}

TestCertificates::TrustedRoot::~TrustedRoot()
{
    QSslConfiguration::setDefaultConfiguration(m_before);
}
