#include "commands/CommandContext.h"
#include "commands/CommandTable.h"
#include "commands/Ending.h"
#include "lesson/Lesson.h"
#include "terminal/Screen.h"
#include "text/JsonText.h"
#include "text/Text.h"

namespace {

const QString checkCredentials = QStringLiteral("Check --user and --password.");
const QString checkCode = QStringLiteral("Get a new code from the provider and try again.");

Outcome loggedIn(CommandContext& context, const QString& user)
{
    context.screen.note(QStringLiteral("Logged in as %1.").arg(Text::clean(user)), Ink::Good);
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
    return context.askPassword(
        QStringLiteral("the password of %1, which is not shown").arg(Text::clean(user)), password);
}

// The service wants to know more about a new user first.
Outcome askToRegister(CommandContext& context, const QString& provider, const QString& code,
                      const QString& data)
{
    context.lesson.registration = {provider, code, data};
    QStringList fields;
    const QJsonObject known = JsonText::leadingObject(data);
    for (auto field = known.begin(); field != known.end(); ++field)
        fields.append(QStringLiteral("%1=%2").arg(field.key(), field.value().toVariant().toString()));
    return Outcome::failed(
        QStringLiteral("The service wants %1 to register first. It knows: %2. Use \"register NAME=VALUE "
                       "...\" to complete that.")
            .arg(provider, Text::clean(fields.join(QStringLiteral(", ")))));
}

Outcome check(CommandContext& context, const Arguments& arguments)
{
    if (!context.lesson.client().checkServer(arguments.value(0), arguments.value(1)))
        return context.refused(QStringLiteral("The check"), QString());
    context.screen.print(QStringLiteral("The service at %1 answers.").arg(context.lesson.client().server()));
    return Outcome::done();
}

Outcome login(CommandContext& context, const Arguments& arguments)
{
    const QString user = arguments.value(0, context.user);
    QString password;
    if (user.isEmpty())
        return Outcome::failed(QStringLiteral("Nobody to log in. Use --user, or \"login USER PASSWORD\"."));
    if (!findPassword(context, arguments, 1, user, password))
        return Outcome::failed(QStringLiteral("The login was given up."));
    if (!context.lesson.client().doLogin(JsonText::escaped(user), JsonText::escaped(password)))
        return context.refused(QStringLiteral("Login"), checkCredentials);
    return loggedIn(context, user);
}

Outcome loginToken(CommandContext& context, const Arguments& arguments)
{
    if (!context.lesson.client().doLogin(JsonText::escaped(arguments.at(0)),
                                         JsonText::escaped(arguments.at(1)),
                                         JsonText::escaped(arguments.at(2))))
        return context.refused(QStringLiteral("Login with the device token"),
                               QStringLiteral("Get a new one with \"token\"."));
    return loggedIn(context, arguments.at(0));
}

Outcome loginOAuth(CommandContext& context, const Arguments& arguments)
{
    PresenterClient& client = context.lesson.client();
    QString registration;
    const bool done =
        client.doLoginWithOAuth(arguments.at(0), JsonText::escaped(arguments.at(1)), registration);
    if (!done && !registration.isEmpty())
        return askToRegister(context, arguments.at(0), arguments.at(1), registration);
    if (!done)
        return context.refused(QStringLiteral("Login with %1").arg(arguments.at(0)), checkCode);
    return loggedIn(context, client.doGetUserName());
}

Outcome registerUser(CommandContext& context, const Arguments& arguments)
{
    const Lesson::Registration pending = context.lesson.registration;
    if (pending.data.isEmpty())
        return Outcome::failed(QStringLiteral("No registration is asked for. Use \"login oauth\" first."));
    QJsonObject fields = JsonText::leadingObject(pending.data);
    for (const QString& argument : arguments) {
        const int sign = argument.indexOf(QLatin1Char('='));
        if (sign < 1)
            return Outcome::failed(QStringLiteral("\"%1\" is not of the form NAME=VALUE.").arg(argument));
        fields.insert(argument.left(sign), argument.mid(sign + 1));
    }
    QString registration = JsonText::endingInString(fields);
    if (registration.isEmpty())
        return Outcome::failed(
            QStringLiteral("The registration holds no text. Give at least one NAME=VALUE."));
    PresenterClient& client = context.lesson.client();
    if (!client.doLoginWithOAuth(pending.provider, JsonText::escaped(pending.code), registration))
        return context.refused(QStringLiteral("Registration"),
                               QStringLiteral("Change a value, or begin again with \"login oauth\"."));
    context.lesson.registration = {};
    return loggedIn(context, client.doGetUserName());
}

// A failed request leaves the token before in place: only another one is a new one.
Outcome tokenGiven(CommandContext& context, const QString& token, const QString& hint)
{
    if (token.isEmpty() || token == context.lesson.deviceToken)
        return context.refused(QStringLiteral("The request for a device token"), hint);
    context.lesson.deviceToken = token;
    context.screen.print(QStringLiteral("Device token: %1").arg(Text::clean(token)));
    return Outcome::done();
}

Outcome token(CommandContext& context, const Arguments& arguments)
{
    const QString user = arguments.value(2, context.user);
    QString password;
    if (!findPassword(context, arguments, 3, user, password))
        return Outcome::failed(QStringLiteral("The request was given up."));
    const QString given = context.lesson.client().doGetAccessToken(
        JsonText::escaped(user), JsonText::escaped(password), JsonText::escaped(arguments.at(0)),
        JsonText::escaped(arguments.at(1)));
    return tokenGiven(context, given, checkCredentials);
}

Outcome tokenOAuth(CommandContext& context, const Arguments& arguments)
{
    QString registration;
    const QString given = context.lesson.client().doGetOAuthAccessToken(
        arguments.at(0), JsonText::escaped(arguments.at(1)), JsonText::escaped(arguments.at(2)),
        JsonText::escaped(arguments.at(3)), registration);
    if (given.isEmpty() && !JsonText::leadingObject(registration).isEmpty())
        return askToRegister(context, arguments.at(0), arguments.at(1), registration);
    return tokenGiven(context, given, checkCode);
}

Outcome whoAmI(CommandContext& context, const Arguments&)
{
    PresenterClient& client = context.lesson.client();
    // A service that does not answer leaves the name as it was.
    if (!client.checkServer(QString(), QString()))
        return context.refused(QStringLiteral("The question who is logged in"), QString());
    const QString user = client.doGetUserName();
    context.screen.print(user.isEmpty() ? QStringLiteral("Nobody is logged in.")
                                        : QStringLiteral("%1 is logged in.").arg(Text::clean(user)));
    return Outcome::done();
}

Outcome reLogin(CommandContext& context, const Arguments&)
{
    PresenterClient& client = context.lesson.client();
    if (client.userId().isEmpty())
        return Outcome::failed(QStringLiteral("There is no earlier login to repeat. Use \"login\"."));
    client.reLogin();
    if (!client.isLoggedIn())
        return context.refused(QStringLiteral("Login"), QStringLiteral("Use \"login\" instead."));
    return loggedIn(context, client.userId());
}

Outcome keepAlive(CommandContext& context, const Arguments&)
{
    context.lesson.client().sendKeepAlive();
    context.screen.note(QStringLiteral("The service was asked to keep the login alive."));
    return Outcome::done();
}

Outcome logout(CommandContext& context, const Arguments&)
{
    Ending::stopActivities(context);
    context.lesson.expectClose();
    const bool done = context.lesson.client().doLogout();
    if (context.lesson.client().sessionToken().isEmpty())
        context.lesson.forgetSession();
    if (!done)
        return context.refused(QStringLiteral("Logging out"), QStringLiteral("Try it again."));
    context.screen.note(QStringLiteral("Logged out."));
    return Outcome::done();
}

namespace F = Fact;
using P = Place;

// A row tells all about a command; clang-format would put each member on a line of its own.
// clang-format off
const Command rows[] = {
    {"check", "[USER PASSWORD]", "Ask whether the service answers.",
     "USER and PASSWORD are offered when the service asks for HTTP authentication.",
     F::Nothing, F::Nothing, F::Nothing, 0, 2, {P::Anything, P::Secret}, "", check},
    {"login", "[USER [PASSWORD]]", "Log in.",
     "Without USER and PASSWORD, those of the command line and of CALYX_PASSWORD are taken.",
     F::Nothing, F::Login, F::Nothing, 0, 2, {P::Anything, P::Secret}, "", login},
    {"login token", "USER DEVICE TOKEN", "Log in with a device token instead of a password.",
     "",
     F::Nothing, F::Login, F::Nothing, 3, 3, {P::Anything, P::Anything, P::Secret}, "", loginToken},
    {"login oauth", "PROVIDER CODE", "Log in with the code of an OAuth provider.",
     "The service may want a new user to register first: \"register\" does that.",
     F::Nothing, F::Login, F::Nothing, 2, 2, {P::Anything, P::Secret}, "", loginOAuth},
    {"register", "[NAME=VALUE ...]", "Complete the registration that an OAuth login has asked for.",
     "Adds the values to what the service knows, or changes it, and logs in.",
     F::Nothing, F::Login, F::Nothing, 0, anyNumber, {}, "", registerUser},
    {"token", "DEVICE NAME [USER [PASSWORD]]", "Get a token for later logins of this device.",
     "DEVICE is the device's id, NAME what people call it. This logs in, too.",
     F::Nothing, F::Login, F::Nothing, 2, 4, {P::Anything, P::Anything, P::Anything, P::Secret}, "", token},
    {"token oauth", "PROVIDER CODE DEVICE NAME", "Get a device token with a provider's code.",
     "",
     F::Nothing, F::Login, F::Nothing, 4, 4, {P::Anything, P::Secret}, "", tokenOAuth},
    {"whoami", "", "Ask the service who is logged in.",
     "",
     F::Nothing, F::Nothing, F::Nothing, 0, 0, {}, "", whoAmI},
    {"relogin", "", "Log in again as the last time.",
     "",
     F::Nothing, F::Login, F::Nothing, 0, 0, {}, "", reLogin},
    {"keepalive", "", "Keep the login alive.",
     "Every minute this happens by itself.",
     F::Nothing, F::Nothing, F::Nothing, 0, 0, {}, "", keepAlive},
    {"logout", "", "Stop the session, if one is open, and log out.",
     "",
     F::Nothing, F::Nothing, F::Everything, 0, 0, {}, "", logout},
};
// clang-format on

} // namespace

QVector<Command> CommandTable::account()
{
    return QVector<Command>(std::begin(rows), std::end(rows));
}
