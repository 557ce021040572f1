#include "support/MessageHandlerTest.h"

#include <QJsonDocument>
#include <QTest>

namespace {

QString describe(const QVariant& value)
{
    if (!value.isValid())
        return QStringLiteral("invalid");
    if (value.userType() == QMetaType::QVariantMap || value.userType() == QMetaType::QVariantList)
        return QString::fromUtf8(QJsonDocument::fromVariant(value).toJson(QJsonDocument::Compact));
    return QStringLiteral("%1 '%2'").arg(QString::fromLatin1(value.typeName()), value.toString());
}

} // namespace

bool MessageHandlerHost::listenTo(CollaborationMessageHandler* handler)
{
    return connect(this, SIGNAL(frame(QString)), handler, SLOT(onHandleMessage(QString))) &&
           connect(handler, SIGNAL(learnerPollResponse(QString, QString, int, QString)), this,
                   SLOT(answered(QString, QString, int, QString))) &&
           connect(handler, SIGNAL(learnerJoin(Learner)), this, SLOT(joined(Learner))) &&
           connect(handler, SIGNAL(learnerUnregister(QString)), this, SLOT(left(QString))) &&
           connect(handler, SIGNAL(controllerRegister(bool)), this, SLOT(controller(bool))) &&
           connect(handler, SIGNAL(remoteControl(RemoteControlMessage)), this,
                   SLOT(commanded(RemoteControlMessage))) &&
           connect(handler, SIGNAL(unhandledMessage(QVariantMap, QVariant)), this,
                   SLOT(unhandled(QVariantMap, QVariant))) &&
           connect(handler, SIGNAL(learnerGetQuestion(QString, int)), this, SLOT(asked(QString, int)));
}

void MessageHandlerHost::answered(QString device, QString poll, int time, QString answer)
{
    hear(QStringLiteral("answer %1 %2 %3 %4").arg(device, poll).arg(time).arg(answer));
}

void MessageHandlerHost::joined(Learner learner)
{
    hear(QStringLiteral("join %1/%2/%3").arg(learner.deviceId, learner.userName, learner.deviceType));
}

void MessageHandlerHost::left(QString device)
{
    hear(QStringLiteral("leave ") + device);
}

void MessageHandlerHost::controller(bool isRegister)
{
    hear(isRegister ? QStringLiteral("controller comes") : QStringLiteral("controller goes"));
}

void MessageHandlerHost::commanded(RemoteControlMessage message)
{
    hear(QStringLiteral("remote %1 %2 %3").arg(message.from, message.type, describe(message.data)));
}

void MessageHandlerHost::unhandled(QVariantMap body, QVariant data)
{
    hear(QStringLiteral("unhandled %1 %2").arg(describe(body), describe(data)));
}

void MessageHandlerHost::asked(QString device, int question)
{
    hear(QStringLiteral("ask %1 %2").arg(device).arg(question));
}

void MessageHandlerHost::hear(const QString& text)
{
    heard.append(text);
    delete victim.data();
}

void MessageHandlerTest::init()
{
    m_log = std::make_unique<LogRecorder>();
    m_handler = new CollaborationMessageHandler(this);
    m_host = std::make_unique<MessageHandlerHost>();
    QVERIFY(m_host->listenTo(m_handler));
}

void MessageHandlerTest::cleanup()
{
    delete m_handler.data();
    m_host.reset();
    const QStringList warnings = m_log->warnings();
    m_log.reset();
    QCOMPARE(warnings, QStringList());
}
