#include "faults/support/Recordings.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

#include <algorithm>

namespace {

constexpr int preludeSize = 2048;

int bodyOf(const QByteArray& bytes)
{
    return bytes.indexOf("\r\n\r\n") + 4;
}

// What the server was made to send when it was recorded.
QStringList contentsOf(const QString& name, const QByteArray& bytes)
{
    const QString what = name.section(QLatin1Char('-'), -1);
    if (what == QLatin1String("open"))
        return {QStringLiteral("o")};
    if (what == QLatin1String("heartbeat"))
        return {QStringLiteral("h")};
    if (what == QLatin1String("closed"))
        return {QStringLiteral("c[3000,\"over\"]")};
    if (what == QLatin1String("messages"))
        return Recordings::texts();
    if (what == QLatin1String("stream")) {
        QStringList contents{QString(preludeSize, QLatin1Char('h')), QStringLiteral("o")};
        for (int i = 0; i < Recordings::streamedTexts; ++i)
            contents.append(Recordings::streamedText(i));
        return contents;
    }
    QByteArray page = bytes.mid(bodyOf(bytes));
    if (page.endsWith('\n'))
        page.chop(1);
    return {QString::fromUtf8(page)};
}

QVector<Recordings::Answer> readAll()
{
    const QDir folder(QStringLiteral(FAULTS_SOURCE_DIR "/recorded"));
    QVector<Recordings::Answer> answers;
    const QStringList names = folder.entryList({QStringLiteral("*.http")}, QDir::Files, QDir::Name);
    for (const QString& name : names) {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            qFatal("Cannot read %s.", qPrintable(file.fileName()));
        Recordings::Answer answer;
        answer.name = name.section(QLatin1Char('.'), 0, 0);
        answer.bytes = file.readAll();
        answer.contents = contentsOf(answer.name, answer.bytes);
        answers.append(answer);
    }
    return answers;
}

} // namespace

bool Recordings::Answer::isChunked() const
{
    return bytes.left(bodyOf(bytes)).toLower().contains("transfer-encoding: chunked");
}

bool Recordings::Answer::closes() const
{
    return bytes.left(bodyOf(bytes)).toLower().contains("connection: close");
}

QList<int> Recordings::Answer::ends() const
{
    if (!isChunked())
        return {bytes.size()};
    if (!isStream())
        return {bytes.size() - 2}; // with the line "0"; the empty line behind it is no part of the body
    QList<int> ends;
    for (int i = bodyOf(bytes); i < bytes.size(); ++i) {
        if (bytes.at(i) == '\n' && bytes.at(i - 1) != '\r')
            ends.append(i + 1);
    }
    return ends;
}

const QVector<Recordings::Answer>& Recordings::all()
{
    static const QVector<Answer> answers = readAll();
    return answers;
}

const Recordings::Answer& Recordings::named(const QString& name)
{
    for (const Answer& answer : all()) {
        if (answer.name == name)
            return answer;
    }
    qFatal("Nothing of the name %s is recorded.", qPrintable(name));
}

const Recordings::Answer& Recordings::longest()
{
    return *std::max_element(all().begin(), all().end(), [](const Answer& left, const Answer& right) {
        return left.bytes.size() < right.bytes.size();
    });
}

void Recordings::addRows(bool (*wanted)(const Answer&))
{
    QTest::addColumn<QString>("name");
    for (const Answer& answer : all()) {
        if (!wanted || wanted(answer))
            QTest::newRow(qPrintable(answer.name)) << answer.name;
    }
}

const Recordings::Answer& Recordings::ofRow()
{
    QFETCH(QString, name);
    return named(name);
}

QStringList Recordings::contents(const QStringList& frames)
{
    QStringList contents;
    for (const QString& frame : frames) {
        if (!frame.startsWith(QLatin1Char('a'))) {
            contents.append(frame);
            continue;
        }
        const QJsonArray texts = QJsonDocument::fromJson(frame.mid(1).toUtf8()).array();
        for (const QJsonValue& text : texts)
            contents.append(text.toString());
    }
    return contents;
}

QStringList Recordings::texts()
{
    return {QStringLiteral("1 Grüße, €, 漢字 und 😀"), QStringLiteral("2 \"HTTP/1.1 200 OK\\r\\n\"")};
}

QString Recordings::streamedText(int number)
{
    return QStringLiteral("%1 Grüße über %2 mal 😀 HTTP/1.1 ").arg(number).arg(number * 1000) +
           QString(70, QLatin1Char('.'));
}

QByteArray Recordings::jsonList(const QStringList& texts)
{
    return QJsonDocument(QJsonArray::fromStringList(texts)).toJson(QJsonDocument::Compact);
}
