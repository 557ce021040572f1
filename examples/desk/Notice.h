#pragma once

#include "Failure.h"

#include <QFrame>

class QLabel;

/// Says at the top of the window what went wrong, until it is closed or something else is begun.
class Notice : public QFrame
{
    Q_OBJECT

public:
    Notice();
    void show(const Failure& failure);

private:
    QLabel* m_what;
    QLabel* m_advice;
};
