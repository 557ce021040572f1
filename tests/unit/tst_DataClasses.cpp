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
    QByteArray name;
    int type;
    QVariant initial; // of an object, its class
    QByteArray setter;
};
using Properties = QVector<Property>;
using Make = QObject* (*)(QObject*);

constexpr int STRING = QMetaType::QString;
constexpr int ANY = QMetaType::QVariant;
constexpr int OBJECT = QMetaType::QObjectStar;

// NAME=VALUE or NAME/SETTER=VALUE, where the setter's name is not "set" and the property's. The value is JSON
// that tells the type as well; "?" is an invalid variant, "#" an id, "@Class" an object, "_" a blank.
Property property(QByteArray word)
{
    const QByteArrayList names = word.left(word.indexOf('=')).split('/');
    const QByteArray value = word.mid(word.indexOf('=') + 1).replace('_', ' ');
    const QVariant json = QJsonDocument::fromJson('[' + value + ']').toVariant().toList().value(0);
    const QByteArray setter = "set" + names.last();
    if (value.startsWith('@'))
        return {names.first(), OBJECT, value.mid(1), setter};
    if (value == "#" || value == "?")
        return {names.first(), value == "#" ? STRING : ANY, QVariant(), setter};
    if (json.userType() == QMetaType::Double || json.userType() == QMetaType::LongLong)
        return {names.first(), QMetaType::Int, json.toInt(), setter};
    return {names.first(), json.userType(), json, setter};
}

// In order, divided by blanks.
Properties properties(const QByteArray& words)
{
    Properties all;
    for (const QByteArray& word : words.simplified().split(' '))
        all.append(property(word));
    return all;
}

Properties question(const QByteArray& type, const QByteArray& own = "")
{
    return properties(R"(id/ID=# questionSetMode="Poll" questionNumber=0 type/Type=")" + type +
                      R"(" activityType={}
        feedBack=@Calyx::QuestionFeedback instructions="" passage="" card=@QObject hint="" math=false
        hasNext=false navigable=false )" +
                      own);
}

// The list of options is the one that cannot be set.
Properties questionWithOptions(const QByteArray& type, const QByteArray& own = "")
{
    Properties all = question(type, "metadata=@Calyx::QuestionMetadata activityOptions=? " + own);
    for (Property& one : all) {
        if (one.name == "activityOptions")
            one = {one.name, ANY, QVariant::fromValue(QList<QObject*>()), QByteArray()};
    }
    return all;
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
    case QMetaType::Int:
        return -77;
    case QMetaType::Bool:
        return !property.initial.toBool();
    case QMetaType::QVariantList:
        return QVariantList{1, "two"};
    case QMetaType::QVariantMap:
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
    return qobject_cast<const Calyx::QuestionBase*>(&object) && property.name == "type";
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
            QCOMPARE(QByteArray(property.name()), properties.at(i).name);
            QVERIFY2(property.isReadable() && !property.hasNotifySignal(), property.name());
            QCOMPARE(property.isWritable(), !properties.at(i).setter.isEmpty());
            if (properties.at(i).setter.isEmpty())
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
            const QVariant value = object->property(property.name.constData());
            if (property.type == OBJECT) {
                auto* child = value.value<QObject*>();
                QVERIFY2(child, property.name.constData());
                QCOMPARE(QString(child->metaObject()->className()), property.initial.toString());
                QCOMPARE(child->parent(), object.get());
            } else if (property.type == STRING && !property.initial.isValid()) {
                QVERIFY2(value.toString().size() == 8, property.name.constData());
            } else if (!property.setter.isEmpty()) {
                QVERIFY2(value == property.initial && value.isValid() == property.initial.isValid(),
                         property.name.constData());
            } else {
                QCOMPARE(value.userType(), property.initial.userType());
                QVERIFY2(value.value<QList<QObject*>>().isEmpty(), property.name.constData());
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
            QCOMPARE(byProperty->setProperty(property.name.constData(), value), !property.setter.isEmpty());
            QVERIFY2(property.setter.isEmpty() || setBySlot(bySlot.get(), property, value),
                     property.name.constData());
        }
        // None has changed what another has set.
        for (const Property& property : properties) {
            if (property.setter.isEmpty() || isQuestionType(*bySlot, property))
                continue;
            const QVariant value = property.type == OBJECT ? QVariant::fromValue(&other) : sample(property);
            QVERIFY2(bySlot->property(property.name.constData()) == value, property.name.constData());
            QVERIFY2(byProperty->property(property.name.constData()) == value, property.name.constData());
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
        addClass<Calyx::QuestionBase>(question(""));
        addClass<Calyx::QuestionBaseWithOptions>(questionWithOptions(""));
        addClass<Calyx::QuestionYesNo>(questionWithOptions("yes-no-other"));
        addClass<Calyx::QuestionMultiChoice>(questionWithOptions("multiple", "numberOfCorrectOptions=1"));
        addClass<Calyx::QuestionScale>(questionWithOptions("scale"));
        addClass<Calyx::QuestionSort>(questionWithOptions("sort"));
        addClass<Calyx::QuestionCreative>(questionWithOptions("creative"));
        addClass<Calyx::QuestionText>(question("text", "maxChars=0"));
        addClass<Calyx::QuestionNumeric>(question("number", "noOfDecimals=0"));
        addClass<Calyx::QuestionWordSeed>(question("word-seed"));
        addClass<Calyx::QuestionMathFormula>(question("math_formula"));
        addClass<Calyx::ActivityOption>(
            properties(R"(id/ID="" optionText="" displaySeqNumber=0 math=false)"));
        addClass<Calyx::QuestionMetadata>(properties(R"(ordinalType="" options=[])"));
        addClass<Calyx::QuestionFeedback>(
            properties(R"(showFeedback=false showCorrectAnswer=false correctAnswer=?
            activityScoreStatus=? activityResponseStatus=? correctOptions=[] allowResubmit=true
            correctFeedback=? inCorrectFeedback=? answer=? jsonAnswer=? optionAnswers=[] optionFeedbacks=[]
            numberOfRetries=0 numberOfRetriesRemaining=0 remainingTime=?)"));
        addClass<Calyx::Card>(properties(R"(active=true autoSend=true components=[] hasRendered=true id=""
            isTeacherCard=true notes="" ordinal=1 primary=true pristine=true remoteId="" segment={}
            styles={"backgroundColor":"","backgroundImage":"","backgroundSize":"100%"} tracks=[]
            type="TEACHER" visible=true)"));
        addClass<Calyx::AssessmentOptions>(properties(R"(assessmentToken="" allowSkipQuestion=false
            allowNavigateQuestionSet=false allowResubmitResponse=true showSummaryOnAssessmentCompletion=false
            showAnswerOnIncorrectResponse=false showFeedback=false questionCount=1 startingQuestionNumber=0
            allowedTime=0 currentAssessmentSectionId="" title="" description="" scored=false
            assessmentSectionConfigurations={"leveled":false})"));
        addClass<Calyx::CalyxCollabMessage>(
            properties(R"(from="" type="" version="3.0.0" sourceSystem="Lumora" data=?)"));
    }
};

QTEST_GUILESS_MAIN(tst_DataClasses)
#include "tst_DataClasses.moc"
