#include "lesson/Lesson.h"

#include "base/QtVersion.h"
#include "collab/PresenterCollab.h"
#include "lesson/JoinAddress.h"
#include "lesson/LessonPrivate.h"
#include "lesson/LessonText.h"

#include <QCoreApplication>
#include <QTranslator>

#include <utility>

// A static library's resources come with whoever asks for them. The macro wants no namespace around it.
static void initTranslations()
{
    Q_INIT_RESOURCE(calyxclient_translations);
}

namespace Calyx {

namespace {

const char noLesson[] = QT_TRANSLATE_NOOP("Calyx::Lesson", "No lesson is open.");

// People leave the scheme out. Without one, an IP address with a port is no URL: it stands in the path.
QUrl withScheme(const QUrl& server)
{
    if (server.isEmpty() || !server.host().isEmpty())
        return server;
    return QUrl(QStringLiteral("https://") + (server.isValid() ? server.toString() : server.path()));
}

void registerTypes()
{
    static const bool once = [] {
        qRegisterMetaType<LessonError>();
        qRegisterMetaType<Question>();
        qRegisterMetaType<PollAnswer>();
        qRegisterMetaType<AssessmentPlan>();
        return true;
    }();
    Q_UNUSED(once)
}

} // namespace

Lesson::Lesson(const QUrl& server, QObject* parent) : QObject(parent)
{
    registerTypes();
    d = std::make_unique<LessonPrivate>(this);
    d->server = withScheme(server);
}

Lesson::~Lesson() = default;

Lesson::State Lesson::state() const
{
    return d->state;
}

QUrl Lesson::server() const
{
    return d->server;
}

void Lesson::setServer(const QUrl& server)
{
    if (withScheme(server) == d->server)
        return;
    if (d->state != LoggedOut) {
        d->refuse(QT_TRANSLATE_NOOP("Calyx::Lesson", "Log out before you go to another service."));
        return;
    }
    d->server = withScheme(server);
    Q_EMIT serverChanged();
}

void Lesson::setServer(const QString& address)
{
    setServer(QUrl(address.trimmed()));
}

QString Lesson::user() const
{
    return d->user;
}

QString Lesson::joinCode() const
{
    return d->joinCode;
}

QUrl Lesson::joinAddress() const
{
    return QUrl(d->joinAddress);
}

QString Lesson::joinHint() const
{
    return JoinAddress::hint(joinAddress());
}

QString Lesson::grouped(const QString& code)
{
    constexpr int group = 3;
    QStringList groups;
    for (int at = 0; at < code.size(); at += group)
        groups.append(code.mid(at, group));
    return groups.join(QLatin1Char(' '));
}

bool Lesson::isBusy() const
{
    return d->state == LoggingIn || d->state == Starting || d->state == Ending || !d->uploads.isEmpty();
}

QUrl Lesson::joinLink() const
{
    QUrl link(d->joinAddress);
    if (!d->joinCode.isEmpty())
        link.setQuery(QStringLiteral("code=") + QString::fromUtf8(QUrl::toPercentEncoding(d->joinCode)));
    return link;
}

double Lesson::progress() const
{
    return d->progress;
}

QDateTime Lesson::nextAttempt() const
{
    return d->nextAttempt;
}

int Lesson::secondsToAttempt() const
{
    constexpr qint64 second = 1000;
    const qint64 left = d->nextAttempt.isValid() ? d->retryAt.remainingTime() : 0;
    return int((left + second - 1) / second);
}

QString Lesson::attemptText() const
{
    const int seconds = secondsToAttempt();
    if (d->state != Reconnecting)
        return QString();
    if (seconds > 0)
        return tr("The connection is lost. Trying again in %1 s.").arg(seconds);
    return d->reconnects ? tr("The connection is lost. Trying again now.") : tr("The connection is lost.");
}

void Lesson::setName(const QString& id, const QString& name)
{
    d->lessonId = id;
    d->content.lessonName = name;
    d->tellRemote();
}

void Lesson::setTransports(const QStringList& transports)
{
    d->channel.transports = transports;
}

void Lesson::setOpenLimit(int msecs)
{
    d->channel.openLimit = msecs;
}

void Lesson::setNoticesLoss(bool notices)
{
    d->channel.noticesLoss = notices;
}

void Lesson::setReconnects(bool reconnects)
{
    const bool begins = reconnects && !std::exchange(d->reconnects, reconnects);
    d->reconnects = reconnects;
    if (begins && d->state == Reconnecting && !d->retry.isActive())
        d->attempt();
}

void Lesson::setBringsBack(bool brings)
{
    d->bringsBack = brings;
}

bool Lesson::loadTranslation(QTranslator* translator, const QLocale& locale)
{
    initTranslations();
    return translator->load(locale, QStringLiteral("calyxclient"), QStringLiteral("_"),
                            QStringLiteral(":/calyxclient")) &&
           !translator->isEmpty(); // as the English one is
}

void Lesson::installTranslations(const QLocale& locale)
{
    const auto install = [](const auto& load) {
        auto texts = std::make_unique<QTranslator>();
        if (!load(texts.get()) || !QCoreApplication::installTranslator(texts.get()))
            return;
        texts.release()->setParent(QCoreApplication::instance());
    };
    install([&](QTranslator* texts) {
        return texts->load(locale, QStringLiteral("qtbase"), QStringLiteral("_"), qtTranslationsFolder());
    });
    install([&](QTranslator* texts) { return loadTranslation(texts, locale); });
}

// Login and session.

void Lesson::logIn(const QString& user, const QString& password)
{
    d->beginLogIn({Login::Password, d->server.toString(), user, password, QString(), QString()});
}

void Lesson::logInWithToken(const QString& user, const QString& deviceId, const QString& token)
{
    d->beginLogIn({Login::Token, d->server.toString(), user, token, deviceId, QString()});
}

void Lesson::logInWithOAuth(const QString& provider, const QString& code, const QString& registration)
{
    d->beginLogIn({Login::OAuth, d->server.toString(), provider, code, QString(), registration});
}

void Lesson::logOut()
{
    if (d->state != LoggedOut && !(d->state == Ending && d->isLoggingOut))
        d->beginEnd(true);
}

void Lesson::start()
{
    if (d->state == LoggedOut || (d->state == Ending && d->isLoggingOut)) {
        d->refuse(QT_TRANSLATE_NOOP("Calyx::Lesson", "Log in first."));
        return;
    }
    if (d->isWanted())
        return;
    const QPointer<Lesson> self(this);
    d->wantsLive = true;
    d->clearSession();
    if (!self)
        return;
    d->journal.begin();
    d->startIfWanted();
}

void Lesson::setJournal(const QString& fileName)
{
    d->journal.setFileName(fileName);
}

QVariantMap Lesson::journalOf(const QString& fileName)
{
    return LessonJournal::describe(LessonJournal::read(fileName));
}

void Lesson::takeUp(const QString& fileName)
{
    if (d->state == LoggedOut || (d->state == Ending && d->isLoggingOut))
        d->refuse(QT_TRANSLATE_NOOP("Calyx::Lesson", "Log in first."));
    else if (d->isWanted())
        d->refuse(QT_TRANSLATE_NOOP("Calyx::Lesson", "A lesson is open already."));
    else if (d->takeUp(fileName))
        d->startIfWanted();
}

void Lesson::end()
{
    if (d->isOpen())
        d->beginEnd(false);
    else if (std::exchange(d->wantsLive, false))
        d->finishSession(); // with what was asked for it
    else
        d->refuse(noLesson);
}

void Lesson::cancel()
{
    if (isBusy() || d->state == Reconnecting)
        d->giveUp();
}

void Lesson::retryNow()
{
    if (d->state == Reconnecting && (d->retry.isActive() || !d->reconnects))
        d->attempt();
}

// Polls.

Poll* Lesson::ask(const Question& question)
{
    return d->mayAsk({question}, question.fault()) ? d->addPoll(question) : nullptr;
}

Poll* Lesson::ask(PollType::POLL_TYPE type, OrdinalType::ORDINAL_TYPE ordinal, int optionCount)
{
    return ask(Question::of(type, ordinal, optionCount));
}

Poll* Lesson::ask(const QVariantMap& question)
{
    return ask(Question::fromMap(question));
}

void Lesson::pause()
{
    d->setPaused(true);
}

void Lesson::resume()
{
    d->setPaused(false);
}

void Lesson::stop(int seconds)
{
    if (d->content.isAsked())
        d->stopPoll(seconds);
}

Poll* Lesson::poll() const
{
    return d->content.poll;
}

QList<Poll*> Lesson::polls() const
{
    return d->content.polls;
}

// QML knows lists of objects, not those of a class.
QList<QObject*> Lesson::pollObjects() const
{
    return QList<QObject*>(d->content.polls.cbegin(), d->content.polls.cend());
}

QList<QObject*> Lesson::assessmentObjects() const
{
    return QList<QObject*>(d->content.assessments.cbegin(), d->content.assessments.cend());
}

void Lesson::clearPolls()
{
    d->content.removeStoppedPolls();
    d->journal.notePollsCleared();
    d->whileThere([this] { d->content.roster->tellAnswers(); }, [this] { Q_EMIT pollChanged(); });
}

void Lesson::showResults(Poll* poll)
{
    poll = poll ? poll : d->content.poll.data();
    if (poll)
        d->showResults(*poll);
}

// Assessment.

Assessment* Lesson::startAssessment(const AssessmentPlan& plan, const QStringList& devices)
{
    if (!d->mayAsk(plan.questions, plan.fault()))
        return nullptr;
    const QPointer<Assessment> before = d->content.assessment;
    const QPointer<Assessment> added = new Assessment(plan, devices.isEmpty(), d->content.roster, this);
    if (before && before->isRunning())
        d->send([token = before->token()](PresenterCollab* collab) {
            LessonMessages::sendAssessmentStop(collab, token);
        });
    d->content.add(added);
    d->atQuestion.clear();
    d->journal.noteAssessment(added);
    const QStringList all = devices.isEmpty() ? d->content.roster->present() : devices;
    for (const QString& deviceId : all)
        added->enter(deviceId);
    d->journal.flush();
    const auto start = [=](const QString& address) {
        d->send([=, token = added->token()](PresenterCollab* collab) {
            LessonMessages::sendAssessment(collab, address, plan, token);
        });
    };
    if (devices.isEmpty())
        start(QString());
    for (const QString& deviceId : devices)
        start(LessonMessages::addressOf(deviceId));
    d->whileThere([&] { before ? before->stop() : void(); }, [&] { added ? added->flush() : void(); },
                  [this] { Q_EMIT assessmentChanged(); });
    return added;
}

Assessment* Lesson::startAssessment(const QVariantMap& plan, const QStringList& devices)
{
    return startAssessment(AssessmentPlan::fromMap(plan), devices);
}

void Lesson::admit(const QString& deviceId)
{
    if (!d->content.isAssessed() || deviceId.isEmpty())
        return;
    d->send([=, plan = d->content.assessment->plan(),
             token = d->content.assessment->token()](PresenterCollab* collab) {
        LessonMessages::sendAssessment(collab, LessonMessages::addressOf(deviceId), plan, token);
    });
    d->whileThere([&] { d->content.assessment->enter(deviceId); }, [&] { d->journal.flush(); },
                  [&] { d->content.assessment ? d->content.assessment->flush() : void(); });
}

void Lesson::stopAssessment()
{
    if (!d->content.isAssessed())
        return;
    const QPointer<Lesson> self(this);
    d->send([token = d->content.assessment->token()](PresenterCollab* collab) {
        LessonMessages::sendAssessmentStop(collab, token);
    });
    d->content.assessment->stop();
    if (self)
        Q_EMIT assessmentChanged();
}

Assessment* Lesson::assessment() const
{
    return d->content.assessment;
}

QList<Assessment*> Lesson::assessments() const
{
    return d->content.assessments;
}

// Cards and texts.

Deck* Lesson::deck() const
{
    return d->deck;
}

bool Lesson::addCard(const QString& name, const QByteArray& png)
{
    const QPointer<Lesson> self(this);
    if (d->deck->add(name, png))
        return self && d->deck->setCurrent(d->deck->rowCount());
    d->fail(LessonError::make(LessonError::BadInput, QString(),
                              tr("%1 cannot be a card: it is no picture, or too large.").arg(name)));
    return false;
}

void Lesson::showCard(int number)
{
    const QPointer<Lesson> self(this);
    const int shown = number == 0 ? d->deck->current() : number;
    if (!d->deck->setCurrent(shown))
        d->refuse(QT_TRANSLATE_NOOP("Calyx::Lesson", "There is no such card."));
    else if (self)
        d->show(d->deck->picture(shown), d->deck->url(shown), shown);
}

void Lesson::showPicture(const QByteArray& png)
{
    if (png.isEmpty())
        d->refuse(QT_TRANSLATE_NOOP("Calyx::Lesson", "There is no picture."));
    else
        d->show(png, QString(), 0);
}

void Lesson::showPictureAt(const QString& url)
{
    if (url.isEmpty())
        d->refuse(QT_TRANSLATE_NOOP("Calyx::Lesson", "There is no picture."));
    else
        d->show(QByteArray(), LessonText::asReference(url), 0);
}

bool Lesson::isLocked() const
{
    return d->content.isLocked;
}

void Lesson::setLocked(bool locked)
{
    if (d->content.isLocked == locked)
        return;
    if (!d->isWanted()) {
        d->refuse(noLesson);
        return;
    }
    d->content.isLocked = locked;
    d->send([locked](PresenterCollab* collab) { LessonMessages::sendLock(collab, QString(), locked); });
    Q_EMIT lockedChanged();
}

void Lesson::showText(const QString& text, const QString& deviceId, bool isDismissible)
{
    const QString address = deviceId.isEmpty() ? QString() : LessonMessages::addressOf(deviceId);
    d->send([=](PresenterCollab* collab) { LessonMessages::sendText(collab, address, text, isDismissible); });
}

void Lesson::showReview(const QString& text, const QString& deviceId)
{
    const QString address = deviceId.isEmpty() ? QString() : LessonMessages::addressOf(deviceId);
    d->send([=](PresenterCollab* collab) { LessonMessages::sendReview(collab, address, text); });
}

// People.

Roster* Lesson::roster() const
{
    return d->content.roster;
}

void Lesson::remove(const QString& deviceId)
{
    d->send([address = LessonText::escaped(deviceId)](PresenterCollab* collab) {
        collab->removeLearner(address);
    }); // and is heard to leave
}

QString Lesson::commandName(RemoteCommand command)
{
    static const char* const names[] = {QT_TR_NOOP("Is the presenter there?"),
                                        QT_TR_NOOP("Which lesson is it?"),
                                        QT_TR_NOOP("Which cards are there?"),
                                        QT_TR_NOOP("Pause"),
                                        QT_TR_NOOP("Resume"),
                                        QT_TR_NOOP("Lock all"),
                                        QT_TR_NOOP("Unlock all"),
                                        QT_TR_NOOP("Next card"),
                                        QT_TR_NOOP("Previous card"),
                                        QT_TR_NOOP("Show the card"),
                                        QT_TR_NOOP("Add a picture"),
                                        QT_TR_NOOP("End the lesson")};
    return command >= AskPresence && command <= EndLesson ? tr(names[command]) : QString();
}

bool Lesson::isRemotePresent() const
{
    return d->isRemotePresent;
}

void Lesson::setObeys(RemoteCommand command, bool obeys)
{
    if (obeys)
        d->takenOver.remove(command);
    else
        d->takenOver.insert(command);
}

// Down to the wire.

void Lesson::onChannel(std::function<void(PresenterCollab*)> work)
{
    if (work)
        d->worker->tell([work](LessonWorker* at) { at->withChannel(work); });
}

void Lesson::onClient(std::function<void(PresenterClient*)> work)
{
    if (!work)
        return;
    if (!d->thread->isRunning())
        d->thread->start();
    d->worker->tell(
        [work, server = d->server.toString()](LessonWorker* at) { at->withClient(server, work); });
}

} // namespace Calyx
