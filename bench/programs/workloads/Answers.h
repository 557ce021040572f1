#pragma once

#include <QString>

/// What devices publish for an answer, as the bus passes it on.
namespace Answers {

/// To the poll with this id, by a device of its own.
QString message(int number, const QString& pollId = QStringLiteral("0b6c7e0e-3f6a-4d0e-9d5b-0f3c7b1f9a55"));
/// The message in a SockJS frame.
QString frame(const QString& message);

} // namespace Answers
