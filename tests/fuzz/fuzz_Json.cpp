// The reading of JSON: the input is a text. What comes out is what QJsonDocument makes of it, without its
// leak.

#include "base/JsonReader.h"
#include "support/Fuzz.h"

#include <sanitizer/lsan_interface.h>

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const QJsonDocument document = JsonReader::read(text);
    QJsonParseError error;
    QJsonDocument plain;
    {
        const __lsan::ScopedDisabler knownLeak;
        plain = QJsonDocument::fromJson(text.toUtf8(), &error);
    }
    // To Qt two halves of a surrogate pair may be the same name, or not.
    if (error.error == QJsonParseError::NoError && !plain.toJson().contains("\\ud"))
        Fuzz::require(document.toVariant() == plain.toVariant(), "what is JSON to Qt is the same to us");
    return 0;
}
