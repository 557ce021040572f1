#include "collab/PresenterCollab.h"

#include "base/Diagnostics.h"
#include "collab/CalyxCollabMessage.h"
#include "collab/CollaborationMessageHandler.h"
#include "collab/MessageTemplates.h"
#include "compression/LzmaBlock.h"
#include "model/Card.h"
#include "model/JsonSerializer.h"
#include "model/PollQuestionFactory.h"
#include "model/QuestionBase.h"
#include "transport/SockJSConnector.h"

#include <QPointer>
#include <QUrl>
#include <QUuid>

#include <utility>

using namespace Calyx;

namespace {

constexpr int pingInterval = 60000;
constexpr int lightestHeavyImage = 0x80001; // characters of the image's reference

const QString emptyJsonString = QStringLiteral(R"("")");

// What poll documents carry as their time; the devices do not read it.
const QString pollTime = QStringLiteral("1395358151638");

// The forms of a picture take tens of megabytes each: here and where messages are sent none is kept longer
// than the next one needs it.
QString compressed(QString data)
{
    const QByteArray utf8 = data.toUtf8();
    data.clear();
    QString base64;
    LzmaBlock::encode64(utf8, &base64);
    return base64;
}

template<typename Format>
QString joinNumbers(int first, int count, Format format)
{
    QStringList numbers;
    for (int i = 0; i < count; ++i)
        numbers.append(format(QString::number(first + i)));
    return numbers.join(QLatin1Char(','));
}

} // namespace

PresenterCollab::PresenterCollab(QObject* parent, QString serverUrl, QString sessionCode,
                                 QString sessionToken, QString userToken)
    : QObject(parent)
    , m_pingTimer(this)
    , m_serverUrl(serverUrl)
    , m_sessionCode(sessionCode)
    , m_sessionToken(sessionToken)
    , m_userToken(userToken)
    , m_connector(new SockJSConnector(this))
    , m_handler(new CollaborationMessageHandler(this))
{
    connect(m_connector, SIGNAL(connected()), this, SLOT(onConnected()));
    connect(m_connector, SIGNAL(closed(bool)), this, SLOT(onClosed(bool)));
    connect(m_connector, SIGNAL(sockJSMessage(QString)), m_handler, SLOT(onHandleMessage(QString)));

    connect(m_handler, SIGNAL(learnerPollResponse(QString, QString, int, QString)), this,
            SIGNAL(learnerPollResponse(QString, QString, int, QString)));
    connect(m_handler, SIGNAL(learnerJoin(Learner)), this, SIGNAL(learnerJoin(Learner)));
    connect(m_handler, SIGNAL(learnerUnregister(QString)), this, SIGNAL(learnerUnregister(QString)));
    connect(m_handler, SIGNAL(controllerRegister(bool)), this, SIGNAL(controllerRegister(bool)));
    connect(m_handler, SIGNAL(remoteControl(RemoteControlMessage)), this,
            SIGNAL(remoteControl(RemoteControlMessage)));
    connect(m_handler, SIGNAL(unhandledMessage(QVariantMap, QVariant)), this,
            SIGNAL(unhandledMessage(QVariantMap, QVariant)));

    connect(&m_pingTimer, SIGNAL(timeout()), this, SLOT(onPingTimer()));
}

bool PresenterCollab::isConnected() const
{
    return m_connector->isConnected();
}

void PresenterCollab::open()
{
    qCDebug(diagnostics) << "Connecting to collaboration server (default):" << m_serverUrl;
    m_closeRequested = false;
    m_connector->open(QUrl(m_serverUrl), SockJSConnector::GetDefaultProtocols());
}

void PresenterCollab::open(QStringList protocols)
{
    qCDebug(diagnostics) << "Connecting to collaboration server:" << m_serverUrl << " ["
                         << protocols.join(QStringLiteral(", ")) << "]";
    m_closeRequested = false;
    m_connector->open(QUrl(m_serverUrl), SockJSConnector::GetProtocolsFromStrings(protocols));
}

void PresenterCollab::close()
{
    const QPointer<PresenterCollab> self(this);
    m_closeRequested = true;
    publishMessage(QStringLiteral("disconnect"), emptyJsonString);
    if (!self)
        return;
    m_pingTimer.stop();
    if (m_connector->isConnected())
        m_connector->close();
}

void PresenterCollab::onConnected()
{
    if (m_closeRequested) {
        m_connector->close();
        return;
    }
    const QPointer<PresenterCollab> self(this);
    m_pingTimer.start(pingInterval); // an end that comes while the frames go out stops it again
    const QStringList addresses = {m_sessionToken, below(".presenter"), below(".presenter.") + m_userToken};
    for (const QString& address : addresses) {
        m_connector->sendMessage(REGISTER_MESSAGE.arg(address), false);
        if (!self)
            return;
    }
}

void PresenterCollab::onClosed(bool bClosedForInactivity)
{
    m_pingTimer.stop();
    Q_EMIT connectionClosed(bClosedForInactivity);
}

void PresenterCollab::onPingTimer()
{
    sendPing();
}

void PresenterCollab::sendPing()
{
    m_connector->sendMessage(PING_MESSAGE, true);
}

QString PresenterCollab::resolve(const QString& address) const
{
    return address.startsWith(QLatin1Char('.')) ? m_sessionToken + address : address;
}

QString PresenterCollab::below(const char* suffix) const
{
    return m_sessionToken + QLatin1String(suffix);
}

void PresenterCollab::publishMessage(QString address, CalyxCollabMessage* message)
{
    if (!message)
        return;
    message->setfrom(m_userToken);
    message->compileData();
    const QString frame = PUBLISH_MESSAGE_3.arg(resolve(address), JsonSerializer::serializeToJson(message));
    qCDebug(diagnostics) << "TRANSMIT: " << frame;
    m_connector->sendMessage(frame, false);
}

void PresenterCollab::publishMessage(QString type, QString data)
{
    publishMessage(m_sessionToken, type, std::move(data));
}

void PresenterCollab::publishMessage(QString address, QString type, QString data)
{
    if (!m_connector->isConnected()) {
        qCDebug(diagnostics) << "[PresenterCollab] SockJS socket not connected!";
        return;
    }
    QString message = PUBLISH_MESSAGE64.arg(resolve(address), m_userToken, type, compressed(std::move(data)));
    m_connector->sendMessage(std::move(message), false);
}

void PresenterCollab::publishMessage64(QString address, QString type, QString data)
{
    publishMessage(address, type, std::move(data));
}

void PresenterCollab::removeLearner(QString deviceId)
{
    const QPointer<PresenterCollab> self(this);
    publishMessage(below(".user.") + deviceId, QStringLiteral("disconnect"), emptyJsonString);
    if (self)
        Q_EMIT learnerUnregister(deviceId);
}

void PresenterCollab::startPoll(PollType::POLL_TYPE pollType, OrdinalType::ORDINAL_TYPE ordinalType,
                                int optionCount, int extra)
{
    m_currentPollId = QUuid::createUuid().toString(QUuid::WithoutBraces);
    // Sending can reach a slot of the host's that deletes us, and the question, our child, with us.
    const QPointer<QuestionBase> question = createPollQuestion(pollType, ordinalType, optionCount, extra);
    if (!question) {
        publishPollDocument(pollType, ordinalType, optionCount);
        return;
    }
    const QString image = getCardImageRef(true);
    if (!image.isEmpty()) {
        auto* card = new Card(question);
        card->setBackgroundImage(image);
        card->setid(question->id());
        question->setcard(card);
    }
    sendQuestion(m_sessionToken, question);
    delete question.data();
}

void PresenterCollab::publishPollDocument(PollType::POLL_TYPE pollType, OrdinalType::ORDINAL_TYPE ordinalType,
                                          int optionCount)
{
    m_currentQuestionId.clear();
    const QString options = joinNumbers(0, optionCount, [](const QString& number) { return number; });
    const QString document = START_POLL_DATA64.arg(
        PollType::POLL_TYPE_STR().value(pollType), OrdinalType::ORDINAL_TYPE_STR().value(ordinalType),
        m_sessionToken, m_sessionCode, pollTime, m_currentPollId, options, getCardImageRef(true));
    publishMessage64(m_sessionToken, QStringLiteral("poll"), document);
}

QuestionBase* PresenterCollab::createPollQuestion(PollType::POLL_TYPE pollType,
                                                  OrdinalType::ORDINAL_TYPE ordinalType, int optionCount,
                                                  int extra)
{
    return PollQuestionFactory::create(this, pollType, ordinalType, optionCount, extra);
}

void PresenterCollab::stopPoll()
{
    const QPointer<PresenterCollab> self(this);
    publishMessage(QStringLiteral("pollStop"), PLAIN_DATA.arg(m_currentPollId));
    if (!self)
        return;
    m_currentPollId.clear();
    clearCardImage();
}

void PresenterCollab::pausePoll()
{
    publishMessage(QStringLiteral("pause"), PLAIN_DATA.arg(m_currentPollId));
}

void PresenterCollab::resumePoll()
{
    publishMessage(QStringLiteral("resume"), PLAIN_DATA.arg(m_currentPollId));
}

void PresenterCollab::sendQuestion(QString address, QuestionBase* question)
{
    if (!question)
        return;
    const QString type = question->getType();
    question->setactivityType(
        {{QStringLiteral("id"), PollType::POLL_TYPE_ID().value(type, QStringLiteral(""))},
         {QStringLiteral("name"), type}});
    m_currentQuestionId = question->id();
    CalyxCollabMessage message;
    message.settype(QStringLiteral("questionStart"));
    message.setdataobject(question);
    publishMessage(address, &message);
}

void PresenterCollab::sendQuestion(QuestionBase* question)
{
    sendQuestion(m_sessionToken, question);
}

void PresenterCollab::setCardImage(const QByteArray& png)
{
    m_cardImage = png;
}

void PresenterCollab::setCardImageRef(const QString& reference)
{
    m_cardImageRef = reference;
}

QString PresenterCollab::getCardImageRef(bool asCssUrl)
{
    if (!m_cardImage.isEmpty())
        return QString::fromLatin1("data:image/png;base64," + m_cardImage.toBase64());
    if (m_cardImageRef.isNull()) {
        qCDebug(diagnostics) << "[PresenterCollab] No image reference has been set!";
        return QStringLiteral("");
    }
    return asCssUrl ? QStringLiteral("url('") + m_cardImageRef + QStringLiteral("')") : m_cardImageRef;
}

void PresenterCollab::clearCardImage()
{
    m_cardImage.clear();
    m_cardImageRef = QString();
}

void PresenterCollab::showImageCard(bool checkHeavy)
{
    const QPointer<PresenterCollab> self(this);
    QString reference = getCardImageRef(false);
    if (checkHeavy && reference.size() >= lightestHeavyImage)
        sendHeavy();
    if (!self)
        return;
    QString card = SHOW_CARD_DATA.arg(QStringLiteral("any"), reference);
    reference.clear();
    publishMessage(below(".learner"), QStringLiteral("showCard"), std::move(card));
    if (self)
        clearCardImage();
}

void PresenterCollab::sendHeavy()
{
    // The receivers read only the type: the data is the template itself, unfilled.
    publishMessage(below(".learner"), QStringLiteral("heavy"), PLAIN_DATA);
}

void PresenterCollab::sendCurrentLessonToRemote(QString lessonId, QString name)
{
    publishMessage(below(".controller"), QStringLiteral("currentLesson"), LESSON_DATA.arg(lessonId, name));
}

void PresenterCollab::sendPresenterIsActiveToRemote()
{
    // As in sendHeavy(), the receivers read only the type.
    publishMessage(below(".controller"), QStringLiteral("presenterIsActive"), PLAIN_DATA);
}

void PresenterCollab::sendCurrentCardToRemote(int currentCard, int totalCards)
{
    const QString cards =
        joinNumbers(1, totalCards, [](const QString& number) { return CURRENTCARD_SUBDATA.arg(number); });
    publishMessage(below(".controller"), QStringLiteral("currentCard"),
                   CURRENTCARD_DATA.arg(QString::number(currentCard), cards, QString::number(totalCards)));
}
