#pragma once

#include <QString>
#include <QVariant>

class QApplication;
class QFrame;
class QLabel;
class QPushButton;
class QVBoxLayout;
class QWidget;

/// How the desk looks, and what all of its controls have.
namespace Theme {

void apply(QApplication& application);

/// A white, rounded box.
QFrame* panel();
/// Makes \p frame one, and lays it out.
QVBoxLayout* panelBox(QFrame* frame);
/// \p scale: how much larger than other text.
QLabel* heading(const QString& text, qreal scale = 1.0);
QLabel* caption(const QString& text);
/// \p tip: what it does, shown to the mouse and told to screen readers.
QPushButton* button(const QString& text, const QString& tip);
/// The button that does what one most likely wants.
QPushButton* primaryButton(const QString& text, const QString& tip);

/// Names a control for screen readers and says what it does.
void describe(QWidget* control, const QString& name, const QString& tip);
/// Sets a property that the style sheet looks at.
void setLook(QWidget* widget, const char* property, const QVariant& value);
/// Disables \p control when there is a reason, and says it where the control else says what it does.
void allow(QWidget* control, const QString& whyNot);

} // namespace Theme
