#pragma once

#include <QString>
#include <QVariant>

/// \p value with its types, in one line that no Qt writes in a way of its own; what is long is cut and gets a
/// sum.
QString textOf(const QVariant& value);
