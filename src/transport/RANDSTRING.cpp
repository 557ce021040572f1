#include "transport/RANDSTRING.h"

#include <QtGlobal>

#include <ctime>

QString RANDSTRING::Generate(int length)
{
    static const char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    constexpr int alphabetSize = sizeof(alphabet) - 1;

    QString result = QStringLiteral("");
    result.reserve(length);
    // The seeded generator is deprecated in Qt, but it is what makes calls within one second repeat.
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    qsrand(static_cast<uint>(std::time(nullptr)));
    for (int i = 0; i < length; ++i)
        result += QLatin1Char(alphabet[qrand() % alphabetSize]);
    QT_WARNING_POP
    return result;
}
