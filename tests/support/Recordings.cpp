#include "support/Recordings.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>

namespace {

int bodyOf(const QByteArray& bytes)
{
    return bytes.indexOf("\r\n\r\n") + 4;
}

// What the server was made to send when it was recorded.
QStringList contentsOf(const QString& name, const QByteArray& bytes)
{
    if (name.endsWith(QLatin1String("-messages")))
        return Recordings::texts();
    if (name.endsWith(QLatin1String("-stream"))) {
        QStringList contents{QString(2048, QLatin1Char('h')), QStringLiteral("o")};
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
    const QDir folder(QStringLiteral(TEST_SUPPORT_DIR "/recorded"));
    QVector<Recordings::Answer> answers;
    const QStringList names = folder.entryList({QStringLiteral("*.http")}, QDir::Files, QDir::Name);
    for (const QString& fileName : names) {
        QFile file(folder.filePath(fileName));
        if (!file.open(QIODevice::ReadOnly))
            qFatal("Cannot read %s.", qPrintable(file.fileName()));
        const QString name = fileName.section(QLatin1Char('.'), 0, 0);
        const QByteArray bytes = file.readAll();
        answers.append({name, bytes, contentsOf(name, bytes)});
    }
    return answers;
}

} // namespace

QList<int> Recordings::Answer::ends() const
{
    if (!bytes.left(bodyOf(bytes)).toLower().contains("transfer-encoding: chunked"))
        return {int(bytes.size())};
    if (!isStream())
        return {int(bytes.size()) - 2}; // with the line "0"; the empty line behind it is no part of the body
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
