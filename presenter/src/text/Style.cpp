#include "text/Style.h"

namespace {

const char* sequence(Ink ink)
{
    switch (ink) {
    case Ink::Heading:
        return "1;36";
    case Ink::Bar:
    case Ink::Good:
        return "32";
    case Ink::Faint:
        return "2";
    case Ink::Bad:
        return "1;31";
    case Ink::Strong:
        return "1";
    case Ink::Plain:
        break;
    }
    return "0";
}

} // namespace

QString Style::paint(Ink ink, const QString& text) const
{
    if (!colour || ink == Ink::Plain || text.isEmpty())
        return text;
    return QStringLiteral("\033[") + QLatin1String(sequence(ink)) + QLatin1Char('m') + text +
           QStringLiteral("\033[0m");
}
