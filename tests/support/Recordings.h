#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

/// Answers of real servers to receive requests, written down byte for byte, with what is in them.
namespace Recordings {

struct Answer
{
    QString name; ///< "sockjs-go-stream": who has given it, and to what
    QByteArray bytes;
    /// What the server was made to send, as contents() gives it: known without a parser.
    QStringList contents;

    /// Whether "/xhr_streaming" was asked.
    bool isStream() const { return name.endsWith(QLatin1String("-stream")); }
    /// For each piece of the contents the number of bytes after which it must have been delivered, and before
    /// which it cannot. Found without a parser: a line break that belongs to a frame has no CR.
    QList<int> ends() const;
};

/// All of them, in the order of their names.
const QVector<Answer>& all();
const Answer& named(const QString& name);

/// \p frames with those of messages taken apart: ["o", "first text", "second text"].
QStringList contents(const QStringList& frames);

/// What the servers were made to send in one polled answer.
QStringList texts();
/// What the servers were made to send in a stream, one by one.
constexpr int streamedTexts = 3;
QString streamedText(int number);

} // namespace Recordings
