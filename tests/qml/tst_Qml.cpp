// Runs tst_*.qml of this folder, each with a local classroom of its own as "classroom".
#include "slate/QrImages.h"

#include <CalyxClient/LocalClassroom>

#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QtQuickTest>

class Classroom : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QUrl url READ url CONSTANT)

public:
    explicit Classroom(QObject* parent) : QObject(parent) {}
    QUrl url() const { return m_classroom.url(); }
    Q_INVOKABLE QString tell(const QString& command) { return m_classroom.tell(command); }
    /// Draws a window into the folder SLATE_PICTURES, where there is one; the platform "offscreen" has no
    /// picture of it.
    Q_INVOKABLE void draw(QObject* window, const QString& name)
    {
        if (const QString folder = qEnvironmentVariable("SLATE_PICTURES"); !folder.isEmpty())
            qobject_cast<QQuickWindow*>(window)->grabWindow().save(folder + QLatin1Char('/') + name);
    }

private:
    Calyx::LocalClassroom m_classroom;
};

class Setup : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void qmlEngineAvailable(QQmlEngine* engine)
    {
        engine->rootContext()->setContextProperty(QStringLiteral("classroom"), new Classroom(engine));
        engine->addImageProvider(QStringLiteral("qr"), new QrImages);
    }
};

QUICK_TEST_MAIN_WITH_SETUP(qml, Setup)
#include "tst_Qml.moc"
