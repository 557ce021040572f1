#pragma once

#include <QQuickImageProvider>

#include <qrencode.h>

/// "image://qr/TEXT" is the QR code of a text, a pixel for each module, with its quiet zone.
struct QrImages : QQuickImageProvider
{
    QrImages() : QQuickImageProvider(Image) {}
    QImage requestImage(const QString& id, QSize* size, const QSize&) override
    {
        const QByteArray text = QByteArray::fromPercentEncoding(id.toUtf8());
        QRcode* const code = QRcode_encodeString(text.constData(), 0, QR_ECLEVEL_M, QR_MODE_8, 1);
        const int width = code ? code->width : 0;
        *size = {width + 8, width + 8};
        QImage image(*size, QImage::Format_RGB32);
        image.fill(Qt::white);
        for (int i = 0; i < width * width; ++i)
            image.setPixel(4 + i % width, 4 + i / width, code->data[i] & 1 ? 0 : 0xffffff);
        QRcode_free(code);
        return image;
    }
};
