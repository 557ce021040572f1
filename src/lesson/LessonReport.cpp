// What a teacher has of a lesson afterwards.
#include "lesson/LessonPrivate.h"
#include "lesson/LessonText.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSaveFile>

#include <utility>

namespace Calyx {

namespace {

QStringList csvRow(const QString& where, const QString& question, const PollAnswer& answer)
{
    return {where,
            question,
            answer.name,
            answer.deviceId,
            answer.text,
            LessonText::csvMark(answer.mark),
            QString::number(answer.msecs),
            answer.receivedAt.toLocalTime().toString(Qt::ISODate),
            answer.isLate ? QStringLiteral("yes") : QString()};
}

} // namespace

QJsonObject Lesson::report() const
{
    QJsonArray polls;
    for (const Poll* poll : std::as_const(d->content.polls))
        polls.append(poll->toJson());
    QJsonArray assessments;
    for (const Assessment* assessment : std::as_const(d->content.assessments))
        assessments.append(assessment->toJson());
    return {{QStringLiteral("lesson"), d->content.lessonName},
            {QStringLiteral("teacher"), d->content.teacher},
            {QStringLiteral("startedAt"), d->content.startedAt.toString(Qt::ISODateWithMs)},
            {QStringLiteral("savedAt"), QDateTime::currentDateTime().toString(Qt::ISODateWithMs)},
            {QStringLiteral("learners"), d->content.roster->toJson()},
            {QStringLiteral("polls"), polls},
            {QStringLiteral("assessments"), assessments}};
}

QString Lesson::toCsv() const
{
    QString csv = LessonText::csvLine(
        {QStringLiteral("Part"), QStringLiteral("Question"), QStringLiteral("Learner"),
         QStringLiteral("Device"), QStringLiteral("Answer"), QStringLiteral("Right"),
         QStringLiteral("Milliseconds"), QStringLiteral("Received"), QStringLiteral("Late")});
    for (const Poll* poll : std::as_const(d->content.polls)) {
        const QVector<PollAnswer> answers = poll->answers();
        for (const PollAnswer& answer : answers)
            csv += LessonText::csvLine(
                csvRow(QStringLiteral("Poll %1").arg(poll->number()), poll->title(), answer));
    }
    for (const Assessment* assessment : std::as_const(d->content.assessments)) {
        const QStringList devices = assessment->participants();
        for (const QString& deviceId : devices) {
            for (int number = 1; number <= assessment->questionCount(); ++number) {
                const PollAnswer answer = assessment->answer(deviceId, number);
                const Question& question = assessment->plan().questions.at(number - 1);
                const QString text = question.text.isEmpty() ? question.kindName() : question.text;
                if (answer.mark != PollAnswer::NoAnswer)
                    csv += LessonText::csvLine(
                        csvRow(assessment->title(), QStringLiteral("%1 %2").arg(number).arg(text), answer));
            }
        }
    }
    return csv;
}

bool Lesson::save(const QString& fileName)
{
    const bool isCsv = QFileInfo(fileName).suffix().compare(QLatin1String("csv"), Qt::CaseInsensitive) == 0;
    const QByteArray bytes =
        isCsv ? QByteArray("\xef\xbb\xbf") + toCsv().toUtf8() // or spreadsheets take it for Latin 1
              : QJsonDocument(report()).toJson();
    QSaveFile file(fileName);
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit())
        return true;
    d->fail(LessonError::make(LessonError::BadInput, file.errorString(),
                              tr("%1 cannot be written: %2").arg(fileName, file.errorString())));
    return false;
}

} // namespace Calyx
