#pragma once

#include "PollKinds.h"

#include <QWidget>

class QComboBox;
class QPushButton;
class QSpinBox;

/// What to ask, and the buttons that start, pause and stop it.
class PollBar : public QWidget
{
    Q_OBJECT

public:
    enum State { NoPoll, Starting, Running, Paused };

    PollBar();

    /// \p whyNot: why no poll can be put at all; empty when one can.
    void setState(State state, const QString& whyNot);
    /// As the button that pauses or resumes, where that can be done.
    void press(bool pauses);

Q_SIGNALS:
    void start(const PollKind& kind, int options);
    void pause(bool isToPause);
    void stop();

private:
    const PollKind& kind() const;
    void layOut();
    void onKindChosen();
    void refresh();

    State m_state = NoPoll;
    QString m_whyNot;
    QComboBox* m_kind;
    QSpinBox* m_options;
    QPushButton* m_start;
    QPushButton* m_pause;
    QPushButton* m_stop;
};
