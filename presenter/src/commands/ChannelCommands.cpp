#include "app/Host.h"
#include "commands/Handlers.h"
#include "commands/Support.h"
#include "lesson/Lesson.h"
#include "text/JsonText.h"

Outcome Handlers::remoteLesson(Host& host, const Arguments& arguments)
{
    const Outcome live = Support::needLive(host);
    if (live.isDone())
        host.lesson.collab()->sendCurrentLessonToRemote(JsonText::escaped(arguments.at(0)),
                                                        JsonText::escaped(arguments.at(1)));
    return live;
}

Outcome Handlers::remoteCard(Host& host, const Arguments& arguments)
{
    constexpr int most = 1000;
    const Outcome live = Support::needLive(host);
    if (!live.isDone())
        return live;
    const int current = arguments.at(0).toInt();
    const int total = arguments.at(1).toInt();
    if (current < 1 || current > total || total > most)
        return Outcome::failed(
            QStringLiteral("The card's number goes from 1 to the number of cards, which is at most %1.")
                .arg(most));
    host.lesson.collab()->sendCurrentCardToRemote(current, total);
    return Outcome::done();
}

Outcome Handlers::remoteActive(Host& host, const Arguments&)
{
    const Outcome live = Support::needLive(host);
    if (live.isDone())
        host.lesson.collab()->sendPresenterIsActiveToRemote();
    return live;
}

Outcome Handlers::publish(Host& host, const Arguments& arguments)
{
    const Outcome live = Support::needLive(host);
    if (live.isDone())
        host.lesson.collab()->publishMessage(arguments.at(0), arguments.at(1), arguments.at(2));
    return live;
}

Outcome Handlers::ping(Host& host, const Arguments&)
{
    const Outcome live = Support::needLive(host);
    if (live.isDone())
        host.lesson.collab()->sendPing();
    return live;
}

Outcome Handlers::lesson(Host& host, const Arguments& given)
{
    Arguments arguments = given;
    Support::takeSetting(arguments, QStringLiteral("id"), host.lesson.lessonId);
    if (!arguments.isEmpty())
        host.lesson.lessonName = arguments.join(QLatin1Char(' '));
    host.lesson.remoteControl().tellLesson();
    return Outcome::done();
}

Outcome Handlers::lock(Host& host, const Arguments&)
{
    const Outcome live = Support::needLive(host);
    if (live.isDone())
        host.lesson.setLocked(true);
    return live;
}

Outcome Handlers::unlock(Host& host, const Arguments&)
{
    const Outcome live = Support::needLive(host);
    if (live.isDone())
        host.lesson.setLocked(false);
    return live;
}
