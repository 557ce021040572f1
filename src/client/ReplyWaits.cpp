#include "client/ReplyWaits.h"

#include "transport/InnerLoop.h"

#include <QObject>
#include <QPointer>

#include <algorithm>
#include <utility>

void ReplyWaits::run(QObject* owner, const QNetworkReply* reply, Kind kind)
{
    if (kind == Yielding && hasEnded())
        return;
    const QPointer<QObject> guard(owner);
    InnerLoop loop(QEventLoop::ExcludeUserInputEvents);
    QObject context;
    QObject::connect(owner, &QObject::destroyed, &context, [&loop] { loop.quit(); });
    m_waits.append({reply, kind, &loop});
    loop.run();
    if (guard)
        m_waits.removeLast(); // those inside have returned
}

void ReplyWaits::end(const QNetworkReply* reply)
{
    bool isInside = false;
    for (const Wait& wait : std::as_const(m_waits)) {
        if (wait.reply == reply || (isInside && wait.kind == Yielding))
            wait.loop->quit();
        isInside = isInside || wait.reply == reply;
    }
}

// Whether one of the waits is over, and only those inside it keep it from returning.
bool ReplyWaits::hasEnded() const
{
    return std::any_of(m_waits.begin(), m_waits.end(), [](const Wait& wait) { return wait.loop->hasQuit(); });
}
