#include "DeskWindow.h"

#include <CalyxClient/Lesson>

#include <QtWidgets>

static QString qtTextsFolder()
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    return QLibraryInfo::location(QLibraryInfo::TranslationsPath);
#else
    return QLibraryInfo::path(QLibraryInfo::TranslationsPath);
#endif
}

// desk [ADDRESS]: the classroom service's.
int main(int argc, char** argv)
{
    // The library writes down every message that comes and goes.
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    QApplication application(argc, argv);
    // [translations]
    QTranslator texts, lessonTexts, qtTexts;
    const auto install = [](QTranslator& translator, bool isFound) {
        if (isFound)
            QCoreApplication::installTranslator(&translator);
    };
    install(texts, texts.load(QLocale(), "desk", "_", ":/calyxclient"));
    install(lessonTexts, Calyx::Lesson::loadTranslation(&lessonTexts));
    install(qtTexts, qtTexts.load(QLocale(), "qtbase", "_", qtTextsFolder()));
    // [translations]
    const auto window = makeDesk(QUrl(QApplication::arguments().value(1)));
    window->show();
    return QApplication::exec();
}
