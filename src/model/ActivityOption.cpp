#include "model/ActivityOption.h"

namespace Calyx {

ActivityOption::ActivityOption(QObject* parent) : QObject(parent) {}

void ActivityOption::setID(QString value)
{
    m_id = value;
}

void ActivityOption::setoptionText(QString optionText)
{
    m_optionText = optionText;
}

void ActivityOption::setdisplaySeqNumber(int displaySeqNumber)
{
    m_displaySeqNumber = displaySeqNumber;
}

void ActivityOption::setmath(bool math)
{
    m_math = math;
}

} // namespace Calyx
