#include "lesson/PollKinds.h"

#include "text/Text.h"
#include "text/Words.h"

#include <QMap>

using namespace Calyx;

namespace {

QString friendly(QString name)
{
    return name.replace(QLatin1Char(' '), QLatin1Char('-'));
}

QString plain(QString name)
{
    name = name.toLower();
    for (const char separator : {' ', '-', '_'})
        name.remove(QLatin1Char(separator));
    return name;
}

template<typename Type>
QStringList names(const QMap<Type, QString>& table)
{
    QStringList all;
    for (const QString& name : table)
        all.append(friendly(name));
    return all;
}

template<typename Type>
bool read(const QMap<Type, QString>& table, const QString& name, Type& type)
{
    for (auto entry = table.begin(); entry != table.end(); ++entry) {
        if (plain(entry.value()) != plain(name))
            continue;
        type = entry.key();
        return true;
    }
    return false;
}

} // namespace

QStringList PollKinds::typeNames()
{
    return names(PollType::POLL_TYPE_STR());
}

QStringList PollKinds::ordinalNames()
{
    return names(OrdinalType::ORDINAL_TYPE_STR());
}

QString PollKinds::typeName(PollType::POLL_TYPE type)
{
    return friendly(PollType::POLL_TYPE_STR().value(type));
}

QString PollKinds::ordinalName(OrdinalType::ORDINAL_TYPE ordinal)
{
    return friendly(OrdinalType::ORDINAL_TYPE_STR().value(ordinal));
}

bool PollKinds::readType(const QString& name, PollType::POLL_TYPE& type)
{
    return read(PollType::POLL_TYPE_STR(), name, type);
}

bool PollKinds::readOrdinal(const QString& name, OrdinalType::ORDINAL_TYPE& ordinal)
{
    return read(OrdinalType::ORDINAL_TYPE_STR(), name, ordinal);
}

QString PollKinds::description(const Question& question)
{
    QStringList parts = {typeName(question.type)};
    const int options = question.optionIds().size();
    if (question.type == PollType::NUMBER)
        parts.append(Text::count(question.decimals, "decimal"));
    else if (options > 0)
        parts += {ordinalName(question.ordinal), Text::count(options, "option")};
    parts.removeDuplicates(); // two kinds are called as their labelling is
    if (question.type == PollType::MULTIPLE && question.choices > 1)
        parts.append(Words::tr("%n correct", nullptr, question.choices));
    if (!question.picture.isEmpty() || !question.pictureUrl.isEmpty())
        parts.append(Words::tr("with a picture"));
    return parts.join(QStringLiteral(", "));
}
