#include "support/TestCertificates.h"

#include <QFile>
#include <QSslKey>

namespace {

QString pathOf(const QString& fileName)
{
    return QStringLiteral(TEST_SUPPORT_DIR "/certs/") + fileName;
}

QByteArray read(const QString& fileName)
{
    QFile file(pathOf(fileName));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(file.fileName()));
    return file.readAll();
}

} // namespace

QSslCertificate TestCertificates::certificate(const QString& name)
{
    return QSslCertificate(read(name + QStringLiteral(".pem")));
}

QString TestCertificates::fileName(const QString& certificate)
{
    return pathOf(certificate + QStringLiteral(".pem"));
}

QSslConfiguration TestCertificates::server(const QString& name)
{
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.setLocalCertificateChain({certificate(name), certificate(QStringLiteral("root"))});
    tls.setPrivateKey(QSslKey(read(name + QStringLiteral(".pem.key")), QSsl::Ec));
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
