#pragma once

#include <QString>

/// What devices publish for an answer, as the bus passes it on.
namespace Answers {

QString message(int number);
/// The message in a SockJS frame.
QString frame(const QString& message);

} // namespace Answers
