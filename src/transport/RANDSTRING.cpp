#include "transport/RANDSTRING.h"

#include "base/QtVersion.h"

#include <ctime>

QString RANDSTRING::Generate(int length)
{
    static const char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    constexpr int alphabetSize = sizeof(alphabet) - 1;

    QString result = QStringLiteral("");
    result.reserve(length);
    SeededRandom random(static_cast<uint>(std::time(nullptr))); // calls within one second repeat
    for (int i = 0; i < length; ++i)
        result += QLatin1Char(alphabet[random.next() % alphabetSize]);
    return result;
}
