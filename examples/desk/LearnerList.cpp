#include "LearnerList.h"

#include "Theme.h"

#include <QIcon>
#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QVBoxLayout>

namespace {

enum Role { Name = Qt::UserRole, Device };

QIcon mark(bool hasAnswered)
{
    constexpr int side = 16;
    QPixmap picture(side, side);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(hasAnswered ? QColor(0x1f, 0x7a, 0x45) : QColor(0xb8, 0xc4, 0xd0), 1.5));
    if (hasAnswered)
        painter.setBrush(QColor(0x1f, 0x7a, 0x45));
    painter.drawEllipse(QRectF(2, 2, 12, 12));
    if (hasAnswered) {
        painter.setPen(QPen(Qt::white, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolyline(QPolygonF({{5.2, 8.3}, {7.2, 10.2}, {10.8, 6}}));
    }
    return QIcon(picture);
}

} // namespace

LearnerList::LearnerList()
{
    m_heading = Theme::heading(QString(), 1.1);
    m_list = new QListWidget;
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setSortingEnabled(true);
    Theme::describe(m_list, QStringLiteral("Learners"),
                    QStringLiteral("Who is here; a tick shows who has answered the poll"));
    m_heading->setBuddy(m_list);
    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->addWidget(m_heading);
    box->addWidget(m_list);
    refresh();
}

void LearnerList::join(const QString& deviceId, const QString& name, const QString& deviceType)
{
    if (deviceId.isEmpty() || m_items.contains(deviceId))
        return;
    auto* item = new QListWidgetItem(m_list);
    item->setData(Name, name.isEmpty() ? deviceId : name);
    item->setData(Device, deviceType);
    m_items.insert(deviceId, item);
    show(item, false);
    refresh();
}

void LearnerList::leave(const QString& deviceId)
{
    delete m_items.take(deviceId);
    refresh();
}

void LearnerList::clear()
{
    m_items.clear();
    m_list->clear();
    refresh();
}

void LearnerList::markAnswered(const QString& deviceId)
{
    if (QListWidgetItem* item = m_items.value(deviceId))
        show(item, true);
}

void LearnerList::clearMarks()
{
    for (QListWidgetItem* item : qAsConst(m_items))
        show(item, false);
}

void LearnerList::show(QListWidgetItem* item, bool hasAnswered)
{
    const QString name = item->data(Name).toString();
    const QString device = item->data(Device).toString();
    item->setText(name);
    item->setToolTip(device);
    item->setIcon(mark(hasAnswered));
    item->setData(Qt::AccessibleTextRole,
                  QStringLiteral("%1, %2, %3")
                      .arg(name, device, QLatin1String(hasAnswered ? "has answered" : "has not answered")));
}

void LearnerList::refresh()
{
    m_heading->setText(m_items.isEmpty() ? QStringLiteral("Learners")
                                         : QStringLiteral("Learners (%1)").arg(m_items.size()));
    Q_EMIT countChanged(m_items.size());
}
