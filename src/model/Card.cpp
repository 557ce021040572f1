#include "model/Card.h"

namespace Calyx {

Card::Card(QObject* parent) : QObject(parent)
{
    m_styles = {{QStringLiteral("backgroundColor"), QStringLiteral("")},
                {QStringLiteral("backgroundImage"), QStringLiteral("")},
                {QStringLiteral("backgroundSize"), QStringLiteral("100%")}};
}

void Card::setBackgroundImage(QString url)
{
    m_styles.insert(QStringLiteral("backgroundImage"), url);
}

} // namespace Calyx
