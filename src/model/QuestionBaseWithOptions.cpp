#include "model/QuestionBaseWithOptions.h"

#include "model/ActivityOption.h"

namespace Calyx {

QuestionBaseWithOptions::QuestionBaseWithOptions(QObject* parent)
    : QuestionBase(parent), m_metadata(new QuestionMetadata(this))
{
    qRegisterMetaType<QuestionMetadata*>("Calyx::QuestionMetadata*");
}

QVariant QuestionBaseWithOptions::getactivityOptions() const
{
    QList<QObject*> options;
    options.reserve(m_options.size());
    for (const QPointer<ActivityOption>& option : m_options) {
        if (option)
            options.append(option.data());
    }
    return QVariant::fromValue(options);
}

void QuestionBaseWithOptions::addActivityOption(QString id, QString optionText, int displaySeqNumber)
{
    auto* option = new ActivityOption(this);
    option->setID(id);
    option->setoptionText(optionText);
    option->setdisplaySeqNumber(displaySeqNumber);
    m_options.append(option);
}

void QuestionBaseWithOptions::setMetadata(QString ordinalType, int count)
{
    if (!m_metadata)
        return;
    QVariantList indices;
    for (int i = 0; i < count; ++i)
        indices.append(i);
    m_metadata->setProperty("ordinalType", ordinalType);
    m_metadata->setProperty("options", indices);
}

void QuestionBaseWithOptions::setMetadata(Calyx::OrdinalType::ORDINAL_TYPE type, int count)
{
    setMetadata(OrdinalType::ORDINAL_TYPE_STR().value(type, QStringLiteral("")), count);
}

void QuestionBaseWithOptions::setOrdinals(Calyx::OrdinalType::ORDINAL_TYPE type)
{
    setMetadata(type, int(m_options.size()));
}

void QuestionBaseWithOptions::inferOrdinalType()
{
    static const QMap<QString, OrdinalType::ORDINAL_TYPE> schemeOfFirstId{
        {QStringLiteral("A"), OrdinalType::ALPHA_UPPER},
        {QStringLiteral("a"), OrdinalType::ALPHA_LOWER},
        {QStringLiteral("0"), OrdinalType::NUMBER},
        {QStringLiteral("1"), OrdinalType::NUMBER}};

    if (m_options.isEmpty() || !m_options.first())
        return;
    const auto scheme = schemeOfFirstId.constFind(m_options.first()->id());
    if (scheme != schemeOfFirstId.constEnd())
        setMetadata(*scheme, 0);
}

void QuestionBaseWithOptions::setPriorAnswer(QString answer)
{
    setPriorOptions({answer});
}

void QuestionBaseWithOptions::setPriorOptions(const QStringList& ids)
{
    QVariantList answers;
    for (const QString& id : ids)
        answers.append(QVariantMap{{QStringLiteral("activityOptionId"), id}});
    setFeedBackProperty("optionAnswers", answers);
    configurePriorAnswer();
}

} // namespace Calyx
