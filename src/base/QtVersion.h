#pragma once

// Where Qt 5.15 and Qt 6 differ: nothing else in the library asks which of them it is built with.

#include <QAbstractSocket>
#include <QLoggingCategory>
#include <QtGlobal>

#include <cstdlib>

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)

/// What qCDebug() takes: the default category, as long as there is one. A host may keep our objects in
/// statics, and these go after Qt's.
struct DiagnosticsCategory
{
    const QLoggingCategory* category;

    bool isDebugEnabled() const { return category && category->isDebugEnabled(); }
    const char* categoryName() const { return category->categoryName(); }
};

inline DiagnosticsCategory diagnosticsCategory()
{
    return {QLoggingCategory::defaultCategory()};
}

#else

/// What qCDebug() takes: the default category, or, where our objects outlive it, one that says nothing.
inline const QLoggingCategory& diagnosticsCategory()
{
    if (const QLoggingCategory* category = QLoggingCategory::defaultCategory())
        return *category;
    static const auto* const silent = new QLoggingCategory("default", QtFatalMsg); // outlives everything
    return *silent;
}

#endif

QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED
/// Qt 5's qrand() on this platform, which Qt 6 has no more: the same numbers for the same seed.
class SeededRandom
{
public:
#if defined(Q_OS_WIN) && QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    explicit SeededRandom(uint seed)
    {
        std::srand(seed);
    }
    int next()
    {
        return std::rand();
    }
#elif QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    explicit SeededRandom(uint seed) : m_seed(seed) {}
    int next()
    {
        return rand_r(&m_seed);
    }

private:
    uint m_seed;
#else
    explicit SeededRandom(uint seed)
    {
        qsrand(seed);
    }
    int next()
    {
        return qrand();
    }
#endif
};
QT_WARNING_POP

/// The signal of a WebSocket's error: errorOccurred() where there is one (from 6.5), and error() otherwise.
template<typename Socket>
constexpr auto errorSignal(int /*preferred*/) -> decltype(&Socket::errorOccurred)
{
    return &Socket::errorOccurred;
}

template<typename Socket>
constexpr auto errorSignal(long /*otherwise*/)
{
    return QOverload<QAbstractSocket::SocketError>::of(&Socket::error);
}
