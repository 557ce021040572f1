#include "collab/PresenterAssessment.h"

#include "collab/CalyxCollabMessage.h"
#include "collab/CollaborationMessageHandler.h"
#include "collab/PresenterCollab.h"
#include "model/AssessmentOptions.h"
#include "model/QuestionBase.h"

#include <QUuid>

using Calyx::CalyxCollabMessage;

PresenterAssessment::PresenterAssessment(QObject* parent, PresenterCollab* collab)
    : QObject(parent), m_collab(collab), m_assessmentToken(QUuid::createUuid().toString(QUuid::WithoutBraces))
{
    if (collab)
        connect(collab->messageHandler(), SIGNAL(learnerGetQuestion(QString, int)), this,
                SIGNAL(learnerGetQuestion(QString, int)));
}

bool PresenterAssessment::start(QString id, Calyx::AssessmentOptions* options)
{
    if (!options)
        return true;
    options->setassessmentToken(m_assessmentToken);
    CalyxCollabMessage message;
    message.settype(QStringLiteral("assessmentStart"));
    message.setdataobject(options);
    publish(address(id), message);
    return true;
}

void PresenterAssessment::stop()
{
    CalyxCollabMessage message;
    message.settype(QStringLiteral("assessmentStop"));
    message.setdata(QVariantMap{{QStringLiteral("assessmentToken"), m_assessmentToken}});
    publish(address(QString()), message);
}

void PresenterAssessment::pause()
{
    if (m_collab)
        m_collab->pausePoll();
}

void PresenterAssessment::resume()
{
    if (m_collab)
        m_collab->resumePoll();
}

bool PresenterAssessment::sendQuestion(QString id, Calyx::QuestionBase* question)
{
    if (!m_collab || !question)
        return true;
    question->setquestionSetMode(QStringLiteral("Assessment"));
    question->inferOrdinalType();
    m_collab->sendQuestion(address(id), question);
    return true;
}

void PresenterAssessment::sendMessage(QString text, bool isDismissible, bool review)
{
    sendMessage(QString(), text, isDismissible, review);
}

void PresenterAssessment::sendMessage(QString id, QString text, bool isDismissible, bool review)
{
    QVariantMap data{{QStringLiteral("text"), text}};
    if (review)
        data.insert(QStringLiteral("showNavigation"), true);
    else
        data.insert(QStringLiteral("isDismissible"), isDismissible);
    CalyxCollabMessage message;
    message.settype(review ? QStringLiteral("questionSetReview") : QStringLiteral("dialogShow"));
    message.setdata(data);
    publish(address(id), message);
}

QString PresenterAssessment::address(const QString& id) const
{
    if (!m_collab)
        return QString();
    return id.isEmpty() ? m_collab->sessionToken() : m_collab->sessionToken() + QStringLiteral(".user.") + id;
}

void PresenterAssessment::publish(const QString& address, CalyxCollabMessage& message)
{
    if (m_collab)
        m_collab->publishMessage(address, &message);
}
