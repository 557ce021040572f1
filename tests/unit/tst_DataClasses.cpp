// What every data class keeps to: its properties with their order, types and defaults, one public setter slot
// for each, and its property names as the keys of its JSON.

#include "support/LogRecorder.h"
#include "support/Rows.h"

#include <CalyxClient/ActivityOption>
#include <CalyxClient/AssessmentOptions>
#include <CalyxClient/CalyxCollabMessage>
#include <CalyxClient/Card>
#include <CalyxClient/JsonSerializer>
#include <CalyxClient/QuestionCreative>
#include <CalyxClient/QuestionFeedback>
#include <CalyxClient/QuestionMathFormula>
#include <CalyxClient/QuestionMetadata>
#include <CalyxClient/QuestionMultiChoice>
#include <CalyxClient/QuestionNumeric>
#include <CalyxClient/QuestionScale>
#include <CalyxClient/QuestionSort>
#include <CalyxClient/QuestionText>
#include <CalyxClient/QuestionWordSeed>
#include <CalyxClient/QuestionYesNo>

#include <QJsonDocument>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QObject>
#include <QPointer>
#include <QTest>

#include <memory>

namespace {

struct Property
{
    const char* name;
    int type;
    QVariant initial;
    // Null for one that cannot be set.
    const char* setter;
};
using Properties = QVector<Property>;
using Make = QObject* (*)(QObject*);

constexpr int STRING = QMetaType::QString;
constexpr int INT = QMetaType::Int;
constexpr int BOOL = QMetaType::Bool;
constexpr int ANY = QMetaType::QVariant;
constexpr int LIST = QMetaType::QVariantList;
constexpr int MAP = QMetaType::QVariantMap;
constexpr int OBJECT = QMetaType::QObjectStar;

const QVariant EMPTY = QVariant("");
const QVariant NOTHING;
// Of an object-valued property, the initial value is the class of the object.
const QVariant PLAIN = QVariant("QObject");

Properties question(const QString& type, const Properties& own = {})
{
    const QVariant feedBack = "Calyx::QuestionFeedback";
    const Properties base{{"id", STRING, NOTHING, "setID"},
                          {"questionSetMode", STRING, "Poll", "setquestionSetMode"},
                          {"questionNumber", INT, 0, "setquestionNumber"},
                          {"type", STRING, type, "setType"},
                          {"activityType", MAP, QVariantMap(), "setactivityType"},
                          {"feedBack", OBJECT, feedBack, "setfeedBack"},
                          {"instructions", STRING, EMPTY, "setinstructions"},
                          {"passage", STRING, EMPTY, "setpassage"},
                          {"card", OBJECT, PLAIN, "setcard"},
                          {"hint", STRING, EMPTY, "sethint"},
                          {"math", BOOL, false, "setmath"},
                          {"hasNext", BOOL, false, "sethasNext"},
                          {"navigable", BOOL, false, "setnavigable"}};
    return base + own;
}

Properties questionWithOptions(const QString& type, const Properties& own = {})
{
    const QVariant options = QVariant::fromValue(QList<QObject*>());
    const Properties more{{"metadata", OBJECT, "Calyx::QuestionMetadata", "setmetadata"},
                          {"activityOptions", ANY, options, nullptr}};
    return question(type, more + own);
}

Properties option()
{
    return {{"id", STRING, EMPTY, "setID"},
            {"optionText", STRING, EMPTY, "setoptionText"},
            {"displaySeqNumber", INT, 0, "setdisplaySeqNumber"},
            {"math", BOOL, false, "setmath"}};
}

Properties metadata()
{
    return {{"ordinalType", STRING, EMPTY, "setordinalType"},
            {"options", LIST, QVariantList(), "setoptions"}};
}

Properties feedback()
{
    return {{"showFeedback", BOOL, false, "setshowFeedback"},
            {"showCorrectAnswer", BOOL, false, "setshowCorrectAnswer"},
            {"correctAnswer", ANY, NOTHING, "setcorrectAnswer"},
            {"activityScoreStatus", ANY, NOTHING, "setactivityScoreStatus"},
            {"activityResponseStatus", ANY, NOTHING, "setactivityResponseStatus"},
            {"correctOptions", LIST, QVariantList(), "setcorrectOptions"},
            {"allowResubmit", BOOL, true, "setallowResubmit"},
            {"correctFeedback", ANY, NOTHING, "setcorrectFeedback"},
            {"inCorrectFeedback", ANY, NOTHING, "setinCorrectFeedback"},
            {"answer", ANY, NOTHING, "setanswer"},
            {"jsonAnswer", ANY, NOTHING, "setjsonAnswer"},
            {"optionAnswers", LIST, QVariantList(), "setoptionAnswers"},
            {"optionFeedbacks", LIST, QVariantList(), "setoptionFeedbacks"},
            {"numberOfRetries", INT, 0, "setnumberOfRetries"},
            {"numberOfRetriesRemaining", INT, 0, "setnumberOfRetriesRemaining"},
            {"remainingTime", ANY, NOTHING, "setremainingTime"}};
}

Properties card()
{
    const QVariantMap styles{
        {"backgroundColor", EMPTY}, {"backgroundImage", EMPTY}, {"backgroundSize", "100%"}};
    return {{"active", BOOL, true, "setactive"},
            {"autoSend", BOOL, true, "setautoSend"},
            {"components", LIST, QVariantList(), "setcomponents"},
            {"hasRendered", BOOL, true, "sethasRendered"},
            {"id", STRING, EMPTY, "setid"},
            {"isTeacherCard", BOOL, true, "setisTeacherCard"},
            {"notes", STRING, EMPTY, "setnotes"},
            {"ordinal", INT, 1, "setordinal"},
            {"primary", BOOL, true, "setprimary"},
            {"pristine", BOOL, true, "setpristine"},
            {"remoteId", STRING, EMPTY, "setremoteId"},
            {"segment", MAP, QVariantMap(), "setsegment"},
            {"styles", MAP, styles, "setstyles"},
            {"tracks", LIST, QVariantList(), "settracks"},
            {"type", STRING, "TEACHER", "settype"},
            {"visible", BOOL, true, "setvisible"}};
}

Properties assessment()
{
    return {{"assessmentToken", STRING, EMPTY, "setassessmentToken"},
            {"allowSkipQuestion", BOOL, false, "setallowSkipQuestion"},
            {"allowNavigateQuestionSet", BOOL, false, "setallowNavigateQuestionSet"},
            {"allowResubmitResponse", BOOL, true, "setallowResubmitResponse"},
            {"showSummaryOnAssessmentCompletion", BOOL, false, "setshowSummaryOnAssessmentCompletion"},
            {"showAnswerOnIncorrectResponse", BOOL, false, "setshowAnswerOnIncorrectResponse"},
            {"showFeedback", BOOL, false, "setshowFeedback"},
            {"questionCount", INT, 1, "setquestionCount"},
            {"startingQuestionNumber", INT, 0, "setstartingQuestionNumber"},
            {"allowedTime", INT, 0, "setallowedTime"},
            {"currentAssessmentSectionId", STRING, EMPTY, "setcurrentAssessmentSectionId"},
            {"title", STRING, EMPTY, "settitle"},
            {"description", STRING, EMPTY, "setdescription"},
            {"scored", BOOL, false, "setscored"},
            {"assessmentSectionConfigurations", MAP, QVariantMap{{"leveled", false}},
             "setassessmentSectionConfigurations"}};
}

Properties message()
{
    return {{"from", STRING, EMPTY, "setfrom"},
            {"type", STRING, EMPTY, "settype"},
            {"version", STRING, "3.0.0", "setversion"},
            {"sourceSystem", STRING, "Lumora", "setsourceSystem"},
            {"data", ANY, NOTHING, "setdata"}};
}

template<class Class>
QObject* make(QObject* parent)
{
    return parent ? new Class(parent) : new Class;
}

template<class Class>
void addClass(const Properties& properties)
{
    QTest::newRow(Class::staticMetaObject.className()) << Make(&make<Class>) << properties;
}

// One that is unlike every default.
QVariant sample(const Property& property)
{
    switch (property.type) {
    case STRING:
        return QString::fromUtf8(u8"a \"b\" %1 ä😀");
    case INT:
        return -77;
    case BOOL:
        return !property.initial.toBool();
    case LIST:
        return QVariantList{1, "two"};
    case MAP:
        return QVariantMap{{"key", QVariantList{true}}};
    default:
        return 2.5;
    }
}

QMetaMethod setterOf(const QObject& object, const Property& property)
{
    const QMetaObject* meta = object.metaObject();
    for (int i = 0; i < meta->methodCount(); ++i) {
        const QMetaMethod method = meta->method(i);
        if (method.name() == property.setter && method.parameterCount() == 1 &&
            method.parameterType(0) == property.type)
            return method;
    }
    return {};
}

bool setBySlot(QObject* object, const Property& property, const QVariant& value)
{
    const QMetaMethod setter = setterOf(*object, property);
    const void* data = property.type == ANY ? &value : value.constData();
    return setter.invoke(object, Qt::DirectConnection,
                         QGenericArgument(setter.parameterTypes().value(0).constData(), data));
}

bool isQuestionType(const QObject& object, const Property& property)
{
    return qobject_cast<const Calyx::QuestionBase*>(&object) && qstrcmp(property.name, "type") == 0;
}

} // namespace

Q_DECLARE_METATYPE(Make)
Q_DECLARE_METATYPE(Properties)

class tst_DataClasses : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void propertiesInOrder_data() { classes(); }
    void propertiesInOrder()
    {
        const auto [make, properties] = row<Make, Properties>();
        const std::unique_ptr<QObject> object(make(nullptr));
        const QMetaObject* meta = object->metaObject();
        QCOMPARE(meta->propertyCount(), properties.size() + 1);
        for (int i = 0; i < properties.size(); ++i) {
            const QMetaProperty property = meta->property(i + 1);
            QCOMPARE(QString(property.name()), QString(properties.at(i).name));
            QVERIFY2(property.isReadable() && !property.hasNotifySignal(), property.name());
            QCOMPARE(property.isWritable(), properties.at(i).setter != nullptr);
            if (!properties.at(i).setter)
                continue;
            QCOMPARE(property.userType(), properties.at(i).type);
            const QMetaMethod setter = setterOf(*object, properties.at(i));
            QVERIFY2(setter.methodType() == QMetaMethod::Slot, property.name());
            QVERIFY2(setter.access() == QMetaMethod::Public, property.name());
            QVERIFY2(setter.returnType() == QMetaType::Void, property.name());
        }
        for (int i = QObject::staticMetaObject.methodCount(); i < meta->methodCount(); ++i) {
            QVERIFY2(meta->method(i).methodType() != QMetaMethod::Signal, meta->method(i).name().constData());
            QVERIFY(meta->method(i).name() != "setactivityOptions"); // the one that only options change
        }
    }

    void defaults_data() { classes(); }
    void defaults()
    {
        const auto [make, properties] = row<Make, Properties>();
        const std::unique_ptr<QObject> object(make(nullptr));
        for (const Property& property : properties) {
            const QVariant value = object->property(property.name);
            if (property.type == OBJECT) {
                auto* child = value.value<QObject*>();
                QVERIFY2(child, property.name);
                QCOMPARE(QString(child->metaObject()->className()), property.initial.toString());
                QCOMPARE(child->parent(), object.get());
            } else if (property.type == STRING && !property.initial.isValid()) {
                QVERIFY2(value.toString().size() == 8, property.name);
            } else if (property.setter) {
                QVERIFY2(value == property.initial && value.isValid() == property.initial.isValid(),
                         property.name);
            } else {
                QCOMPARE(value.userType(), property.initial.userType());
                QVERIFY2(value.value<QList<QObject*>>().isEmpty(), property.name);
            }
        }
    }

    void settersStoreTheValueUnchanged_data() { classes(); }
    void settersStoreTheValueUnchanged()
    {
        const auto [make, properties] = row<Make, Properties>();
        const std::unique_ptr<QObject> bySlot(make(nullptr));
        const std::unique_ptr<QObject> byProperty(make(nullptr));
        QObject other;
        for (const Property& property : properties) {
            // What kind a question is of is not for its setter to say.
            if (isQuestionType(*bySlot, property))
                continue;
            const QVariant value = property.type == OBJECT ? QVariant::fromValue(&other) : sample(property);
            QCOMPARE(byProperty->setProperty(property.name, value), property.setter != nullptr);
            QVERIFY2(!property.setter || setBySlot(bySlot.get(), property, value), property.name);
        }
        // None has changed what another has set.
        for (const Property& property : properties) {
            if (!property.setter || isQuestionType(*bySlot, property))
                continue;
            const QVariant value = property.type == OBJECT ? QVariant::fromValue(&other) : sample(property);
            QVERIFY2(bySlot->property(property.name) == value, property.name);
            QVERIFY2(byProperty->property(property.name) == value, property.name);
        }
        QVERIFY(!other.parent());
    }

    void jsonKeysAreThePropertyNames_data() { classes(); }
    void jsonKeysAreThePropertyNames()
    {
        const auto [make, properties] = row<Make, Properties>();
        const std::unique_ptr<QObject> object(make(nullptr));
        object->setObjectName("named");
        QStringList expected;
        for (const Property& property : properties)
            expected.append(property.name);
        expected.sort();

        const LogRecorder log;
        const QString json = Calyx::JsonSerializer::serializeToJson(object.get());
        QCOMPARE(QJsonDocument::fromJson(json.toUtf8()).toVariant().toMap().keys(), expected);
        // Nothing in a new object is too deep to be written.
        QCOMPARE(log.debug("[JsonSerializer] ERROR"), QStringList());
    }

    void objectsBelongToTheirParent_data() { classes(); }
    void objectsBelongToTheirParent()
    {
        const auto [make, properties] = row<Make, Properties>();
        auto parent = std::make_unique<QObject>();
        const QPointer<QObject> object = make(parent.get());
        QCOMPARE(object->parent(), parent.get());
        QList<QPointer<QObject>> children;
        for (QObject* child : object->children())
            children.append(child);
        parent.reset();
        QVERIFY(!object);
        for (const QPointer<QObject>& child : children)
            QVERIFY(!child);

        const std::unique_ptr<QObject> alone(make(nullptr));
        QVERIFY(!alone->parent());
    }

    void backgroundImageIsAStyleAndLeavesTheOthers()
    {
        Calyx::Card card;
        for (const QString url :
             {"url('http://127.0.0.1/a b?c=%20')", "data:image/png;base64,iVBORw0KGgo=", ""}) {
            card.setBackgroundImage(url);
            QCOMPARE(card.styles().value("backgroundImage"), QVariant(url));
            QCOMPARE(card.styles().size(), 3);
        }
        card.setBackgroundImage(QString());
        QVERIFY(
            Calyx::JsonSerializer::serializeToJson(&card).contains("        \"backgroundImage\": \"\",\n"));
        card.setstyles({{"backgroundColor", "red"}, {"own", 1}});
        card.setBackgroundImage("x");
        QCOMPARE(card.styles(),
                 QVariantMap({{"backgroundColor", "red"}, {"backgroundImage", "x"}, {"own", 1}}));
    }

private:
    void classes()
    {
        columns<Make, Properties>();

        addClass<Calyx::QuestionBase>(question(QString()));
        addClass<Calyx::QuestionBaseWithOptions>(questionWithOptions(QString()));
        addClass<Calyx::QuestionYesNo>(questionWithOptions("yes-no-other"));
        addClass<Calyx::QuestionMultiChoice>(questionWithOptions(
            "multiple", {{"numberOfCorrectOptions", INT, 1, "setnumberOfCorrectOptions"}}));
        addClass<Calyx::QuestionScale>(questionWithOptions("scale"));
        addClass<Calyx::QuestionSort>(questionWithOptions("sort"));
        addClass<Calyx::QuestionCreative>(questionWithOptions("creative"));
        addClass<Calyx::QuestionText>(question("text", {{"maxChars", INT, 0, "setmaxChars"}}));
        addClass<Calyx::QuestionNumeric>(question("number", {{"noOfDecimals", INT, 0, "setnoOfDecimals"}}));
        addClass<Calyx::QuestionWordSeed>(question("word-seed"));
        addClass<Calyx::QuestionMathFormula>(question("math formula"));
        addClass<Calyx::ActivityOption>(option());
        addClass<Calyx::QuestionMetadata>(metadata());
        addClass<Calyx::QuestionFeedback>(feedback());
        addClass<Calyx::Card>(card());
        addClass<Calyx::AssessmentOptions>(assessment());
        addClass<Calyx::CalyxCollabMessage>(message());
    }
};

QTEST_GUILESS_MAIN(tst_DataClasses)
#include "tst_DataClasses.moc"
