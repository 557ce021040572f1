#include "lesson/LessonError.h"

#include <QCoreApplication>

namespace Calyx {

namespace {

struct Wording
{
    LessonError::Kind kind;
    const char* text;
    const char* advice;
};

const Wording wordsOfKinds[] = {
    {LessonError::NoError, "", ""},
    {LessonError::Unreachable,
     QT_TRANSLATE_NOOP("Calyx::LessonError", "The classroom service cannot be reached."),
     QT_TRANSLATE_NOOP("Calyx::LessonError", "Check the address and the network, then try again.")},
    {LessonError::NoAnswer, QT_TRANSLATE_NOOP("Calyx::LessonError", "The classroom service does not answer."),
     QT_TRANSLATE_NOOP("Calyx::LessonError", "Check the network, then try again in a moment.")},
    {LessonError::NotTheService,
     QT_TRANSLATE_NOOP("Calyx::LessonError", "Something else answers at this address."),
     QT_TRANSLATE_NOOP("Calyx::LessonError",
                       "Check the address. If this network wants you to log in to it, open a "
                       "browser and do so first.")},
    {LessonError::UnknownAuthority,
     QT_TRANSLATE_NOOP("Calyx::LessonError", "The service cannot prove that it is the one you want."),
     QT_TRANSLATE_NOOP(
         "Calyx::LessonError",
         "Its certificate is signed by an authority that this computer does not know. Have the "
         "authority\u2019s certificate installed, and do not go on if you did not expect this.")},
    {LessonError::BadCredentials,
     QT_TRANSLATE_NOOP("Calyx::LessonError", "The user name or the password is wrong."),
     QT_TRANSLATE_NOOP("Calyx::LessonError", "Small and capital letters are different.")},
    {LessonError::LoggedOutByService,
     QT_TRANSLATE_NOOP("Calyx::LessonError", "The service has ended your login."),
     QT_TRANSLATE_NOOP("Calyx::LessonError", "Log in again.")},
    {LessonError::Refused, QT_TRANSLATE_NOOP("Calyx::LessonError", "The service refuses."),
     QT_TRANSLATE_NOOP("Calyx::LessonError", "Try again. If it goes on, ask whoever runs the service.")},
    {LessonError::SessionGone,
     QT_TRANSLATE_NOOP("Calyx::LessonError", "The service does not know the lesson any more."),
     QT_TRANSLATE_NOOP("Calyx::LessonError", "Start a new one. What was collected so far is still here.")},
    {LessonError::NoChannel,
     QT_TRANSLATE_NOOP("Calyx::LessonError", "No live connection to the lesson can be opened."),
     QT_TRANSLATE_NOOP("Calyx::LessonError",
                       "Try again. If it goes on, a filter between here and the service stands in the way.")},
    {LessonError::TooLarge, QT_TRANSLATE_NOOP("Calyx::LessonError", "This is too large to be sent."),
     QT_TRANSLATE_NOOP("Calyx::LessonError", "Take a smaller picture.")},
    {LessonError::BadInput, QT_TRANSLATE_NOOP("Calyx::LessonError", "This cannot be done."), ""},
    {LessonError::Cancelled, QT_TRANSLATE_NOOP("Calyx::LessonError", "Cancelled."), ""}};

const char endFirst[] =
    QT_TRANSLATE_NOOP("Calyx::LessonError", "End a lesson that is still open, then start this one again.");

QString translated(const char* text)
{
    return *text ? QCoreApplication::translate("Calyx::LessonError", text) : QString();
}

} // namespace

LessonError LessonError::make(Kind kind, const QString& key, const QString& text)
{
    LessonError error;
    error.kind = kind;
    error.key = key;
    error.text = text.isEmpty() ? translated(wordsOfKinds[kind].text) : text;
    error.advice = translated(wordsOfKinds[kind].advice);
    if (kind == Refused && key.startsWith(QLatin1String("session.error.tooMany")))
        error.advice = translated(endFirst);
    return error;
}

} // namespace Calyx
