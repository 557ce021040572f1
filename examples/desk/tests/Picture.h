#pragma once

#include <QRect>
#include <QString>
#include <QWidget>

namespace Picture {

/// Makes the picture of \p widget the one of this name in the documents, unless it looks like the one that is
/// there already; \p changing is left out of that comparison. False when it cannot be written.
bool keep(QWidget* widget, const QString& name, const QRect& changing = QRect());

} // namespace Picture
