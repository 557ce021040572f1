#pragma once

#include <QCoreApplication>

/// What people read, in their language: Words::tr("Logged out."). A text that stands in a table is marked
/// there by QT_TRANSLATE_NOOP("Words", ...).
struct Words
{
    Q_DECLARE_TR_FUNCTIONS(Words)
};
