#include "workloads/Answers.h"

#include "workloads/PlainLzma.h"

#include <QJsonArray>
#include <QJsonDocument>

QString Answers::message(int number, const QString& pollId)
{
    const QString payload = QStringLiteral(R"({"pollId":"%1","responseTime":%2,"blob":{"pick":["B"]}})")
                                .arg(pollId)
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
