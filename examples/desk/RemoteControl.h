#pragma once

#include <QObject>
#include <QVariantMap>
#include <QVector>

#include <functional>

class CardDeck;
class PollPanel;
class PresenterCollab;

/// Does what the remote control wants, as the buttons of the window do.
class RemoteControl : public QObject
{
    Q_OBJECT

public:
    using Reply = std::function<void(PresenterCollab*)>;

    RemoteControl(QObject* parent, CardDeck* cards, PollPanel* poll);

    void obey(const QString& type, const QVariant& data);

Q_SIGNALS:
    /// What it wanted, in words.
    void heard(const QString& words);
    /// What it is to be told: to be run on the classroom's thread.
    void replies(const RemoteControl::Reply& reply);
    void wantsToLock(bool isToLock);
    void wantsToEndTheLesson();

private:
    void tellCard(const CardDeck* cards);

    struct Command
    {
        const char* type;
        const char* words;
        std::function<void(const QVariantMap&)> run;
    };

    QVector<Command> m_commands;
};
