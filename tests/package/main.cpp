// A host outside the tree: finds the installed package, links it, and makes one call of each layer.
#include <CalyxClient/Learner>
#include <CalyxClient/Lzma>
#include <CalyxClient/PresenterClient>
#include <CalyxClient/calyxclient_version.h>
#include <CalyxClient/collab/PresenterCollab.h>

#include <QCoreApplication>

#if CALYXCLIENT_VERSION < CALYXCLIENT_VERSION_CHECK(0, 1, 0)
#error The parts do not make the version
#endif

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    PresenterClient client(nullptr, QStringLiteral("http://127.0.0.1:1/"));
    QString packed;
    QString unpacked;
    const bool codecWorks = Lzma::compress64(QStringLiteral("chalk"), &packed) &&
                            Lzma::decompress64(packed, &unpacked) && unpacked == QLatin1String("chalk");
    const bool serverRefuses = !client.checkServer(QString(), QString());
    return codecWorks && serverRefuses ? 0 : 1;
}
