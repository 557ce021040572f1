#pragma once

#include <QByteArray>
#include <QList>

/// JSON as it must not be, may be, or is read differently by every parser: the classes of cases by which JSON
/// parsers are usually tried.
namespace HostileJson {

struct Case
{
    const char* name;
    QByteArray text;
    /// Whether QJsonDocument takes a list that holds it, as [text].
    bool isTaken;
};

/// Values to stand anywhere in a document. Those that are not taken break the document around them.
QList<Case> values();

} // namespace HostileJson
