#include "app/ScriptFile.h"

#include "commands/CommandTable.h"
#include "text/Words.h"

#include <QFile>

ScriptFile::Script ScriptFile::read(const QString& fileName)
{
    QFile file(fileName);
    Script script;
    if (file.open(QIODevice::ReadOnly))
        return parse(QString::fromUtf8(file.readAll()), fileName);
    script.faults.append(
        QStringLiteral("The script %1 cannot be read: %2.").arg(fileName, file.errorString()));
    return script;
}

ScriptFile::Script ScriptFile::parse(const QString& text, const QString& fileName)
{
    Script script;
    int number = 0;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        ++number;
        if (Words::isBlank(line))
            continue;
        const QString origin = QStringLiteral("%1:%2").arg(fileName).arg(number);
        script.lines.append({line, origin});
        const QString fault = CommandTable::match(line).fault;
        if (!fault.isEmpty())
            script.faults.append(QStringLiteral("%1: %2").arg(origin, fault));
    }
    return script;
}
