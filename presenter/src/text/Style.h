#pragma once

#include <QString>

/// What text is made to stand out as.
enum class Ink { Plain, Heading, Bar, Faint, Good, Bad, Strong };

/// What the place that text goes to can show.
struct Style
{
    bool colour = false;
    /// Block elements and letters beyond ASCII.
    bool unicode = false;
    int columns = 80;
    int rows = 24;

    /// \p text in \p ink where there is colour, else unchanged. Measure before painting: the result has
    /// control sequences in it.
    QString paint(Ink ink, const QString& text) const;
};
