// Runs tst_*.qml of this folder, each with a local classroom of its own as "classroom".
#include <CalyxClient/LocalClassroom>

#include <QQmlContext>
#include <QQmlEngine>
#include <QtQuickTest>

class Classroom : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QUrl url READ url CONSTANT)

public:
    QUrl url() const { return m_classroom.url(); }
    Q_INVOKABLE QString tell(const QString& command) { return m_classroom.tell(command); }

private:
    Calyx::LocalClassroom m_classroom;
};

class Setup : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void qmlEngineAvailable(QQmlEngine* engine)
    {
        engine->rootContext()->setContextProperty(QStringLiteral("classroom"), new Classroom);
    }
};

QUICK_TEST_MAIN_WITH_SETUP(qml, Setup)
#include "tst_Qml.moc"
