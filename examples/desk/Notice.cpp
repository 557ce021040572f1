#include "Notice.h"

#include "Theme.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

Notice::Notice()
{
    setObjectName(QStringLiteral("notice"));
    setAccessibleName(QStringLiteral("What went wrong"));
    m_what = Theme::heading(QString(), 1.1);
    m_advice = new QLabel;
    m_advice->setWordWrap(true);
    m_advice->setTextFormat(Qt::PlainText);
    QPushButton* close = Theme::button(QStringLiteral("&Dismiss"), QStringLiteral("Close this message"));
    connect(close, &QPushButton::clicked, this, &QWidget::hide);

    auto* texts = new QVBoxLayout;
    texts->setSpacing(4);
    texts->addWidget(m_what);
    texts->addWidget(m_advice);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(16, 12, 12, 12);
    row->addLayout(texts, 1);
    row->addWidget(close, 0, Qt::AlignTop);
    hide();
}

void Notice::show(const Failure& failure)
{
    m_what->setText(failure.what);
    m_advice->setText(failure.key.isEmpty()
                          ? failure.advice
                          : QStringLiteral("%1\nThe service says: %2").arg(failure.advice, failure.key));
    setAccessibleDescription(m_what->text() + QStringLiteral(". ") + m_advice->text());
    setVisible(true);
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}
