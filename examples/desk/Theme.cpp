#include "Theme.h"

#include <QApplication>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QStyleFactory>
#include <QVBoxLayout>

namespace {

const char tipProperty[] = "deskTip";

const QString styleSheet = QStringLiteral(R"(
QToolTip { background: #24303c; color: #ffffff; border: 0; padding: 4px; }
QFrame#panel { background: #ffffff; border: 1px solid #d8dee5; border-radius: 8px; }
QFrame#notice { background: #fdf1f0; border: 1px solid #e3b0ab; border-radius: 8px; }
QFrame#notice QLabel { color: #6d1f18; }
QFrame#drop { background: #f7f9fb; border: 2px dashed #b8c4d0; border-radius: 8px; }
QFrame#drop[isOver="true"] { background: #e8f0fa; border-color: #2563a8; }
QLabel#caption { color: #5b6875; }
QLabel#state { background: #e6ebf0; color: #3c4a57; border-radius: 9px; padding: 2px 10px; }
QLabel#state[tone="live"] { background: #dcf1e3; color: #14532d; }
QLabel#state[tone="lost"] { background: #fbe3e0; color: #7f1d1d; }
QPushButton { min-height: 22px; padding: 3px 12px; }
QPushButton#primary { background: #2563a8; color: #ffffff; border: 1px solid #1d4f87; border-radius: 4px; font-weight: bold; }
QPushButton#primary:hover { background: #2b6fba; }
QPushButton#primary:pressed { background: #1d4f87; }
QPushButton#primary:focus { border: 2px solid #0f2f54; }
QPushButton#primary:disabled { background: #d3dae2; color: #7b8794; border-color: #c3ccd5; }
QListWidget { border: 0; }
QListWidget::item { padding: 3px 2px; }
QStatusBar::item { border: 0; }
)");

QPalette lightPalette()
{
    QPalette palette(QColor(0xf2, 0xf4, 0xf7));
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::Text, QColor(0x1f, 0x29, 0x33));
    palette.setColor(QPalette::WindowText, QColor(0x1f, 0x29, 0x33));
    palette.setColor(QPalette::ButtonText, QColor(0x1f, 0x29, 0x33));
    palette.setColor(QPalette::Highlight, QColor(0x25, 0x63, 0xa8));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::PlaceholderText, QColor(0x7b, 0x87, 0x94));
    for (const QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(0x8a, 0x95, 0xa1));
    return palette;
}

} // namespace

void Theme::apply(QApplication& application)
{
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(lightPalette());
    application.setStyleSheet(styleSheet);
}

QFrame* Theme::panel()
{
    auto* panel = new QFrame;
    panel->setObjectName(QStringLiteral("panel"));
    return panel;
}

QVBoxLayout* Theme::panelBox(QFrame* frame)
{
    frame->setObjectName(QStringLiteral("panel"));
    auto* box = new QVBoxLayout(frame);
    box->setContentsMargins(16, 14, 16, 16);
    box->setSpacing(10);
    return box;
}

QLabel* Theme::heading(const QString& text, qreal scale)
{
    auto* label = new QLabel(text);
    QFont font = label->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * scale);
    label->setFont(font);
    return label;
}

QLabel* Theme::caption(const QString& text)
{
    auto* label = new QLabel(text);
    label->setObjectName(QStringLiteral("caption"));
    label->setWordWrap(true);
    return label;
}

QPushButton* Theme::button(const QString& text, const QString& tip)
{
    auto* button = new QPushButton(text);
    button->setAutoDefault(true); // Enter presses it where it has the focus
    describe(button, QString(text).remove(QLatin1Char('&')).remove(QChar(0x2026)), tip);
    return button;
}

QPushButton* Theme::primaryButton(const QString& text, const QString& tip)
{
    QPushButton* primary = button(text, tip);
    primary->setObjectName(QStringLiteral("primary"));
    return primary;
}

void Theme::describe(QWidget* control, const QString& name, const QString& tip)
{
    control->setAccessibleName(name);
    control->setProperty(tipProperty, tip);
    allow(control, QString());
}

void Theme::setLook(QWidget* widget, const char* property, const QVariant& value)
{
    widget->setProperty(property, value);
    widget->style()->unpolish(widget); // it looks once
    widget->style()->polish(widget);
}

void Theme::allow(QWidget* control, const QString& whyNot)
{
    const QString told = whyNot.isEmpty() ? control->property(tipProperty).toString() : whyNot;
    control->setEnabled(whyNot.isEmpty());
    control->setToolTip(told);
    control->setAccessibleDescription(told);
}
