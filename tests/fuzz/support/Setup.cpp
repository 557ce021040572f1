// What all fuzz targets need before their first input.

#include <QCoreApplication>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);

// The diagnostics stay on, so that building their texts is tried as well; nobody reads them.
int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    static QCoreApplication application(*argc, *argv);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    return 0;
}
