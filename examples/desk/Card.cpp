#include "Card.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImageReader>

namespace {

constexpr int longestSide = 1024; // more than devices show, and a second or two on the way

Card read(const QString& name, QImageReader& reader)
{
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (size.width() > longestSide || size.height() > longestSide)
        reader.setScaledSize(size.scaled(longestSide, longestSide, Qt::KeepAspectRatio));
    Card card;
    card.name = name;
    card.picture = reader.read();
    if (card.picture.isNull()) {
        card.fault = reader.errorString();
        return card;
    }
    QBuffer buffer(&card.png);
    buffer.open(QIODevice::WriteOnly);
    card.picture.save(&buffer, "PNG");
    return card;
}

} // namespace

Card Cards::fromFile(const QString& path)
{
    QImageReader reader(path);
    reader.setDecideFormatFromContent(true);
    return read(QFileInfo(path).fileName(), reader);
}

Card Cards::fromData(const QString& name, const QByteArray& data)
{
    QByteArray bytes = data;
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer);
    return read(name, reader);
}
