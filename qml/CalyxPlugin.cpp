#include "Enums.h"

#include <CalyxClient/Lesson>
#include <CalyxClient/RosterFilter>

#include <QQmlEngine>
#include <QQmlExtensionPlugin>

/// The module "Calyx": the lesson layer's classes under their own names. What is made by a Lesson is not made
/// in QML.
class CalyxPlugin : public QQmlExtensionPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QQmlExtensionInterface_iid)

public:
    void registerTypes(const char* uri) override
    {
        qmlRegisterType<Calyx::Lesson>(uri, 1, 0, "Lesson");
        qmlRegisterType<Calyx::RosterFilter>(uri, 1, 0, "RosterFilter");
        ofALesson<Calyx::Assessment>(uri, "Assessment");
        ofALesson<Calyx::Deck>(uri, "Deck");
        ofALesson<Calyx::Poll>(uri, "Poll");
        ofALesson<Calyx::PollResults>(uri, "PollResults");
        ofALesson<Calyx::Roster>(uri, "Roster");
        value<Calyx::LessonError>(uri, "LessonError");
        value<Calyx::PollAnswer>(uri, "PollAnswer");
        value<Calyx::Question>(uri, "Question");
        enums(QmlPollType::staticMetaObject, uri, "PollType");
        enums(QmlOrdinalType::staticMetaObject, uri, "OrdinalType");
    }

private:
    template<typename Type>
    static void ofALesson(const char* uri, const char* name)
    {
        qmlRegisterUncreatableType<Type>(uri, 1, 0, name, QStringLiteral("A Lesson makes it."));
    }
    template<typename Type>
    static void value(const char* uri, const char* name)
    {
        qRegisterMetaType<Type>();
        enums(Type::staticMetaObject, uri, name);
    }
    static void enums(const QMetaObject& object, const char* uri, const char* name)
    {
        qmlRegisterUncreatableMetaObject(object, uri, 1, 0, name, QStringLiteral("It is a value."));
    }
};

#include "CalyxPlugin.moc"
