#pragma once

#include <CalyxClient/Lesson>

#include <QtWidgets>

// Qt tells screen readers the text of a button, or the label of a field, as its name. Lists, tables and combo
// boxes need an accessible name of their own.

/// Disables \p control when one of \p reasons is there, and says the first where it else says what it does.
inline void allow(QWidget* control, const QList<QPair<bool, QString>>& reasons = {})
{
    const auto reason = std::find_if(reasons.begin(), reasons.end(), [](auto& one) { return one.first; });
    const bool isAllowed = reason == reasons.end();
    control->setEnabled(isAllowed);
    control->setToolTip(isAllowed ? control->whatsThis() : reason->second);
    control->setAccessibleDescription(control->toolTip());
}

/// A control that says what it does, for as long as it can be used.
template<typename Control>
Control* made(const QString& tip, const QString& name = QString(), Control* control = new Control)
{
    control->setWhatsThis(tip);
    control->setAccessibleName(name);
    allow(control);
    return control;
}

template<typename Press>
QPushButton* button(const QString& text, const QString& tip, Press press)
{
    auto* button = made<QPushButton>(tip);
    button->setText(text);
    button->setAutoDefault(true); // Enter presses it where it has the focus
    QObject::connect(button, &QPushButton::clicked, button, press);
    return button;
}

/// A label for what comes from outside: never taken for HTML.
inline QLabel* plainLabel(const QString& text = QString())
{
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

/// Lays \p widgets out in \p parent, and returns it.
template<typename Parent>
Parent* arrange(Parent* parent, QBoxLayout::Direction direction, const QList<QWidget*>& widgets)
{
    auto* layout = new QBoxLayout(direction, parent);
    layout->setContentsMargins({});
    for (QWidget* widget : widgets)
        layout->addWidget(widget);
    return parent;
}

inline QWidget* across(const QList<QWidget*>& widgets)
{
    return arrange(new QWidget, QBoxLayout::LeftToRight, widgets);
}
