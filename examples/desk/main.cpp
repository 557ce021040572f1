#include "DeskWindow.h"

#include <CalyxClient/Lesson>

#include <QtWidgets>

// desk [ADDRESS]: the classroom service's.
int main(int argc, char** argv)
{
    // The library writes down every message that comes and goes.
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    QApplication application(argc, argv);
    // [translations]
    QTranslator texts;
    if (texts.load(QLocale(), "desk", "_", ":/calyxclient"))
        QCoreApplication::installTranslator(&texts);
    Calyx::Lesson::installTranslations();
    // [translations]
    const auto window = makeDesk(QUrl(QApplication::arguments().value(1)));
    window->show();
    return QApplication::exec();
}
