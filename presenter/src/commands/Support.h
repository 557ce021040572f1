#pragma once

#include "commands/Command.h"
#include "lesson/Picture.h"

#include <QByteArray>
#include <QString>

/// What several commands need.
namespace Support {

/// Why \p what ("Login") failed: the service's error key if it gave one, else whether the service answers at
/// all; \p hint says what to do next about a refusal.
Outcome refused(Host& host, const QString& what, const QString& hint);

/// Done when a session is live; else what to do.
Outcome needLive(Host& host);

/// Takes "within SECONDS" from the end of \p arguments; \p msecs stays as it is without.
Outcome takeWithin(Arguments& arguments, qint64& msecs);
/// Takes "NAME=..." from \p arguments. False when there is none.
bool takeSetting(Arguments& arguments, const QString& name, QString& value);

/// Reads a file whose name is relative to the lesson's folder.
Outcome readFile(Host& host, const QString& name, QByteArray& content);
/// Reads a PNG file.
Outcome readPicture(Host& host, const QString& name, Picture& picture);

/// A file that the service keeps.
struct Upload
{
    QString id;
    QString address;
};
Outcome upload(Host& host, const QString& name, Upload& upload);

/// The device of the one learner that \p text names.
Outcome findLearner(Host& host, const QString& text, QString& deviceId);

/// Takes "NAME=yes" or "NAME=no"; \p flag stays as it is without.
Outcome takeFlag(Arguments& arguments, const QString& name, bool& flag);
/// Takes "NAME=NUMBER", a whole number from 0.
Outcome takeCount(Arguments& arguments, const QString& name, int& number);

/// Stops the poll that runs, if any, and prints its final tally.
void stopPoll(Host& host);
/// Prints the results of the assessment that is under way or was last.
void printResults(Host& host);
/// Stops the assessment that is under way, if any, and prints its results.
void stopAssessment(Host& host);
/// Both of them.
void stopActivities(Host& host);
/// Stops what is open and logs out, as far as it goes. False when something of it failed.
bool endLesson(Host& host);

} // namespace Support
