#pragma once

#include "text/Style.h"

#include <QStringList>
#include <QVector>

/// Rows in columns that line up.
namespace Table {

/// \p header and \p rows, each with as many cells; the last column is cut where the line is full.
QStringList lines(const QStringList& header, const QVector<QStringList>& rows, const Style& style);

} // namespace Table
