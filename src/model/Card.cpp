#include "model/Card.h"

namespace Calyx {

Card::Card(QObject* parent) : QObject(parent)
{
    m_styles = {{QStringLiteral("backgroundColor"), QStringLiteral("")},
                {QStringLiteral("backgroundImage"), QStringLiteral("")},
                {QStringLiteral("backgroundSize"), QStringLiteral("100%")}};
}

void Card::setactive(bool active)
{
    m_active = active;
}

void Card::setautoSend(bool autoSend)
{
    m_autoSend = autoSend;
}

void Card::setcomponents(QVariantList components)
{
    m_components = components;
}

void Card::sethasRendered(bool hasRendered)
{
    m_hasRendered = hasRendered;
}

void Card::setid(QString value)
{
    m_id = value;
}

void Card::setisTeacherCard(bool isTeacherCard)
{
    m_isTeacherCard = isTeacherCard;
}

void Card::setnotes(QString notes)
{
    m_notes = notes;
}

void Card::setordinal(int ordinal)
{
    m_ordinal = ordinal;
}

void Card::setprimary(bool primary)
{
    m_primary = primary;
}

void Card::setpristine(bool pristine)
{
    m_pristine = pristine;
}

void Card::setremoteId(QString remoteId)
{
    m_remoteId = remoteId;
}

void Card::setsegment(QVariantMap segment)
{
    m_segment = segment;
}

void Card::setstyles(QVariantMap styles)
{
    m_styles = styles;
}

void Card::settracks(QVariantList tracks)
{
    m_tracks = tracks;
}

void Card::settype(QString type)
{
    m_type = type;
}

void Card::setvisible(bool visible)
{
    m_visible = visible;
}

void Card::setBackgroundImage(QString url)
{
    m_styles.insert(QStringLiteral("backgroundImage"), url);
}

} // namespace Calyx
