#pragma once

#include <QString>

/// One line of a lesson and where it stands ("FILE:LINE"; empty for a typed one).
struct CommandLine
{
    QString text;
    QString origin;
};
