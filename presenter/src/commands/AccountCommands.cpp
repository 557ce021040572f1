#include "commands/CommandContext.h"
#include "commands/CommandTable.h"
#include "commands/Ending.h"
#include "lesson/Notebook.h"
#include "terminal/Screen.h"
#include "text/JsonText.h"
#include "text/Text.h"
#include "text/Words.h"

#include <CalyxClient/PresenterClient>

#include <memory>

using Calyx::Lesson;

namespace {

const char checkCredentials[] = QT_TRANSLATE_NOOP("Words", "Check --user and --password.");
const char checkCode[] = QT_TRANSLATE_NOOP("Words", "Get a new code from the provider and try again.");

Outcome loggedIn(CommandContext& context, const QString& user)
{
    context.screen.note(Words::tr("Logged in as %1.").arg(Text::clean(user)), Ink::Good);
    const QVariantMap left = Lesson::journalOf(context.notes.journal);
    if (left.value(QStringLiteral("teacher")) == user)
        context.screen.note(
            Words::tr("Session %1 was not ended: \"session resume\" takes it up.")
                .arg(Lesson::grouped(Text::clean(left.value(QStringLiteral("code")).toString()))),
            Ink::Strong);
    return Outcome::done();
}

// The argument at \p index, else that of the command line where it belongs to that user, else what is typed.
bool findPassword(CommandContext& context, const Arguments& arguments, int index, const QString& user,
                  QString& password)
{
    const bool isOurs = context.user.isEmpty() || user == context.user;
    password = arguments.value(index, isOurs ? context.password : QString());
    if (!password.isEmpty() || !context.askPassword)
        return true;
    return context.askPassword(Words::tr("the password of %1, which is not shown").arg(Text::clean(user)),
                               password);
}

// The service wants to know more about a new user first.
Outcome askToRegister(const QString& provider, const QString& data)
{
    QStringList fields;
    const QJsonObject known = JsonText::leadingObject(data);
    for (auto field = known.begin(); field != known.end(); ++field)
        fields.append(QStringLiteral("%1=%2").arg(field.key(), field.value().toVariant().toString()));
    return Outcome::failed(
        Words::tr("The service wants %1 to register first. It knows: %2. Use \"register NAME=VALUE "
                  "...\" to complete that.")
            .arg(provider, Text::clean(fields.join(QStringLiteral(", ")))));
}

Outcome check(CommandContext& context, const Arguments& arguments)
{
    const Outcome checked =
        context.askService(Words::tr("The check"), QString(), [arguments](PresenterClient* client) {
            return client->checkServer(arguments.value(0), arguments.value(1));
        });
    if (checked.isDone())
        context.screen.print(Words::tr("The service at %1 answers.").arg(context.lesson.server().toString()));
    return checked;
}

Outcome logIn(CommandContext& context, const QString& what, const QString& hint,
              const std::function<void()>& begin)
{
    return context.carryOut({what, hint, begin, [&] { return context.lesson.state() == Lesson::LoggedIn; }});
}

Outcome login(CommandContext& context, const Arguments& arguments)
{
    const QString user = arguments.value(0, context.user);
    QString password;
    if (user.isEmpty())
        return Outcome::failed(Words::tr("Nobody to log in. Use --user, or \"login USER PASSWORD\"."));
    if (!findPassword(context, arguments, 1, user, password))
        return Outcome::failed(Words::tr("The login was given up."));
    context.notes.logInAgain = [&lesson = context.lesson, user, password] { lesson.logIn(user, password); };
    const Outcome outcome =
        logIn(context, Words::tr("Login"), Words::tr(checkCredentials), context.notes.logInAgain);
    return outcome.isDone() ? loggedIn(context, user) : outcome;
}

Outcome logInWithToken(CommandContext& context, const QString& user, const QString& device,
                       const QString& token)
{
    context.notes.logInAgain = [=, &lesson = context.lesson] { lesson.logInWithToken(user, device, token); };
    return logIn(context, Words::tr("Login with the device token"),
                 Words::tr("Get a new one with \"token\"."), context.notes.logInAgain);
}

Outcome loginToken(CommandContext& context, const Arguments& arguments)
{
    const Outcome outcome = logInWithToken(context, arguments.at(0), arguments.at(1), arguments.at(2));
    return outcome.isDone() ? loggedIn(context, arguments.at(0)) : outcome;
}

// The service's name for whoever is logged in.
Outcome askWho(CommandContext& context, QString& user)
{
    const auto name = std::make_shared<QString>();
    const Outcome outcome = context.askService(Words::tr("The question who is logged in"), QString(),
                                               [name](PresenterClient* client) {
                                                   // A service that does not answer leaves the name as it
                                                   // was.
                                                   if (!client->checkServer(QString(), QString()))
                                                       return false;
                                                   *name = client->doGetUserName();
                                                   return true;
                                               });
    user = Text::clean(*name);
    return outcome;
}

Outcome logInWithOAuth(CommandContext& context, const QString& what, const QString& hint,
                       const QString& registration)
{
    const Notebook::Registration pending = context.notes.registration;
    context.notes.registration.data.clear();
    const Outcome outcome = logIn(context, what, hint, [&] {
        context.lesson.logInWithOAuth(pending.provider, pending.code, registration);
    });
    if (!context.notes.registration.data.isEmpty())
        return askToRegister(pending.provider, context.notes.registration.data);
    if (!outcome.isDone()) {
        context.notes.registration = pending; // for another try
        return outcome;
    }
    QString user;
    const Outcome asked = askWho(context, user);
    return asked.isDone() ? loggedIn(context, user) : asked;
}

Outcome loginOAuth(CommandContext& context, const Arguments& arguments)
{
    context.notes.registration = {arguments.at(0), arguments.at(1), QString()};
    return logInWithOAuth(context, Words::tr("Login with %1").arg(arguments.at(0)), Words::tr(checkCode),
                          QString());
}

Outcome registerUser(CommandContext& context, const Arguments& arguments)
{
    const QString data = context.notes.registration.data;
    if (data.isEmpty())
        return Outcome::failed(Words::tr("No registration is asked for. Use \"login oauth\" first."));
    QJsonObject fields = JsonText::leadingObject(data);
    for (const QString& argument : arguments) {
        const int sign = argument.indexOf(QLatin1Char('='));
        if (sign < 1)
            return Outcome::failed(Words::tr("\"%1\" is not of the form NAME=VALUE.").arg(argument));
        fields.insert(argument.left(sign), argument.mid(sign + 1));
    }
    const QString registration = JsonText::endingInString(fields);
    if (registration.isEmpty())
        return Outcome::failed(Words::tr("The registration holds no text. Give at least one NAME=VALUE."));
    return logInWithOAuth(context, Words::tr("Registration"),
                          Words::tr("Change a value, or begin again with \"login oauth\"."), registration);
}

// Asks for a device token, and logs in with it where nobody is. A failed request leaves the token before in
// place: only another one is a new one.
Outcome getToken(CommandContext& context, const QString& hint, const QString& user, const QString& device,
                 const std::function<QString(PresenterClient*)>& ask)
{
    const auto token = std::make_shared<QString>();
    const Outcome outcome =
        context.askService(Words::tr("The request for a device token"), hint,
                           [token, ask, before = context.notes.deviceToken](PresenterClient* client) {
                               *token = ask(client);
                               return !token->isEmpty() && *token != before;
                           });
    if (!outcome.isDone())
        return outcome;
    context.notes.deviceToken = *token;
    context.screen.print(Words::tr("Device token: %1").arg(Text::clean(*token)));
    QString name = user;
    if (context.facts() & Fact::Login)
        return outcome;
    if (name.isEmpty()) {
        if (const Outcome asked = askWho(context, name); !asked.isDone())
            return asked;
    }
    return logInWithToken(context, name, device, *token);
}

Outcome token(CommandContext& context, const Arguments& arguments)
{
    const QString user = arguments.value(2, context.user);
    QString password;
    if (!findPassword(context, arguments, 3, user, password))
        return Outcome::failed(Words::tr("The request was given up."));
    return getToken(context, Words::tr(checkCredentials), user, arguments.at(0),
                    [=](PresenterClient* client) {
                        return client->doGetAccessToken(JsonText::escaped(user), JsonText::escaped(password),
                                                        JsonText::escaped(arguments.at(0)),
                                                        JsonText::escaped(arguments.at(1)));
                    });
}

Outcome tokenOAuth(CommandContext& context, const Arguments& arguments)
{
    const auto registration = std::make_shared<QString>();
    const Outcome outcome =
        getToken(context, Words::tr(checkCode), QString(), arguments.at(2), [=](PresenterClient* client) {
            return client->doGetOAuthAccessToken(arguments.at(0), JsonText::escaped(arguments.at(1)),
                                                 JsonText::escaped(arguments.at(2)),
                                                 JsonText::escaped(arguments.at(3)), *registration);
        });
    if (outcome.isDone() || JsonText::leadingObject(*registration).isEmpty())
        return outcome;
    context.notes.registration = {arguments.at(0), arguments.at(1), *registration};
    return askToRegister(arguments.at(0), *registration);
}

Outcome whoAmI(CommandContext& context, const Arguments&)
{
    QString user;
    const Outcome asked = askWho(context, user);
    if (asked.isDone())
        context.screen.print(user.isEmpty() ? Words::tr("Nobody is logged in.")
                                            : Words::tr("%1 is logged in.").arg(user));
    return asked;
}

// While a session is open, the client logs in again by itself: a login of the lesson would end the session.
Outcome reLogin(CommandContext& context, const Arguments&)
{
    if (!context.notes.logInAgain)
        return Outcome::failed(Words::tr("There is no earlier login to repeat. Use \"login\"."));
    const QString hint = Words::tr("Use \"login\" instead.");
    const auto again = [](PresenterClient* client) {
        client->reLogin();
        return client->isLoggedIn();
    };
    const bool isOpen = context.facts() & Fact::Opened;
    const Outcome outcome = isOpen ? context.askService(Words::tr("Login"), hint, again)
                                   : logIn(context, Words::tr("Login"), hint, context.notes.logInAgain);
    return outcome.isDone() ? loggedIn(context, context.lesson.user()) : outcome;
}

Outcome keepAlive(CommandContext& context, const Arguments&)
{
    const Outcome sent =
        context.askService(Words::tr("The keep-alive"), QString(), [](PresenterClient* client) {
            client->sendKeepAlive();
            return true;
        });
    if (sent.isDone())
        context.screen.note(Words::tr("The service was asked to keep the login alive."));
    return sent;
}

Outcome logout(CommandContext& context, const Arguments&)
{
    Ending::stopActivities(context);
    const Outcome outcome = Ending::logOut(context);
    if (outcome.isDone())
        context.screen.note(Words::tr("Logged out."));
    return outcome;
}

namespace F = Fact;
using P = Place;

} // namespace

// A row tells all about a command; clang-format would put each member on a line of its own.
// clang-format off
QVector<Command> CommandTable::account()
{
    return {
        {"check", "[USER PASSWORD]", QT_TRANSLATE_NOOP("Words", "Ask whether the service answers."),
         QT_TRANSLATE_NOOP("Words", "USER and PASSWORD are offered when the service asks for HTTP authentication."),
         F::Nothing, F::Nothing, F::Nothing, 0, 2, {P::Anything, P::Secret}, "", ::check},
        {"login", "[USER [PASSWORD]]", QT_TRANSLATE_NOOP("Words", "Log in."),
         QT_TRANSLATE_NOOP("Words", "Without USER and PASSWORD, those of the command line and of CALYX_PASSWORD are taken."),
         F::Nothing, F::Login, F::Nothing, 0, 2, {P::Anything, P::Secret}, "", login},
        {"login token", "USER DEVICE TOKEN", QT_TRANSLATE_NOOP("Words", "Log in with a device token instead of a password."),
         "",
         F::Nothing, F::Login, F::Nothing, 3, 3, {P::Anything, P::Anything, P::Secret}, "", loginToken},
        {"login oauth", "PROVIDER CODE", QT_TRANSLATE_NOOP("Words", "Log in with the code of an OAuth provider."),
         QT_TRANSLATE_NOOP("Words", "The service may want a new user to register first: \"register\" does that."),
         F::Nothing, F::Login, F::Nothing, 2, 2, {P::Anything, P::Secret}, "", loginOAuth},
        {"register", "[NAME=VALUE ...]", QT_TRANSLATE_NOOP("Words", "Complete the registration that an OAuth login has asked for."),
         QT_TRANSLATE_NOOP("Words", "Adds the values to what the service knows, or changes it, and logs in."),
         F::Nothing, F::Login, F::Nothing, 0, anyNumber, {}, "", registerUser},
        {"token", "DEVICE NAME [USER [PASSWORD]]", QT_TRANSLATE_NOOP("Words", "Get a token for later logins of this device."),
         QT_TRANSLATE_NOOP("Words", "DEVICE is the device's id, NAME what people call it. This logs in, too."),
         F::Nothing, F::Login, F::Nothing, 2, 4, {P::Anything, P::Anything, P::Anything, P::Secret}, "", token},
        {"token oauth", "PROVIDER CODE DEVICE NAME", QT_TRANSLATE_NOOP("Words", "Get a device token with a provider's code."),
         "",
         F::Nothing, F::Login, F::Nothing, 4, 4, {P::Anything, P::Secret}, "", tokenOAuth},
        {"whoami", "", QT_TRANSLATE_NOOP("Words", "Ask the service who is logged in."),
         "",
         F::Nothing, F::Nothing, F::Nothing, 0, 0, {}, "", whoAmI},
        {"relogin", "", QT_TRANSLATE_NOOP("Words", "Log in again as the last time."),
         "",
         F::Nothing, F::Login, F::Nothing, 0, 0, {}, "", reLogin},
        {"keepalive", "", QT_TRANSLATE_NOOP("Words", "Keep the login alive."),
         QT_TRANSLATE_NOOP("Words", "Every minute this happens by itself."),
         F::Nothing, F::Nothing, F::Nothing, 0, 0, {}, "", keepAlive},
        {"logout", "", QT_TRANSLATE_NOOP("Words", "Stop the session, if one is open, and log out."),
         "",
         F::Nothing, F::Nothing, F::Everything, 0, 0, {}, "", logout},
    };
}
// clang-format on
