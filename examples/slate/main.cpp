// The slate: a lesson in a window of Qt Quick. What it does stands in Main.qml.
#include "QrImages.h"

#include <CalyxClient/Lesson>

#include <QGuiApplication>
#include <QPalette>
#include <QQmlApplicationEngine>
#include <QTranslator>

int main(int argc, char** argv)
{
    QGuiApplication application(argc, argv);
    QTranslator texts, lessonTexts;
    if (texts.load(QLocale(), "slate", "_", ":/calyxclient"))
        QGuiApplication::installTranslator(&texts);
    if (Calyx::Lesson::loadTranslation(&lessonTexts))
        QGuiApplication::installTranslator(&lessonTexts);
    const bool isDark = QGuiApplication::palette().window().color().lightness() < 128;
    QQmlApplicationEngine engine;
    engine.addImportPath(QStringLiteral(SLATE_IMPORTS));
    engine.addImageProvider(QStringLiteral("qr"), new QrImages);
    engine.setInitialProperties({{"server", QGuiApplication::arguments().value(1)}, {"isDark", isDark}});
    engine.load(QUrl(QStringLiteral("qrc:/Main.qml")));
    return engine.rootObjects().isEmpty() ? 1 : QGuiApplication::exec();
}
