#include "DeskWindow.h"

#include <QtWidgets>

// desk [ADDRESS]: the classroom service's.
int main(int argc, char** argv)
{
    // The library writes down every message that comes and goes.
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    QApplication application(argc, argv);
    const auto window = makeDesk(QUrl(QApplication::arguments().value(1)));
    window->show();
    return QApplication::exec();
}
