#pragma once

#include <QString>

/// One bar of a chart.
struct Bar
{
    QString label;
    int count;
};
