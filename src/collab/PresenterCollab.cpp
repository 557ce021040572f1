#include "collab/PresenterCollab.h"

#include "base/Diagnostics.h"
#include "collab/CalyxCollabMessage.h"
#include "collab/CollaborationMessageHandler.h"
#include "collab/MessageParts.h"
#include "compression/LzmaBlock.h"
#include "model/Card.h"
#include "model/JsonSerializer.h"
#include "model/PollQuestionFactory.h"
#include "model/QuestionBase.h"
#include "transport/SockJSConnector.h"

#include <QCoreApplication>
#include <QEvent>
#include <QTimer>
#include <QUrl>
#include <QUuid>

#include <utility>

using namespace Calyx;

namespace {

constexpr int pingInterval = 60000;

const QString emptyJsonString = QStringLiteral(R"("")");

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

class PresenterCollabPrivate
{
public:
    PresenterCollabPrivate(PresenterCollab* q, const QString& url, const QString& code, const QString& token,
                           const QString& user)
        : pingTimer(q)
        , serverUrl(url)
        , sessionCode(code)
        , sessionToken(token)
        , userToken(user)
        , connector(new SockJSConnector(q))
        , handler(new CollaborationMessageHandler(q))
    {}

    QString resolve(const QString& address) const
    {
        return address.startsWith(QLatin1Char('.')) ? sessionToken + address : address;
    }
    QString below(const char* suffix) const { return sessionToken + QLatin1String(suffix); }

    QTimer pingTimer;
    const QString serverUrl;
    const QString sessionCode;
    const QString sessionToken;
    const QString userToken;
    SockJSConnector* const connector;
    CollaborationMessageHandler* const handler;
    QString currentPollId;
    QString currentQuestionId;
    QByteArray cardImage;
    QString cardImageRef;       // null until it is assigned
    int closeRequestedFor = -1; // the connector's openCount() that is to be closed as soon as it is up
};

PresenterCollab::PresenterCollab(QObject* parent, QString serverUrl, QString sessionCode,
                                 QString sessionToken, QString userToken)
    : QObject(parent)
    , d(std::make_unique<PresenterCollabPrivate>(this, serverUrl, sessionCode, sessionToken, userToken))
{
    connect(d->connector, SIGNAL(connected()), this, SLOT(onConnected()));
    connect(d->connector, SIGNAL(closed(bool)), this, SLOT(onClosed(bool)));
    connect(d->connector, SIGNAL(sockJSMessage(QString)), d->handler, SLOT(onHandleMessage(QString)));

    connect(d->handler, SIGNAL(learnerPollResponse(QString, QString, int, QString)), this,
            SIGNAL(learnerPollResponse(QString, QString, int, QString)));
    connect(d->handler, SIGNAL(learnerJoin(Learner)), this, SIGNAL(learnerJoin(Learner)));
    connect(d->handler, SIGNAL(learnerUnregister(QString)), this, SIGNAL(learnerUnregister(QString)));
    connect(d->handler, SIGNAL(controllerRegister(bool)), this, SIGNAL(controllerRegister(bool)));
    connect(d->handler, SIGNAL(remoteControl(RemoteControlMessage)), this,
            SIGNAL(remoteControl(RemoteControlMessage)));
    connect(d->handler, SIGNAL(unhandledMessage(QVariantMap, QVariant)), this,
            SIGNAL(unhandledMessage(QVariantMap, QVariant)));

    connect(&d->pingTimer, SIGNAL(timeout()), this, SLOT(onPingTimer()));
}

// A slot of `destroyed` may run an event loop, and may delete the client: nothing reaches what is left of
// this object then, and nobody deletes it once more.
PresenterCollab::~PresenterCollab()
{
    setParent(nullptr);
    QCoreApplication::removePostedEvents(this, QEvent::DeferredDelete);
    d->connector->disconnect(this);
    d->handler->disconnect(this);
}

QString PresenterCollab::serverUrl() const
{
    return d->serverUrl;
}

QString PresenterCollab::sessionCode() const
{
    return d->sessionCode;
}

QString PresenterCollab::sessionToken() const
{
    return d->sessionToken;
}

QString PresenterCollab::userToken() const
{
    return d->userToken;
}

QString PresenterCollab::currentPollId() const
{
    return d->currentPollId;
}

QString PresenterCollab::currentQuestionId() const
{
    return d->currentQuestionId;
}

CollaborationMessageHandler* PresenterCollab::messageHandler() const
{
    return d->handler;
}

SockJSConnector* PresenterCollab::connector() const
{
    return d->connector;
}

bool PresenterCollab::isConnected() const
{
    return d->connector->isConnected();
}

void PresenterCollab::open()
{
    qCDebug(diagnostics) << "Connecting to collaboration server (default):" << d->serverUrl;
    d->pingTimer.stop();
    d->connector->open(QUrl(d->serverUrl), SockJSConnector::GetDefaultProtocols());
}

void PresenterCollab::open(QStringList protocols)
{
    qCDebug(diagnostics) << "Connecting to collaboration server:" << d->serverUrl << " ["
                         << protocols.join(QStringLiteral(", ")) << "]";
    d->pingTimer.stop();
    d->connector->open(QUrl(d->serverUrl), SockJSConnector::GetProtocolsFromStrings(protocols));
}

void PresenterCollab::close()
{
    d->closeRequestedFor = d->connector->openCount();
    publishMessage(QStringLiteral("disconnect"), emptyJsonString);
    d->pingTimer.stop();
    if (d->connector->isConnected())
        d->connector->close();
}

void PresenterCollab::onConnected()
{
    if (d->closeRequestedFor == d->connector->openCount()) {
        d->connector->close();
        return;
    }
    const QStringList addresses = {d->sessionToken, d->below(".presenter"),
                                   d->below(".presenter.") + d->userToken};
    for (const QString& address : addresses)
        d->connector->sendMessage(REGISTER_MESSAGE.arg(address), false);
    d->pingTimer.start(pingInterval);
}

void PresenterCollab::onClosed(bool bClosedForInactivity)
{
    d->pingTimer.stop();
    Q_EMIT connectionClosed(bClosedForInactivity);
}

// The end of a channel is not told where the host has opened the connector anew: then the pings stop here,
// and begin again in onConnected().
void PresenterCollab::onPingTimer()
{
    sendPing();
    if (!d->connector->isConnected())
        d->pingTimer.stop();
}

void PresenterCollab::sendPing()
{
    d->connector->sendMessage(PING_MESSAGE, true);
}

void PresenterCollab::publishMessage(QString address, CalyxCollabMessage* message)
{
    if (!message)
        return;
    message->setfrom(d->userToken);
    message->compileData();
    const QString frame =
        PUBLISH_MESSAGE_3.arg(d->resolve(address), JsonSerializer::serializeToJson(message));
    qCDebug(diagnostics) << "TRANSMIT: " << frame;
    d->connector->sendMessage(frame, false);
}

void PresenterCollab::publishMessage(QString type, QString data)
{
    publishMessage(d->sessionToken, type, std::move(data));
}

void PresenterCollab::publishMessage(QString address, QString type, QString data)
{
    if (!d->connector->isConnected()) {
        qCDebug(diagnostics) << "[PresenterCollab] SockJS socket not connected!";
        return;
    }
    QString message =
        PUBLISH_MESSAGE64.arg(d->resolve(address), d->userToken, type, compressed(std::move(data)));
    d->connector->sendMessage(std::move(message), false);
}

void PresenterCollab::publishMessage64(QString address, QString type, QString data)
{
    publishMessage(address, type, std::move(data));
}

void PresenterCollab::removeLearner(QString deviceId)
{
    publishMessage(d->below(".user.") + deviceId, QStringLiteral("disconnect"), emptyJsonString);
    Q_EMIT learnerUnregister(deviceId);
}

void PresenterCollab::startPoll(PollType::POLL_TYPE pollType, OrdinalType::ORDINAL_TYPE ordinalType,
                                int optionCount, int extra)
{
    d->currentPollId = QUuid::createUuid().toString(QUuid::WithoutBraces);
    const std::unique_ptr<QuestionBase> question(
        createPollQuestion(pollType, ordinalType, optionCount, extra));
    if (!question) {
        d->currentQuestionId.clear();
        const QString options = joinNumbers(0, optionCount, [](const QString& number) { return number; });
        publishMessage64(d->sessionToken, QStringLiteral("poll"),
                         MessageParts::pollDocument(*this, pollType, ordinalType, d->currentPollId, options,
                                                    getCardImageRef(true)));
        return;
    }
    const QString image = getCardImageRef(true);
    if (!image.isEmpty()) {
        auto* card = new Card(question.get());
        card->setBackgroundImage(image);
        card->setid(question->id());
        question->setcard(card);
    }
    sendQuestion(d->sessionToken, question.get());
}

QuestionBase* PresenterCollab::createPollQuestion(PollType::POLL_TYPE pollType,
                                                  OrdinalType::ORDINAL_TYPE ordinalType, int optionCount,
                                                  int extra)
{
    return PollQuestionFactory::create(this, pollType, ordinalType, optionCount, extra);
}

void PresenterCollab::stopPoll()
{
    publishMessage(QStringLiteral("pollStop"), PLAIN_DATA.arg(d->currentPollId));
    d->currentPollId.clear();
    clearCardImage();
}

void PresenterCollab::pausePoll()
{
    publishMessage(QStringLiteral("pause"), PLAIN_DATA.arg(d->currentPollId));
}

void PresenterCollab::resumePoll()
{
    publishMessage(QStringLiteral("resume"), PLAIN_DATA.arg(d->currentPollId));
}

void PresenterCollab::sendQuestion(QString address, QuestionBase* question)
{
    if (!question)
        return;
    const QString type = question->getType();
    question->setactivityType(
        {{QStringLiteral("id"), PollType::POLL_TYPE_ID().value(type, QStringLiteral(""))},
         {QStringLiteral("name"), type}});
    d->currentQuestionId = question->id();
    CalyxCollabMessage message;
    message.settype(QStringLiteral("questionStart"));
    message.setdataobject(question);
    publishMessage(address, &message);
}

void PresenterCollab::sendQuestion(QuestionBase* question)
{
    sendQuestion(d->sessionToken, question);
}

void PresenterCollab::setCardImage(const QByteArray& png)
{
    d->cardImage = png;
}

void PresenterCollab::setCardImageRef(const QString& reference)
{
    d->cardImageRef = reference;
}

QString PresenterCollab::getCardImageRef(bool asCssUrl)
{
    if (!d->cardImage.isEmpty())
        return MessageParts::dataUri(d->cardImage);
    if (d->cardImageRef.isNull()) {
        qCDebug(diagnostics) << "[PresenterCollab] No image reference has been set!";
        return QStringLiteral("");
    }
    return asCssUrl ? MessageParts::cssUrl(d->cardImageRef) : d->cardImageRef;
}

void PresenterCollab::clearCardImage()
{
    d->cardImage.clear();
    d->cardImageRef = QString();
}

void PresenterCollab::showImageCard(bool checkHeavy)
{
    QString reference = getCardImageRef(false);
    if (checkHeavy && reference.size() >= MessageParts::heavyPicture)
        sendHeavy();
    QString card = SHOW_CARD_DATA.arg(QStringLiteral("any"), reference);
    reference.clear();
    publishMessage(d->below(".learner"), QStringLiteral("showCard"), std::move(card));
    clearCardImage();
}

void PresenterCollab::sendHeavy()
{
    // The receivers read only the type: the data is the template itself, unfilled.
    publishMessage(d->below(".learner"), QStringLiteral("heavy"), PLAIN_DATA);
}

void PresenterCollab::sendCurrentLessonToRemote(QString lessonId, QString name)
{
    publishMessage(d->below(".controller"), QStringLiteral("currentLesson"), LESSON_DATA.arg(lessonId, name));
}

void PresenterCollab::sendPresenterIsActiveToRemote()
{
    // As in sendHeavy(), the receivers read only the type.
    publishMessage(d->below(".controller"), QStringLiteral("presenterIsActive"), PLAIN_DATA);
}

void PresenterCollab::sendCurrentCardToRemote(int currentCard, int totalCards)
{
    const QString cards =
        joinNumbers(1, totalCards, [](const QString& number) { return CURRENTCARD_SUBDATA.arg(number); });
    publishMessage(d->below(".controller"), QStringLiteral("currentCard"),
                   CURRENTCARD_DATA.arg(QString::number(currentCard), cards, QString::number(totalCards)));
}
