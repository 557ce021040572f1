// Peak memory of showImageCard: bench_card MEGABYTES prints, in bytes, what showing a picture of that size
// takes on top of what the program had before, the size of the frame that went out, and what a bare
// QWebSocket takes to send that frame, its text included.

#include "workloads/Drain.h"

#include <CalyxClient/PresenterCollab>
#include <CalyxClient/SockJSConnector>

#include <QCoreApplication>
#include <QFile>
#include <QLoggingCategory>
#include <QRandomGenerator>
#include <QWebSocket>

#include <cstdio>
#include <malloc.h>

namespace {

// The highest resident size since reset(), or the present one.
qint64 residentBytes(const QByteArray& name)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        qFatal("no /proc");
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith(name + ':'))
            return line.mid(name.size() + 1).trimmed().split(' ').first().toLongLong() * 1024;
    }
    qFatal("no such line");
}

void resetPeak()
{
    QFile file(QStringLiteral("/proc/self/clear_refs"));
    if (!file.open(QIODevice::WriteOnly) || file.write("5") != 1)
        qFatal("the peak cannot be reset");
}

QByteArray picture(int size)
{
    QRandomGenerator random(1);
    QByteArray bytes(size, Qt::Uninitialized);
    for (char& byte : bytes)
        byte = char(random.generate());
    return bytes;
}

// What the program takes at most while \p work runs, on top of \p before.
template<typename Work>
qint64 peakOf(qint64 before, Work work)
{
    resetPeak();
    work();
    return residentBytes("VmHWM") - before;
}

qint64 peakOfBareSocket(const QUrl& url, const QByteArray& frame)
{
    QWebSocket socket;
    socket.open(url);
    while (socket.state() != QAbstractSocket::ConnectedState)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    malloc_trim(0); // what is free already counts as well
    const qint64 before = residentBytes("VmRSS");
    return peakOf(before, [&] { socket.sendTextMessage(QString::fromLatin1(frame)); });
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    const int size = argc > 1 ? QByteArray(argv[1]).toInt() * 1024 * 1024 : 0;
    Drain server;
    PresenterCollab collab(nullptr, server.url().toString(), QStringLiteral("123456"),
                           QStringLiteral("session"), QStringLiteral("user"));
    collab.open({QStringLiteral("websocket")});
    while (!collab.isConnected())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);

    const qint64 before = residentBytes("VmRSS");
    collab.setCardImage(picture(size));
    // The server's thread has not got anything until events are processed.
    const qint64 peak = peakOf(before, [&] { collab.showImageCard(true); });
    constexpr int registrations = 3;
    constexpr int heavy = 1;
    while (!server.hasMessage(registrations + heavy))
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    const QByteArray frame = server.message(registrations + heavy).toUtf8();
    const qint64 bare = peakOfBareSocket(server.url(), frame);
    std::printf("{\"picture\":%d,\"frame\":%d,\"peak\":%lld,\"bare\":%lld}\n", size, int(frame.size()), peak,
                bare);
    return 0;
}
