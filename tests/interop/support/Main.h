#pragma once

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QTest>

namespace Interop {

/// How much is done, where the environment does not say.
inline int amount(const char* name, int usual)
{
    return qEnvironmentVariableIsSet(name) ? qEnvironmentVariableIntValue(name) : usual;
}

/// Runs the tests of \p Test. No proxy of the machine's stands between; a test that hangs is ended with its
/// stack shown.
template<typename Test>
int run(int argc, char** argv)
{
    // Below the limit of ctest. QTest's watchdog counts on through rows that follow each other quickly, so
    // that this is the time of all of them.
    if (qEnvironmentVariableIsEmpty("QTEST_FUNCTION_TIMEOUT"))
        qputenv("QTEST_FUNCTION_TIMEOUT", "580000");
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
