#pragma once

#include "text/Style.h"

#include <CalyxClient/RemoteControlMessage>

#include <QObject>
#include <QString>

class Lesson;

/// Does what the remote control asks for, and tells it what the presenter is at.
class RemoteControl : public QObject
{
    Q_OBJECT

public:
    explicit RemoteControl(Lesson& lesson);

    void obey(const Calyx::RemoteControlMessage& message);

    /// To whatever remote control there is. Nothing goes out while the channel is closed.
    void tellLesson();
    void tellCard();
    void tellActive();

Q_SIGNALS:
    void happened(const QString& text, Ink ink);
    void stopRequested();

private:
    void answerLesson(const QVariant& data);
    void answerCards(const QVariant& data);
    void answerActive(const QVariant& data);
    void nextCard(const QVariant& data);
    void previousCard(const QVariant& data);
    void pushCard(const QVariant& data);
    void addCard(const QVariant& data);
    void pause(const QVariant& data);
    void resume(const QVariant& data);
    void lock(const QVariant& data);
    void unlock(const QVariant& data);
    void stop(const QVariant& data);
    void setPaused(bool paused);
    void refuse(const QString& why);

    Lesson& m_lesson;
};
