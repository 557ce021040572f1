// A host in QML outside the tree: it links nothing of ours, and finds the installed module.
#include <QCoreApplication>
#include <QQmlComponent>
#include <QQmlEngine>

#include <memory>

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QQmlEngine engine;
    engine.addImportPath(QStringLiteral(IMPORTS));
    QQmlComponent component(&engine);
    component.setData("import Calyx 1.0\nLesson { property int kind: PollType.SCALE }", {});
    const std::unique_ptr<QObject> lesson(component.create());
    if (!lesson)
        qCritical("%s", qPrintable(component.errorString()));
    return lesson && lesson->property("kind") == 3 ? 0 : 1;
}
