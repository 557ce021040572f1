#include "lesson/Picture.h"

#include <CalyxClient/PresenterCollab>

namespace {

// A reference stands between the double quotes of a JSON template for cards, and between the quotes of CSS's
// url('...') for polls, as it is.
bool isUnfit(QChar character)
{
    return character <= QLatin1Char(' ') || character == QLatin1Char('"') || character == QLatin1Char('\'') ||
           character == QLatin1Char('\\');
}

} // namespace

Picture Picture::ofPng(const QByteArray& png)
{
    Picture picture;
    picture.m_png = png;
    return picture;
}

Picture Picture::ofReference(const QString& reference)
{
    Picture picture;
    picture.m_reference.reserve(reference.size());
    for (const QChar character : reference) {
        if (!isUnfit(character))
            picture.m_reference += character;
        else
            picture.m_reference += QStringLiteral("%%1").arg(character.unicode(), 2, 16, QLatin1Char('0'));
    }
    return picture;
}

// The picture of a poll that runs has gone out with it; stopping the poll would clear the card's.
void Picture::setOn(PresenterCollab* collab) const
{
    collab->clearCardImage();
    if (!m_png.isEmpty())
        collab->setCardImage(m_png);
    else if (!m_reference.isEmpty())
        collab->setCardImageRef(m_reference);
}
