#include "lesson/RemoteControl.h"

#include "lesson/Lesson.h"
#include "text/JsonText.h"
#include "text/Text.h"

#include <QMap>
#include <QUrl>

#include <algorithm>

using namespace Calyx;

namespace {

bool isBase64(const QStringRef& text)
{
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), [](QChar character) {
        const ushort code = character.unicode();
        return (code < 0x80 && character.isLetterOrNumber()) || code == '+' || code == '/' || code == '=';
    });
}

// A picture in the reference itself, or the address of one on the web: nothing else is for other devices.
bool isPicture(const QString& reference)
{
    const QString start = QStringLiteral("data:image/");
    const QString coding = QStringLiteral(";base64,");
    if (reference.startsWith(start)) {
        const int at = reference.indexOf(coding);
        return at > start.size() && at < start.size() + 20 && isBase64(reference.midRef(at + coding.size()));
    }
    const QUrl url(reference, QUrl::StrictMode);
    const bool isWeb = url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    return url.isValid() && isWeb && !url.host().isEmpty();
}

} // namespace

RemoteControl::RemoteControl(Lesson& lesson) : m_lesson(lesson) {}

void RemoteControl::obey(const RemoteControlMessage& message)
{
    static const QMap<QString, void (RemoteControl::*)(const QVariant&)> commands = {
        {QStringLiteral("requestLessonInfo"), &RemoteControl::answerLesson},
        {QStringLiteral("requestLesson"), &RemoteControl::answerCards},
        {QStringLiteral("presenterActive"), &RemoteControl::answerActive},
        {QStringLiteral("nextCard"), &RemoteControl::nextCard},
        {QStringLiteral("previousCard"), &RemoteControl::previousCard},
        {QStringLiteral("pushCurrentCard"), &RemoteControl::pushCard},
        {QStringLiteral("addImageCard"), &RemoteControl::addCard},
        {QStringLiteral("pause"), &RemoteControl::pause},
        {QStringLiteral("resume"), &RemoteControl::resume},
        {QStringLiteral("lockAll"), &RemoteControl::lock},
        {QStringLiteral("unlockAll"), &RemoteControl::unlock},
        {QStringLiteral("stopSession"), &RemoteControl::stop}};
    if (const auto command = commands.value(message.type))
        (this->*command)(message.data);
}

void RemoteControl::tellLesson()
{
    if (m_lesson.isLive())
        m_lesson.collab()->sendCurrentLessonToRemote(JsonText::escaped(m_lesson.lessonId),
                                                     JsonText::escaped(m_lesson.lessonName));
}

void RemoteControl::tellCard()
{
    if (m_lesson.isLive())
        m_lesson.collab()->sendCurrentCardToRemote(m_lesson.deck().current(), m_lesson.deck().count());
}

void RemoteControl::tellActive()
{
    if (m_lesson.isLive())
        m_lesson.collab()->sendPresenterIsActiveToRemote();
}

void RemoteControl::answerLesson(const QVariant&)
{
    tellLesson();
}

void RemoteControl::answerCards(const QVariant&)
{
    tellLesson();
    tellCard();
}

void RemoteControl::answerActive(const QVariant&)
{
    tellActive();
}

// Beyond the last and the first card it stays there, and the remote control is told so.
void RemoteControl::nextCard(const QVariant&)
{
    if (!m_lesson.goToCard(m_lesson.deck().current() + 1))
        refuse(QStringLiteral("there is no further card"));
    tellCard();
}

void RemoteControl::previousCard(const QVariant&)
{
    if (!m_lesson.goToCard(m_lesson.deck().current() - 1))
        refuse(QStringLiteral("there is no earlier card"));
    tellCard();
}

void RemoteControl::pushCard(const QVariant&)
{
    if (!m_lesson.showCurrentCard())
        refuse(QStringLiteral("there is no card"));
    tellCard();
}

// The picture joins the lesson as its last card, which becomes the current one; it is shown when it is
// pushed.
void RemoteControl::addCard(const QVariant& data)
{
    const QVariantMap map = data.toMap();
    const QString reference = map.value(QStringLiteral("url"), data).toString();
    if (!isPicture(reference)) {
        refuse(QStringLiteral("this is no picture"));
        return;
    }
    const QString name = Text::clean(map.value(QStringLiteral("name")).toString());
    m_lesson.addCard({name.isEmpty() ? QStringLiteral("Picture") : name, Picture::ofReference(reference)});
    m_lesson.goToCard(m_lesson.deck().count());
    tellCard();
}

void RemoteControl::setPaused(bool paused)
{
    if (m_lesson.board().isRunning())
        m_lesson.setPaused(paused);
    else if (m_lesson.desk().isRunning())
        m_lesson.desk().setPaused(paused);
    else
        refuse(QStringLiteral("neither a poll nor an assessment is under way"));
}

void RemoteControl::pause(const QVariant&)
{
    setPaused(true);
}

void RemoteControl::resume(const QVariant&)
{
    setPaused(false);
}

void RemoteControl::lock(const QVariant&)
{
    m_lesson.setLocked(true);
}

void RemoteControl::unlock(const QVariant&)
{
    m_lesson.setLocked(false);
}

void RemoteControl::stop(const QVariant&)
{
    Q_EMIT stopRequested();
}

void RemoteControl::refuse(const QString& why)
{
    Q_EMIT happened(QStringLiteral("  Not done: %1.").arg(why), Ink::Plain);
}
