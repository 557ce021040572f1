// What each byte that comes in costs, of a harmless answer and of messages made to hurt: bench/check-baseline
// compares their instructions for each byte.

#include "workloads/Answers.h"
#include "workloads/Channel.h"
#include "workloads/PlainLzma.h"
#include "workloads/Workload.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <memory>

namespace {

constexpr int many = 10000; // what grows with the square of it, is beyond all bounds then

struct Input
{
    const char* name;
    QStringList frames;
    qint64 decoded = 0; // bytes that come out of blocks
};

QString text(const QJsonValue& value)
{
    return QString::fromUtf8(QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact))
        .mid(1)
        .chopped(1);
}

QString frameOf(const QString& type, const QJsonValue& data)
{
    return Answers::frame(text(
        QJsonObject{{QStringLiteral("body"), QJsonObject{{QStringLiteral("from"), QStringLiteral("device-1")},
                                                         {QStringLiteral("type"), type},
                                                         {QStringLiteral("data"), data}}}}));
}

Input message(const char* name, const QJsonValue& data)
{
    return {name, {frameOf(QStringLiteral("pollResponse"), data)}};
}

Input payload(const char* name, const QString& json)
{
    Input input = message(name, QJsonArray{PlainLzma::compress64(json)});
    input.decoded = json.size();
    return input;
}

QString object(const QStringList& members)
{
    return QLatin1Char('{') + members.join(QLatin1Char(',')) + QLatin1Char('}');
}

// Qt's own hash takes "Aa" for "BB".
QStringList namesOfOneHash()
{
    QStringList members{QStringLiteral("\"\":{}")};
    for (int number = 0; number < many; ++number) {
        QString name;
        for (int bit = 0; bit < 14; ++bit)
            name += (number >> bit) & 1 ? QStringLiteral("Aa") : QStringLiteral("BB");
        members.append(QStringLiteral("\"%1\":0").arg(name));
    }
    return members;
}

QString nested(const QString& around, int levels)
{
    QString json = QStringLiteral("0");
    for (int level = 0; level < levels; ++level)
        json = around.arg(json);
    return json;
}

QJsonArray times(const QJsonValue& value)
{
    QJsonArray list;
    for (int i = 0; i < many; ++i)
        list.append(value);
    return list;
}

// Blocks of the largest tables, in turn with others, so that none finds those of the one before.
QJsonArray blocksOfLargeTables()
{
    const QString blocks[] = {PlainLzma::compress64(QStringLiteral("ab"), 8, 4),
                              PlainLzma::compress64(QStringLiteral("ab"), 7, 4)};
    QJsonArray list;
    for (int i = 0; i < many; ++i)
        list.append(blocks[i % 2]);
    return list;
}

QString broken(const QString& base64)
{
    return base64.left(base64.size() / 2);
}

// The first is the harmless one.
std::vector<Input> inputs()
{
    const QString answer =
        QStringLiteral(R"({"pollId":"0b6c7e0e","responseTime":2500,"blob":{"pick":["B"]}})");
    const QString empty = QStringLiteral("{}");
    const int deepest = 1000;
    return {
        payload("harmless", answer),
        payload("long-name",
                object({QStringLiteral("\"%1\":{}").arg(QStringLiteral("\\u0061").repeated(10 * many)),
                        QStringLiteral("\"b\":{}")})),
        payload("many-members", object(namesOfOneHash())),
        payload("many-escapes", text(QString(many, QLatin1Char('"')))),
        payload("deep-nesting", nested(QStringLiteral(R"({"a":[],"a":%1,"a":[]})"), deepest)),
        payload("deep-lists", nested(QStringLiteral("[%1]"), deepest)),
        payload("many-picks", QStringLiteral(R"({"blob":{"pick":%1}})").arg(text(times(1)))),
        message("many-chunks", times(PlainLzma::compress64(QStringLiteral("x")))),
        message("many-texts", times(QStringLiteral("x"))),
        message("many-broken", times(broken(PlainLzma::compress64(answer)))),
        message("large-tables", blocksOfLargeTables()),
        message("many-numbers", times(1)),
        message("decimal-text", QStringLiteral("1,").repeated(many)),
        {"unhandled", {frameOf(QStringLiteral("other"), nested(QStringLiteral(R"({"a":%1})"), deepest))}},
        {"many-frames", QStringList(QVector<QString>(many, QStringLiteral("a[\"{}\"]")).toList())},
        {"many-messages", {QLatin1Char('a') + text(times(empty))}},
    };
}

} // namespace

Workloads workWorkloads(Extent extent)
{
    if (extent != Extent::Counted)
        return {};
    const auto channel = std::make_shared<Channel>();
    Workloads workloads;
    for (const Input& input : inputs()) {
        qint64 bytes = input.decoded;
        for (const QString& frame : input.frames)
            bytes += frame.size();
        const auto feedAll = [channel, frames = input.frames] {
            for (const QString& frame : frames)
                channel->feed(frame);
        };
        workloads.push_back({QByteArray("work-") + input.name, bytes, feedAll, {}, true, true});
    }
    return workloads;
}
