#include "RemoteControl.h"

#include "CardDeck.h"
#include "PollPanel.h"

#include <CalyxClient/PresenterCollab>

RemoteControl::RemoteControl(QObject* parent, CardDeck* cards, PollPanel* poll) : QObject(parent)
{
    using Data = QVariantMap;
    const auto pause = [poll](const Data&) { poll->press(true); };
    const auto resume = [poll](const Data&) { poll->press(false); };
    const auto addCard = [cards](const Data& picture) {
        cards->addDataUri(picture.value(QStringLiteral("name")).toString(),
                          picture.value(QStringLiteral("url")).toString());
    };
    const auto sayHere = [this](const Data&) {
        Q_EMIT replies([](PresenterCollab* collab) { collab->sendPresenterIsActiveToRemote(); });
    };
    const auto sayLesson = [this](const Data&) {
        Q_EMIT replies([](PresenterCollab* collab) {
            collab->sendCurrentLessonToRemote(QStringLiteral("desk"), QStringLiteral("Lesson at the desk"));
        });
    };
    m_commands = {{"pause", "Pause", pause},
                  {"resume", "Resume", resume},
                  {"lockAll", "Lock all", [this](const Data&) { Q_EMIT wantsToLock(true); }},
                  {"unlockAll", "Unlock all", [this](const Data&) { Q_EMIT wantsToLock(false); }},
                  {"nextCard", "Next card", [cards](const Data&) { cards->next(); }},
                  {"previousCard", "Previous card", [cards](const Data&) { cards->previous(); }},
                  {"pushCurrentCard", "Show the card", [cards](const Data&) { cards->showToLearners(); }},
                  {"addImageCard", "Add a picture", addCard},
                  {"presenterActive", "Is the desk there?", sayHere},
                  {"requestLessonInfo", "Which lesson is it?", sayLesson},
                  {"requestLesson", "Which card is it?", [=](const Data&) { tellCard(cards); }},
                  {"stopSession", "End the lesson", [this](const Data&) { Q_EMIT wantsToEndTheLesson(); }}};
    connect(cards, &CardDeck::changed, this, [=] { tellCard(cards); });
}

void RemoteControl::tellCard(const CardDeck* cards)
{
    const int card = cards->current();
    const int count = cards->count();
    Q_EMIT replies([=](PresenterCollab* collab) { collab->sendCurrentCardToRemote(card, count); });
}

void RemoteControl::obey(const QString& type, const QVariant& data)
{
    for (const Command& command : qAsConst(m_commands)) {
        if (type != QLatin1String(command.type))
            continue;
        Q_EMIT heard(QString::fromLatin1(command.words));
        command.run(data.toMap());
    }
}
