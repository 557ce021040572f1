// What the lesson layer costs on top of the signals that it is made of.

#include "sockets/Generator.h"
#include "sockets/Service.h"

#include <CalyxClient/Lesson>
#include <CalyxClient/PresenterCollab>
#include <CalyxClient/SockJSConnector>

#include <QCoreApplication>
#include <QEventLoop>
#include <QLoggingCategory>

#include <benchmark/benchmark.h>

#include <ctime>

namespace {

double seconds(clockid_t clock)
{
    timespec time{};
    clock_gettime(clock, &time);
    return double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
}

/// Knows the longest turn of the main thread's loop: the CPU time of one event with all that it calls.
class Application : public QCoreApplication
{
public:
    using QCoreApplication::QCoreApplication;

    bool notify(QObject* receiver, QEvent* event) override
    {
        if (QThread::currentThread() != thread() || m_isInside)
            return QCoreApplication::notify(receiver, event);
        m_isInside = true;
        const double begun = seconds(CLOCK_THREAD_CPUTIME_ID);
        const bool isTaken = QCoreApplication::notify(receiver, event);
        longest = qMax(longest, seconds(CLOCK_THREAD_CPUTIME_ID) - begun);
        m_isInside = false;
        return isTaken;
    }

    double longest = 0;

private:
    bool m_isInside = false;
};

template<typename Condition>
void waitUntil(Condition condition)
{
    while (!condition())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

QHash<QByteArray, QByteArray> answersFor(const QUrl& bus)
{
    const QByteArray fine = R"({"success":true,"infoMsgKeys":["login.success"],"data":{}})";
    return {{"/tavisto", fine},
            {"/tavisto/login/submit", fine},
            {"/tavisto/login/user", R"({"data":{"userLoginId":"teacher"}})"},
            {"/tavisto/session/create", R"({"data":{"sessionCode":"123456"}})"},
            {"/tavisto/session/getcollabserverurl", R"({"data":{"url":")" + bus.toEncoded() + R"("}})"},
            {"/tavisto/config/findTenantFeatureDetails", R"({"data":{"sockJSProtocols":["websocket"]}})"},
            {"/tavisto/session/start", R"({"data":{"sessionToken":"T"}})"},
            {"/tavisto/classroom/session/join", R"({"data":{"userToken":"U"}})"},
            {"/tavisto/session/getusers", R"({"success":true,"data":{"users":[]}})"}};
}

/// A lesson that is live, with devices that have answered before.
struct Taught
{
    Generator generator;
    Service service{answersFor(generator.url())};
    Calyx::Lesson lesson{QUrl(service.url())};
    int devices;

    explicit Taught(int count) : devices(count)
    {
        lesson.logIn(QStringLiteral("teacher"), QStringLiteral("chalk"));
        lesson.start();
        waitUntil([&] { return lesson.state() == Calyx::Lesson::Live; });
        answer();
    }

    /// The CPU time of all answering at once, from the bus to the models; the generator's is left out.
    double answer()
    {
        const Calyx::Poll* const poll =
            lesson.ask(Calyx::PollType::WORD_SEED, Calyx::OrdinalType::GENERIC, 0);
        generator.prepare(poll->id(), devices);
        int told = 0;
        QObject::connect(poll->results(), &Calyx::PollResults::changed, poll,
                         [&] { told = poll->results()->answered(); });
        const double generated = generator.cpuTime();
        const double begun = seconds(CLOCK_PROCESS_CPUTIME_ID);
        generator.send();
        waitUntil([&] { return told == devices; });
        return seconds(CLOCK_PROCESS_CPUTIME_ID) - begun - (generator.cpuTime() - generated);
    }
};

void answersToTheModels(benchmark::State& state)
{
    Taught taught(Generator::batch);
    for (auto _ : state)
        state.SetIterationTime(taught.answer());
}

void answersToTheSignal(benchmark::State& state)
{
    Generator generator;
    PresenterCollab collab(nullptr, generator.url().toString(), QStringLiteral("123456"), QStringLiteral("T"),
                           QStringLiteral("U"));
    int count = 0;
    QObject::connect(&collab, &PresenterCollab::learnerPollResponse, &collab, [&] { ++count; });
    collab.open({QStringLiteral("websocket")});
    waitUntil([&] { return collab.isConnected(); });
    for (auto _ : state) {
        count = 0;
        const double generated = generator.cpuTime();
        const double begun = seconds(CLOCK_PROCESS_CPUTIME_ID);
        generator.send();
        waitUntil([&] { return count == Generator::batch; });
        state.SetIterationTime(seconds(CLOCK_PROCESS_CPUTIME_ID) - begun - (generator.cpuTime() - generated));
    }
}

void longestTurn(benchmark::State& state)
{
    constexpr int learners = 1000;
    constexpr int polls = 20;
    auto* const application = static_cast<Application*>(QCoreApplication::instance());
    Taught taught(learners);
    for (auto _ : state) {
        application->longest = 0;
        for (int i = 0; i < polls; ++i)
            taught.answer();
        state.SetIterationTime(application->longest);
    }
}

} // namespace

int main(int argc, char** argv)
{
    const Application application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RegisterBenchmark("lesson/10000/ours", answersToTheModels)->UseManualTime();
    benchmark::RegisterBenchmark("lesson/10000/peer", answersToTheSignal)->UseManualTime();
    benchmark::RegisterBenchmark("lesson-turn/1000/ours", longestTurn)->UseManualTime()->Iterations(1);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::ClearRegisteredBenchmarks();
    benchmark::Shutdown();
    return 0;
}
