#include "workloads/Answers.h"

#include "workloads/PlainLzma.h"

#include <QJsonArray>
#include <QJsonDocument>

QString Answers::message(int number)
{
    const QString payload =
        QStringLiteral(
            R"({"pollId":"0b6c7e0e-3f6a-4d0e-9d5b-0f3c7b1f9a55","responseTime":%1,"blob":{"pick":["B"]}})")
            .arg(2500 + number % 7000);
    return QStringLiteral(R"({"type":"rec","address":"6f1c0a52-session","body":{"from":"device-%1",)"
                          R"("type":"pollResponse","data":["%2"]}})")
        .arg(number)
        .arg(PlainLzma::compress64(payload));
}

QString Answers::frame(const QString& message)
{
    return QLatin1Char('a') +
           QString::fromUtf8(QJsonDocument(QJsonArray{message}).toJson(QJsonDocument::Compact));
}
