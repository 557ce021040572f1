#pragma once

#include <QHash>
#include <QWidget>

class QLabel;
class QListWidget;
class QListWidgetItem;

/// Who is here, and who of them has answered.
class LearnerList : public QWidget
{
    Q_OBJECT

public:
    LearnerList();

    void join(const QString& deviceId, const QString& name, const QString& deviceType);
    void leave(const QString& deviceId);
    void clear();
    void markAnswered(const QString& deviceId);
    /// For the next poll.
    void clearMarks();

Q_SIGNALS:
    void countChanged(int count);

private:
    void show(QListWidgetItem* item, bool hasAnswered);
    void refresh();

    QLabel* m_heading;
    QListWidget* m_list;
    QHash<QString, QListWidgetItem*> m_items; // by device id
};
