#pragma once

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QTest>

namespace Interop {

/// Runs the tests of \p Test: each ends within two minutes, and no proxy of the machine's stands between.
template<typename Test>
int run(int argc, char** argv)
{
    qputenv("QTEST_FUNCTION_TIMEOUT", "120000");
    for (const char* name : {"http_proxy", "https_proxy", "all_proxy", "no_proxy", "HTTP_PROXY",
                             "HTTPS_PROXY", "ALL_PROXY", "NO_PROXY"})
        qunsetenv(name);
    // The library writes down every message; QT_LOGGING_RULES=default.debug=true shows them.
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    QCoreApplication application(argc, argv);
    Test test;
    return QTest::qExec(&test, argc, argv);
}

} // namespace Interop

#define INTEROP_MAIN(Test)                                                                                   \
    int main(int argc, char** argv)                                                                          \
    {                                                                                                        \
        return Interop::run<Test>(argc, argv);                                                               \
    }
