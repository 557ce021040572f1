// Reads cases from its input, a line for each: the kind, a blank, the input in base64. Writes what comes out
// of each, with what was logged. Both builds of the library have to write the same.
#include "agreement/Cases.h"
#include "agreement/Text.h"
#include "support/WallClock.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QMap>

#include <cstdio>
#include <ctime>
#include <iostream>
#include <string>

namespace {

const QMap<QByteArray, Cases::Case> kinds{
    {"message", Cases::message}, {"frame", Cases::frame},     {"http", Cases::http},
    {"gzip", Cases::gzip},       {"payload", Cases::payload}, {"block", Cases::block},
    {"json", Cases::json},       {"reply", Cases::reply},     {"send", Cases::send},
};

QStringList lines;

void keep(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (qstrcmp(context.category, "default") == 0)
        lines.append(QString::number(type) + QLatin1Char(' ') + textOf(text));
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=true"));
    qInstallMessageHandler(keep);
    WallClock::freeze(); // ids are drawn from the second
    WallClock::advance(1500000000 - int(std::time(nullptr)));
    std::string line;
    while (std::getline(std::cin, line)) {
        const QList<QByteArray> parts = QByteArray::fromStdString(line).split(' ');
        const Cases::Case kind = kinds.value(parts.first());
        if (!kind) {
            std::fprintf(stderr, "No such kind: %s\n", parts.first().constData());
            return 2;
        }
        lines.clear();
        kind(QByteArray::fromBase64(parts.value(1)), &lines);
        std::printf("%s\n", qPrintable(lines.join(QLatin1Char('\t'))));
    }
    std::fflush(stdout);
    std::_Exit(0); // the session is still open
}
