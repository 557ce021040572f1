#include "Picture.h"

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QPixmap>

namespace {

constexpr int visibleDifference = 48; // of a colour's 255: edges of letters differ by less between machines
constexpr double visibleShare = 0.002;

bool looksLike(const QImage& one, const QImage& other, const QRect& changing)
{
    if (one.size() != other.size())
        return false;
    int different = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            const QRgb a = one.pixel(x, y);
            const QRgb b = other.pixel(x, y);
            const int most =
                qMax(qAbs(qRed(a) - qRed(b)), qMax(qAbs(qGreen(a) - qGreen(b)), qAbs(qBlue(a) - qBlue(b))));
            if (most > visibleDifference && !changing.contains(x, y))
                ++different;
        }
    }
    return different <= visibleShare * one.width() * one.height();
}

} // namespace

bool Picture::keep(QWidget* widget, const QString& name, const QRect& changing)
{
    const QString path = QStringLiteral(DESK_IMAGES "/desk-%1.png").arg(name);
    QApplication::processEvents(); // what has changed has yet to be laid out
    const QImage picture = widget->grab().toImage().convertToFormat(QImage::Format_RGB32);
    if (QT_VERSION_MAJOR != 5) // which lays out by some pixels more or less: the pictures are those of Qt 5
        return !picture.isNull();
    if (looksLike(picture, QImage(path).convertToFormat(QImage::Format_RGB32), changing))
        return true;
    return QDir().mkpath(QStringLiteral(DESK_IMAGES)) && picture.save(path);
}
