#pragma once

// Where Qt 5.15 and Qt 6 differ: nothing else in the library asks which of them it is built with.

#include <QAbstractSocket>
#include <QLibraryInfo>
#include <QLoggingCategory>
#include <QtGlobal>

#include <cstdlib>
#include <random>

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

/// Qt 5's qrand(), which Qt 6 has no more: the same numbers for the same seed.
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)

QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED
class SeededRandom
{
public:
    explicit SeededRandom(uint seed) { qsrand(seed); }
    int next() { return qrand(); }
};
QT_WARNING_POP

#else

class SeededRandom
{
public:
    explicit SeededRandom(uint seed) : m_engine(seed) {}
    int next() { return int(m_engine() % (uint(RAND_MAX) + 1)); }

private:
    std::minstd_rand m_engine;
};

#endif

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

/// Where Qt's own texts are in other languages.
inline QString qtTranslationsFolder()
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    return QLibraryInfo::location(QLibraryInfo::TranslationsPath);
#else
    return QLibraryInfo::path(QLibraryInfo::TranslationsPath);
#endif
}
