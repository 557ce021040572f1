#include "lesson/AnswerKey.h"

#include <algorithm>

using namespace Calyx;

namespace {

bool readNumber(QString text, double& number)
{
    bool isNumber = false;
    number = text.replace(QLatin1Char(','), QLatin1Char('.')).trimmed().toDouble(&isNumber);
    return isNumber;
}

QString words(const QString& text)
{
    return text.normalized(QString::NormalizationForm_C).simplified().toCaseFolded();
}

} // namespace

AnswerKey::AnswerKey(const PollPlan& plan, const QString& text)
    : m_plan(plan), m_reader(Tally::EachOption, PollKinds::options(plan))
{
    const QStringList alternatives = text.split(QLatin1Char('|'));
    m_first = alternatives.first();
    for (const QString& alternative : alternatives) {
        if (m_fault.isEmpty())
            m_fault = faultIn(alternative);
        m_right.append(form(alternative));
    }
}

int AnswerKey::optionCount() const
{
    QStringList titles;
    return m_reader.readOptions(m_first, titles) ? titles.size() : 0;
}

// Equal answers have equal forms.
QString AnswerKey::form(const QString& answer) const
{
    constexpr int digits = 12;
    QStringList titles;
    if (m_reader.readOptions(answer, titles)) {
        if (m_plan.type != PollType::SORT)
            std::sort(titles.begin(), titles.end());
        return titles.join(QLatin1Char(','));
    }
    double number = 0;
    if (m_plan.type == PollType::NUMBER && readNumber(answer, number))
        return QString::number(number, 'g', digits);
    if (m_plan.type == PollType::MATH_FORMULA)
        return QString(answer).remove(QLatin1Char(' ')); // in a formula, case tells one name from another
    return words(answer);
}

QString AnswerKey::faultIn(const QString& text) const
{
    double number = 0;
    if (m_plan.type == PollType::NUMBER && !readNumber(text, number))
        return QStringLiteral("\"%1\" is no number, and cannot be the answer.").arg(text);
    QStringList titles;
    for (const AnswerOption& option : PollKinds::options(m_plan))
        titles.append(option.title());
    const int options = titles.size();
    if (options == 0)
        return text.trimmed().isEmpty() ? QStringLiteral("\"answer\" takes an answer.") : QString();
    QStringList named;
    if (!m_reader.readOptions(text, named))
        return QStringLiteral("\"%1\" names no option, and cannot be the answer. The options are: %2.")
            .arg(text, titles.join(QStringLiteral(", ")));
    if (named.removeDuplicates() > 0)
        return QStringLiteral("\"%1\" names an option twice, and cannot be the answer.").arg(text);
    if (m_plan.type == PollType::SORT && named.size() != options)
        return QStringLiteral("\"%1\" leaves options out, and cannot be the answer.").arg(text);
    return QString();
}
