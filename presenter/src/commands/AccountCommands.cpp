#include "app/Host.h"
#include "commands/Handlers.h"
#include "commands/Support.h"
#include "lesson/Lesson.h"
#include "terminal/Screen.h"
#include "text/JsonText.h"
#include "text/Text.h"

namespace {

const QString checkCredentials = QStringLiteral("Check --user and --password.");
const QString checkCode = QStringLiteral("Get a new code from the provider and try again.");

Outcome loggedIn(Host& host, const QString& user)
{
    host.screen.note(QStringLiteral("Logged in as %1.").arg(Text::clean(user)), Ink::Good);
    return Outcome::done();
}

// The service wants to know more about a new user first.
Outcome askToRegister(Host& host, const QString& provider, const QString& code, const QString& data)
{
    host.lesson.registration = {provider, code, data};
    QStringList fields;
    const QJsonObject known = JsonText::leadingObject(data);
    for (auto field = known.begin(); field != known.end(); ++field)
        fields.append(QStringLiteral("%1=%2").arg(field.key(), field.value().toVariant().toString()));
    return Outcome::failed(
        QStringLiteral("The service wants %1 to register first. It knows: %2. Use \"register NAME=VALUE "
                       "...\" to complete that.")
            .arg(provider, Text::clean(fields.join(QStringLiteral(", ")))));
}

} // namespace

Outcome Handlers::check(Host& host, const Arguments& arguments)
{
    if (!host.lesson.client().checkServer(arguments.value(0), arguments.value(1)))
        return Support::refused(host, QStringLiteral("The check"), QString());
    host.screen.print(QStringLiteral("The service at %1 answers.").arg(host.lesson.client().server()));
    return Outcome::done();
}

Outcome Handlers::login(Host& host, const Arguments& arguments)
{
    const QString user = arguments.value(0, host.options.user);
    const QString password = arguments.value(1, host.options.password);
    if (user.isEmpty())
        return Outcome::failed(QStringLiteral("Nobody to log in. Use --user, or \"login USER PASSWORD\"."));
    if (!host.lesson.client().doLogin(JsonText::escaped(user), JsonText::escaped(password)))
        return Support::refused(host, QStringLiteral("Login"), checkCredentials);
    return loggedIn(host, user);
}

Outcome Handlers::loginToken(Host& host, const Arguments& arguments)
{
    if (!host.lesson.client().doLogin(JsonText::escaped(arguments.at(0)), JsonText::escaped(arguments.at(1)),
                                      JsonText::escaped(arguments.at(2))))
        return Support::refused(host, QStringLiteral("Login with the device token"),
                                QStringLiteral("Get a new one with \"token\"."));
    return loggedIn(host, arguments.at(0));
}

Outcome Handlers::loginOAuth(Host& host, const Arguments& arguments)
{
    PresenterClient& client = host.lesson.client();
    QString registration;
    const bool done =
        client.doLoginWithOAuth(arguments.at(0), JsonText::escaped(arguments.at(1)), registration);
    if (!done && !registration.isEmpty())
        return askToRegister(host, arguments.at(0), arguments.at(1), registration);
    if (!done)
        return Support::refused(host, QStringLiteral("Login with %1").arg(arguments.at(0)), checkCode);
    return loggedIn(host, client.doGetUserName());
}

Outcome Handlers::registerUser(Host& host, const Arguments& arguments)
{
    const Lesson::Registration pending = host.lesson.registration;
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
    PresenterClient& client = host.lesson.client();
    if (!client.doLoginWithOAuth(pending.provider, JsonText::escaped(pending.code), registration))
        return Support::refused(host, QStringLiteral("Registration"),
                                QStringLiteral("Change a value, or begin again with \"login oauth\"."));
    host.lesson.registration = {};
    return loggedIn(host, client.doGetUserName());
}

namespace {

// A failed request leaves the token before in place: only another one is a new one.
Outcome tokenGiven(Host& host, const QString& token, const QString& hint)
{
    if (token.isEmpty() || token == host.lesson.deviceToken)
        return Support::refused(host, QStringLiteral("The request for a device token"), hint);
    host.lesson.deviceToken = token;
    host.screen.print(QStringLiteral("Device token: %1").arg(Text::clean(token)));
    return Outcome::done();
}

} // namespace

Outcome Handlers::token(Host& host, const Arguments& arguments)
{
    const QString user = arguments.value(2, host.options.user);
    const QString password = arguments.value(3, host.options.password);
    const QString given = host.lesson.client().doGetAccessToken(
        JsonText::escaped(user), JsonText::escaped(password), JsonText::escaped(arguments.at(0)),
        JsonText::escaped(arguments.at(1)));
    return tokenGiven(host, given, checkCredentials);
}

Outcome Handlers::tokenOAuth(Host& host, const Arguments& arguments)
{
    QString registration;
    const QString given = host.lesson.client().doGetOAuthAccessToken(
        arguments.at(0), JsonText::escaped(arguments.at(1)), JsonText::escaped(arguments.at(2)),
        JsonText::escaped(arguments.at(3)), registration);
    if (given.isEmpty() && !JsonText::leadingObject(registration).isEmpty())
        return askToRegister(host, arguments.at(0), arguments.at(1), registration);
    return tokenGiven(host, given, checkCode);
}

Outcome Handlers::whoAmI(Host& host, const Arguments&)
{
    PresenterClient& client = host.lesson.client();
    // A service that does not answer leaves the name as it was.
    if (!client.checkServer(QString(), QString()))
        return Support::refused(host, QStringLiteral("The question who is logged in"), QString());
    const QString user = client.doGetUserName();
    host.screen.print(user.isEmpty() ? QStringLiteral("Nobody is logged in.")
                                     : QStringLiteral("%1 is logged in.").arg(Text::clean(user)));
    return Outcome::done();
}

Outcome Handlers::reLogin(Host& host, const Arguments&)
{
    PresenterClient& client = host.lesson.client();
    if (client.userId().isEmpty())
        return Outcome::failed(QStringLiteral("There is no earlier login to repeat. Use \"login\"."));
    client.reLogin();
    if (!client.isLoggedIn())
        return Support::refused(host, QStringLiteral("Login"), QStringLiteral("Use \"login\" instead."));
    return loggedIn(host, client.userId());
}

Outcome Handlers::keepAlive(Host& host, const Arguments&)
{
    host.lesson.client().sendKeepAlive();
    host.screen.note(QStringLiteral("The service was asked to keep the login alive."));
    return Outcome::done();
}

Outcome Handlers::logout(Host& host, const Arguments&)
{
    Support::stopActivities(host);
    host.lesson.expectClose();
    const bool done = host.lesson.client().doLogout();
    if (host.lesson.client().sessionToken().isEmpty())
        host.lesson.forgetSession();
    if (!done)
        return Support::refused(host, QStringLiteral("Logging out"), QStringLiteral("Try it again."));
    host.screen.note(QStringLiteral("Logged out."));
    return Outcome::done();
}
