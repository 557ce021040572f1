#include "agreement/Text.h"

#include <QCryptographicHash>
#include <QStringList>

namespace {

QString plain(const QString& text)
{
    QString line;
    for (const QChar c : text) {
        if (c >= QLatin1Char(' ') && c <= QLatin1Char('~') && c != QLatin1Char('\\'))
            line += c;
        else
            line += QStringLiteral("\\%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
    }
    return line;
}

QString brief(const QString& line)
{
    constexpr int shown = 1000;
    if (line.size() <= shown)
        return line;
    const QByteArray sum = QCryptographicHash::hash(line.toUtf8(), QCryptographicHash::Sha1).toHex();
    return line.left(shown) + QStringLiteral("... %1 %2").arg(line.size()).arg(QString::fromLatin1(sum));
}

QString joined(const QStringList& parts, char begin, char end)
{
    return QLatin1Char(begin) + parts.join(QLatin1Char(',')) + QLatin1Char(end);
}

QString ofList(const QVariantList& list)
{
    QStringList parts;
    for (const QVariant& part : list)
        parts.append(textOf(part));
    return joined(parts, '[', ']');
}

QString ofMap(const QVariantMap& map)
{
    QStringList parts;
    for (auto part = map.cbegin(); part != map.cend(); ++part)
        parts.append(plain(part.key()) + QLatin1Char('=') + textOf(part.value()));
    return joined(parts, '{', '}');
}

} // namespace

QString textOf(const QVariant& value)
{
    constexpr int exact = 17;
    switch (value.userType()) {
    case QMetaType::UnknownType:
        return QStringLiteral("nothing");
    case QMetaType::Nullptr:
        return QStringLiteral("null");
    case QMetaType::QVariantMap:
        return ofMap(value.toMap());
    case QMetaType::QVariantList:
        return ofList(value.toList());
    case QMetaType::QStringList:
        return QStringLiteral("texts") + ofList(value.toList());
    case QMetaType::Double:
        return QStringLiteral("double ") + QString::number(value.toDouble(), 'g', exact);
    case QMetaType::QByteArray:
        return QStringLiteral("bytes ") + brief(QString::fromLatin1(value.toByteArray().toHex()));
    case QMetaType::QString:
        return (value.toString().isNull() ? QStringLiteral("no text") : QStringLiteral("text ")) +
               brief(plain(value.toString()));
    default:
        return QString::fromLatin1(value.typeName()) + QLatin1Char(' ') + plain(value.toString());
    }
}
