#include "lesson/LessonMessages.h"

#include "collab/CalyxCollabMessage.h"
#include "collab/MessageParts.h"
#include "lesson/Lesson.h"
#include "lesson/LessonText.h"
#include "model/AssessmentOptions.h"
#include "model/Card.h"
#include "model/QuestionBaseWithOptions.h"
#include "model/QuestionCreative.h"
#include "model/QuestionFeedback.h"
#include "model/QuestionWordSeed.h"

#include <memory>

namespace Calyx {

namespace {

QString quoted(const QString& id)
{
    return PLAIN_DATA.arg(id);
}

QString whole(PresenterCollab* collab, const QString& address)
{
    return address.isEmpty() ? collab->sessionToken() : address;
}

QString pictureOf(const QByteArray& png, const QString& url)
{
    return png.isEmpty() ? url : MessageParts::dataUri(png);
}

// The picture behind a question; empty where it has none.
QString backgroundOf(const Question& question)
{
    const QString url = LessonText::asReference(question.pictureUrl);
    return pictureOf(question.picture, url.isEmpty() ? url : MessageParts::cssUrl(url));
}

// Devices know the words of the kind's own scheme. Under another one they would show those, or letters.
QStringList optionWords(const Question& question)
{
    const bool isOwn = question.ordinal == Question::usual(question.type).ordinal;
    const bool hasWords = !OrdinalType::optionText(question.ordinal, 0).isEmpty();
    return question.options.isEmpty() && hasWords && !isOwn ? question.optionLabels() : question.options;
}

QuestionBase* construct(PresenterCollab* collab, const Question& question)
{
    if (question.type == PollType::WORD_SEED)
        return new QuestionWordSeed;
    if (question.type == PollType::CREATIVE)
        return new QuestionCreative;
    const bool isNumber = question.type == PollType::NUMBER;
    const int options = !optionWords(question).isEmpty() ? 0
                        : isNumber                       ? question.decimals
                                                         : question.optionCount;
    return collab->createPollQuestion(question.type, question.ordinal, options, question.choices);
}

std::unique_ptr<QuestionBase> makeQuestion(PresenterCollab* collab, const Question& from, const QString& id)
{
    std::unique_ptr<QuestionBase> question(construct(collab, from));
    question->setID(id);
    question->setinstructions(from.text);
    if (auto* withOptions = qobject_cast<QuestionBaseWithOptions*>(question.get())) {
        const QStringList ids = from.optionIds();
        const QStringList words = optionWords(from);
        for (int i = 0; i < words.size(); ++i)
            withOptions->addActivityOption(ids.at(i), words.at(i), i + 1);
        question->inferOrdinalType();
    }
    const QString background = backgroundOf(from);
    if (!background.isEmpty()) {
        auto* card = new Card(question.get());
        card->setBackgroundImage(background);
        card->setid(id);
        question->setcard(card);
    }
    return question;
}

void sendDocument(PresenterCollab* collab, const QString& address, const Question& question,
                  const QString& id)
{
    const QString options = question.optionIds().join(QLatin1Char(','));
    collab->publishMessage64(address, QStringLiteral("poll"),
                             MessageParts::pollDocument(*collab, question.type, question.ordinal, id, options,
                                                        backgroundOf(question)));
}

void publish(PresenterCollab* collab, const QString& address, const QString& type, const QVariantMap& data)
{
    CalyxCollabMessage message;
    message.settype(type);
    message.setdata(data);
    collab->publishMessage(whole(collab, address), &message);
}

} // namespace

QString LessonMessages::addressOf(const QString& deviceId)
{
    return QStringLiteral(".user.") + LessonText::escaped(deviceId);
}

bool LessonMessages::isDocument(const Question& question)
{
    const bool isKind = question.type == PollType::WORD_SEED || question.type == PollType::CREATIVE;
    return isKind && question.text.isEmpty() && question.options.isEmpty();
}

// In this order, because on a device each covers what was there before.
void LessonMessages::bring(PresenterCollab* collab, const QString& address, const Wanted& wanted)
{
    if (!wanted.assessmentToken.isEmpty()) {
        sendAssessment(collab, address, wanted.assessment, wanted.assessmentToken, wanted.firstQuestion);
        if (wanted.isAssessmentPaused)
            sendPause(collab, address, wanted.assessmentToken, true);
    }
    if (!wanted.pollId.isEmpty())
        sendPoll(collab, address, wanted);
    if (!wanted.cardPng.isEmpty() || !wanted.cardUrl.isEmpty())
        sendCard(collab, address, wanted.cardPng, wanted.cardUrl);
    if (wanted.isLocked)
        sendLock(collab, address, true);
}

void LessonMessages::bringNews(PresenterCollab* collab, const Wanted& before, const Wanted& now)
{
    Wanted news = now;
    const bool isSamePoll = now.pollId == before.pollId;
    if (isSamePoll)
        news.pollId.clear();
    else if (now.pollId.isEmpty())
        sendPollStop(collab, before.pollId);
    const bool isSameAssessment = now.assessmentToken == before.assessmentToken;
    if (isSameAssessment)
        news.assessmentToken.clear();
    else if (!before.assessmentToken.isEmpty())
        sendAssessmentStop(collab, before.assessmentToken);
    if (now.cardPng == before.cardPng && now.cardUrl == before.cardUrl) {
        news.cardPng.clear();
        news.cardUrl.clear();
    }
    news.isLocked = now.isLocked && !before.isLocked;
    bring(collab, QString(), news);
    if (isSamePoll && now.isPollPaused != before.isPollPaused)
        sendPause(collab, QString(), now.pollId, now.isPollPaused);
    if (isSamePoll && now.pollStopsAt != before.pollStopsAt)
        sendCountdown(collab, QString(), now.pollId, now.pollStopsAt);
    if (isSameAssessment && now.isAssessmentPaused != before.isAssessmentPaused)
        sendPause(collab, QString(), now.assessmentToken, now.isAssessmentPaused);
    if (before.isLocked && !now.isLocked)
        sendLock(collab, QString(), false);
}

void LessonMessages::sendPoll(PresenterCollab* collab, const QString& address, const Wanted& wanted)
{
    const QString to = whole(collab, address);
    if (isDocument(wanted.question))
        sendDocument(collab, to, wanted.question, wanted.pollId);
    else
        collab->sendQuestion(to, makeQuestion(collab, wanted.question, wanted.pollId).get());
    if (wanted.isPollPaused)
        sendPause(collab, to, wanted.pollId, true);
    if (wanted.pollStopsAt.isValid())
        sendCountdown(collab, to, wanted.pollId, wanted.pollStopsAt);
}

// The devices' clocks differ: they are told how long it is.
void LessonMessages::sendCountdown(PresenterCollab* collab, const QString& address, const QString& id,
                                   const QDateTime& until)
{
    constexpr int second = 1000;
    const qint64 left = qMax<qint64>(0, QDateTime::currentDateTime().msecsTo(until));
    publish(
        collab, address, QStringLiteral("countdown"),
        {{QStringLiteral("id"), id}, {QStringLiteral("seconds"), int(left / second + (left % second > 0))}});
}

void LessonMessages::sendPause(PresenterCollab* collab, const QString& address, const QString& id,
                               bool isPaused)
{
    collab->publishMessage(whole(collab, address), QLatin1String(isPaused ? "pause" : "resume"), quoted(id));
}

void LessonMessages::sendPollStop(PresenterCollab* collab, const QString& id)
{
    collab->publishMessage(QStringLiteral("pollStop"), quoted(id));
}

void LessonMessages::sendCard(PresenterCollab* collab, const QString& address, const QByteArray& png,
                              const QString& url)
{
    const QString to = address.isEmpty() ? QStringLiteral(".learner") : address;
    const QString picture = pictureOf(png, url);
    if (picture.size() >= MessageParts::heavyPicture)
        collab->publishMessage(to, QStringLiteral("heavy"), PLAIN_DATA);
    collab->publishMessage(to, QStringLiteral("showCard"),
                           SHOW_CARD_DATA.arg(QStringLiteral("any"), picture));
}

void LessonMessages::sendLock(PresenterCollab* collab, const QString& address, bool isLocked)
{
    sendText(collab, address,
             isLocked ? Lesson::tr("Please look at your teacher.") : Lesson::tr("You can go on."), !isLocked);
}

void LessonMessages::sendText(PresenterCollab* collab, const QString& address, const QString& text,
                              bool isDismissible)
{
    sendDialog(collab, address,
               {{QStringLiteral("text"), text}, {QStringLiteral("isDismissible"), isDismissible}});
}

void LessonMessages::sendDialog(PresenterCollab* collab, const QString& address, const QVariantMap& data)
{
    publish(collab, address, QStringLiteral("dialogShow"), data);
}

void LessonMessages::sendReview(PresenterCollab* collab, const QString& address, const QString& text)
{
    publish(collab, address, QStringLiteral("questionSetReview"),
            {{QStringLiteral("text"), text}, {QStringLiteral("showNavigation"), true}});
}

void LessonMessages::sendAssessment(PresenterCollab* collab, const QString& address,
                                    const AssessmentPlan& plan, const QString& token, int firstQuestion)
{
    AssessmentOptions options;
    options.setassessmentToken(token);
    options.settitle(plan.title);
    options.setquestionCount(int(plan.questions.size()));
    options.setstartingQuestionNumber(firstQuestion);
    options.setallowedTime(plan.seconds);
    options.setallowSkipQuestion(plan.maySkip);
    options.setallowNavigateQuestionSet(plan.mayGoBack);
    options.setallowResubmitResponse(plan.mayResubmit);
    options.setshowSummaryOnAssessmentCompletion(plan.showsSummary);
    for (const Question& question : plan.questions)
        options.setscored(options.scored() || question.isMarked());
    CalyxCollabMessage message;
    message.settype(QStringLiteral("assessmentStart"));
    message.setdataobject(&options);
    collab->publishMessage(whole(collab, address), &message);
}

void LessonMessages::sendAssessmentStop(PresenterCollab* collab, const QString& token)
{
    publish(collab, QString(), QStringLiteral("assessmentStop"),
            {{QStringLiteral("assessmentToken"), token}});
}

void LessonMessages::sendAssessmentQuestion(PresenterCollab* collab, const QString& address,
                                            const AssessmentPlan& plan, int number, const QString& id,
                                            const QString& before)
{
    const std::unique_ptr<QuestionBase> question = makeQuestion(collab, plan.questions.at(number - 1), id);
    question->setquestionSetMode(QStringLiteral("Assessment"));
    question->setquestionNumber(number);
    question->sethasNext(number < plan.questions.size());
    question->setnavigable(plan.mayGoBack);
    if (auto* feedBack = qobject_cast<QuestionFeedback*>(question->feedBack()))
        feedBack->setallowResubmit(plan.mayResubmit);
    if (!before.isNull())
        question->setPriorAnswer(before);
    collab->sendQuestion(whole(collab, address), question.get());
}

} // namespace Calyx
