#pragma once

#include "FakeClassroom.h"
#include "Presenter.h"

#include <QTest>

// What tests of the whole program have in common.

constexpr int limit = 30000; // ms

const QString goLive = QStringLiteral("login\nsession start\n");

inline QStringList arguments(const FakeClassroom& classroom, const QStringList& more = {})
{
    return QStringList{"--server", classroom.url(), "--user", "teacher", "--password", "chalk"} + more;
}

#define TRY(condition) QTRY_VERIFY_WITH_TIMEOUT(condition, limit)
#define TRY_OUTPUT(text)                                                                                     \
    QTRY_VERIFY2_WITH_TIMEOUT(presenter.output().contains(text),                                             \
                              qPrintable(presenter.output() + presenter.errors()), limit)
#define TRY_ENDED(presenter, expected)                                                                       \
    TRY(!(presenter).isRunning());                                                                           \
    QVERIFY2((presenter).status() == (expected),                                                             \
             qPrintable(QStringLiteral("status %1\n").arg((presenter).status()) + (presenter).output() +     \
                        (presenter).errors()))
