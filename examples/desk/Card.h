#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

/// A picture that can be shown to the learners.
struct Card
{
    QString name;
    QImage picture; ///< null when it could not be read
    QByteArray png; ///< the same, as it is sent
    QString fault;  ///< why not
};

/// Takes its time: not for the window's thread.
namespace Cards {

Card fromFile(const QString& path);
/// Of a picture file, as bytes.
Card fromData(const QString& name, const QByteArray& data);

} // namespace Cards
