// What goes out: the input is a JSON list of numbers and texts, of which the first picks the operation.
#include "agreement/Cases.h"
#include "agreement/Text.h"

#include "collab/PresenterAssessment.h"
#include "collab/PresenterCollab.h"
#include "compression/Lzma.h"
#include "model/AssessmentOptions.h"
#include "model/QuestionBase.h"
#include "support/FakeSockJSServer.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUuid>

#include <memory>

namespace {

namespace O = Calyx::OrdinalType;
namespace P = Calyx::PollType;

struct Session
{
    Session()
    {
        collab.open({QStringLiteral("websocket")});
        while (!collab.isConnected())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        for (int i = 0; i < 3; ++i)
            server.nextMessage(); // the registers
    }
    FakeSockJSServer server;
    PresenterCollab collab{nullptr, server.url(QStringLiteral("/bus")).toString(), QStringLiteral("123456"),
                           QStringLiteral("abc"), QStringLiteral("teacher-7")};
    PresenterAssessment assessment{nullptr, &collab};
};

Session& session()
{
    static auto* const only = new Session; // outlives Qt's own statics
    return *only;
}

struct Arguments
{
    QJsonArray values;
    int number(int i) const { return values.at(i).toInt(); }
    QString text(int i) const { return values.at(i).toString(); }
    P::POLL_TYPE poll() const { return P::POLL_TYPE(number(1)); }
    O::ORDINAL_TYPE ordinal() const { return O::ORDINAL_TYPE(number(2)); }
};

void sendQuestion(PresenterCollab* collab, const Arguments& a)
{
    const std::unique_ptr<Calyx::QuestionBase> question(
        collab->createPollQuestion(a.poll(), a.ordinal(), a.number(3), a.number(4)));
    if (!question)
        return;
    question->setinstructions(a.text(5));
    if (a.number(6))
        session().assessment.sendQuestion(a.text(7), question.get());
    else
        collab->sendQuestion(question.get());
}

void startAssessment(const Arguments& a)
{
    Calyx::AssessmentOptions options;
    options.settitle(a.text(5));
    options.setquestionCount(a.number(1));
    options.setallowedTime(a.number(3));
    options.setdescription(a.text(7));
    session().assessment.start(QString(), &options);
}

using Operation = void (*)(PresenterCollab* collab, const Arguments& a);
const Operation operations[] = {
    [](PresenterCollab* collab, const Arguments& a) {
        collab->startPoll(a.poll(), a.ordinal(), a.number(3), a.number(4));
    },
    sendQuestion,
    [](PresenterCollab*, const Arguments& a) { startAssessment(a); },
    [](PresenterCollab* collab, const Arguments& a) { collab->publishMessage(a.text(5), a.text(7)); },
    [](PresenterCollab* collab, const Arguments& a) {
        collab->publishMessage64(QStringLiteral("abc.learner"), a.text(5), a.text(7));
    },
    [](PresenterCollab* collab, const Arguments& a) { collab->removeLearner(a.text(5)); },
    [](PresenterCollab* collab, const Arguments& a) {
        collab->sendCurrentLessonToRemote(a.text(5), a.text(7));
    },
    [](PresenterCollab* collab, const Arguments& a) {
        collab->sendCurrentCardToRemote(a.number(1), a.number(3));
    },
    [](PresenterCollab* collab, const Arguments& a) {
        collab->setCardImage(a.number(4) ? a.text(7).toUtf8() : QByteArray());
        collab->setCardImageRef(a.text(5));
        collab->showImageCard(a.number(6));
        collab->sendHeavy();
    },
    [](PresenterCollab*, const Arguments& a) {
        session().assessment.sendMessage(a.text(5), a.text(7), a.number(4), a.number(6));
    },
    [](PresenterCollab* collab, const Arguments&) {
        collab->pausePoll();
        collab->resumePoll();
        collab->stopPoll();
    },
};

// What the compressed data of a message holds; null where there is none.
QString dataIn(const QString& message)
{
    const QJsonObject body =
        QJsonDocument::fromJson(message.toUtf8()).object().value(QLatin1String("body")).toObject();
    QString data;
    Lzma::decompress64(body.value(QLatin1String("data")).toArray().at(0).toString(), &data);
    return data;
}

} // namespace

// The seam: ids are numbered.
QUuid QUuid::createUuid()
{
    static uint count = 0;
    return QUuid(++count, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
}

void Cases::send(const QByteArray& input, QStringList* out)
{
    const Arguments arguments{QJsonDocument::fromJson(input).array()};
    constexpr int count = sizeof operations / sizeof operations[0];
    session();
    out->clear(); // its opening names a port
    operations[arguments.number(0) % count](&session().collab, arguments);
    session().collab.sendPing();
    for (;;) {
        const QString message = session().server.nextMessage();
        if (message.isEmpty() || message == QLatin1String("{\"type\":\"ping\"}"))
            return;
        out->append(textOf(message));
        out->append(textOf(dataIn(message)));
    }
}
