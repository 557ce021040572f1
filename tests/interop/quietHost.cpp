// A host that teaches a whole lesson: quietHost CLASSROOM TRANSPORT. It says "code CODE" when learners may
// join, waits for two, asks them a question, and says at its end how many messages the library has given to
// Qt's message handler, and how many files were opened for writing or made in this process.

#include "support/WaitFor.h"

#include <CalyxClient/PresenterClient>
#include <CalyxClient/PresenterCollab>

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <dlfcn.h>
#include <fcntl.h>

namespace {

constexpr int learners = 2;

std::atomic<int> messages{0};
std::atomic<int> written{0};

void count(QtMsgType, const QMessageLogContext&, const QString&)
{
    ++messages;
}

void note(int flags)
{
    if ((flags & (O_WRONLY | O_RDWR | O_CREAT)) != 0)
        ++written;
}

template<typename Function>
Function* real(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

// In the program itself, these are found before the C library's.
extern "C" int open(const char* path, int flags, ...)
{
    va_list more;
    va_start(more, flags);
    const int mode = (flags & O_CREAT) != 0 ? va_arg(more, int) : 0;
    va_end(more);
    note(flags);
    return real<int(const char*, int, int)>("open")(path, flags, mode);
}

// Where a long has 64 bits, they are the same.
extern "C" int open64(const char* path, int flags, ...) __attribute__((alias("open")));

extern "C" FILE* fopen(const char* path, const char* mode)
{
    note(mode[0] == 'r' && mode[1] != '+' ? O_RDONLY : O_RDWR);
    return real<FILE*(const char*, const char*)>("fopen")(path, mode);
}

extern "C" FILE* fopen64(const char* path, const char* mode) __attribute__((alias("fopen")));

namespace {

bool logIn(PresenterClient* client)
{
    const QString user = QStringLiteral("teacher");
    return client->checkServer(user, QStringLiteral("chalk")) &&
           !client->doLogin(user, QStringLiteral("no")) && client->doLogin(user, QStringLiteral("chalk")) &&
           client->doStartSession(QString());
}

bool teach(PresenterCollab* collab, const QString& code)
{
    int joined = 0;
    int answered = 0;
    QObject::connect(collab, &PresenterCollab::learnerJoin, collab, [&joined] { ++joined; });
    QObject::connect(collab, &PresenterCollab::learnerPollResponse, collab, [&answered] { ++answered; });
    if (!waitFor([collab] { return collab->isConnected(); }))
        return false;
    std::printf("code %s\n", qPrintable(code));
    std::fflush(stdout);
    if (!waitFor([&joined] { return joined == learners; }))
        return false;
    collab->setCardImage("\x89PNG");
    collab->sendHeavy();
    collab->startPoll(Calyx::PollType::MULTIPLE, Calyx::OrdinalType::ALPHA_UPPER, 4, 1);
    const bool all = waitFor([&answered] { return answered == learners; });
    collab->stopPoll();
    collab->sendCurrentLessonToRemote(QStringLiteral("1"), QStringLiteral("Photosynthesis"));
    return all;
}

bool run(const QString& classroom, const QString& transport)
{
    PresenterClient client(nullptr, classroom);
    client.setSockJSOverrideProtocols({transport});
    PresenterCollab* collab = nullptr;
    QString id;
    QString path;
    if (!logIn(&client) || !client.doUploadResource(QStringLiteral("a.png"), "\x89PNG", &id, &path) ||
        !client.startWebsocket(&collab) || !teach(collab, client.sessionCode()))
        return false;
    client.doGetLearners();
    client.sendKeepAlive();
    bool closed = false;
    QObject::connect(collab, &PresenterCollab::connectionClosed, collab, [&closed] { closed = true; });
    return client.doStopSession() && waitFor([&closed] { return closed; }) && client.doLogout();
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    qInstallMessageHandler(count);
    const QStringList arguments = application.arguments();
    const bool good = run(arguments.value(1), arguments.value(2));
    std::printf("messages %d\nfiles %d\n", messages.load(), written.load());
    return good ? 0 : 1;
}
