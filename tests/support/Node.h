#pragma once

#include <QObject>
#include <QString>

/// An object that may hold one more of its kind.
class Node : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QObject* next MEMBER next)

public:
    explicit Node(const QString& text = QString(), QObject* follower = nullptr) : name(text), next(follower)
    {}
    QString name;
    QObject* next = nullptr;
};
