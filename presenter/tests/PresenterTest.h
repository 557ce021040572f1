#pragma once

#include "FakeClassroom.h"
#include "Presenter.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

// What tests of the whole program have in common.

constexpr int limit = 30000; // ms

const QString goLive = QStringLiteral("login\nsession start\n");

inline QStringList arguments(const FakeClassroom& classroom, const QStringList& more = {})
{
    return QStringList{"--server", classroom.url(), "--user", "teacher", "--password", "chalk"} + more;
}

// The data of a message that is an object.
inline QJsonObject data(const FakeClassroom::Message& message)
{
    return QJsonDocument::fromJson(message.text.toUtf8()).object();
}

#define TRY(condition) QTRY_VERIFY_WITH_TIMEOUT(condition, limit)
#define TRY_OUTPUT(text)                                                                                     \
    QTRY_VERIFY2_WITH_TIMEOUT(presenter.output().contains(text),                                             \
                              qPrintable(presenter.output() + presenter.errors()), limit)
#define TRY_ENDED(presenter, expected)                                                                       \
    QTRY_VERIFY2_WITH_TIMEOUT(!(presenter).isRunning(),                                                      \
                              qPrintable((presenter).output() + (presenter).errors()), limit);               \
    QVERIFY2((presenter).status() == (expected),                                                             \
             qPrintable(QStringLiteral("status %1\n").arg((presenter).status()) + (presenter).output() +     \
                        (presenter).errors()))

// Writes lines that start a session, and waits until it is live.
#define WRITE_UNTIL_LIVE(lines)                                                                              \
    presenter.write(lines);                                                                                  \
    TRY_OUTPUT("is live")
// Without further input, the program ends and is content.
#define TRY_END_OF_INPUT()                                                                                   \
    presenter.closeInput();                                                                                  \
    TRY_ENDED(presenter, 0)

// The program refuses the lines of the present row, and says the row's part of a sentence about it.
inline void verifyRefused()
{
    QFETCH(QString, lines);
    QFETCH(QString, part);
    FakeClassroom classroom;
    Presenter presenter(arguments(classroom));
    presenter.write(lines);
    TRY_ENDED(presenter, 1);
    QVERIFY2(presenter.errors().contains(part), qPrintable(presenter.errors()));
}
