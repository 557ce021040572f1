#pragma once

#include "Classroom.h"
#include "Controls.h"

/// The lesson's pictures: added from a file, by drag and drop or by the remote control, and shown one by one.
class CardDeck : public QGroupBox
{
    Q_OBJECT

public:
    explicit CardDeck(Classroom* classroom);

    /// Adds the picture that \p device, still closed, holds.
    void add(const QString& name, const std::shared_ptr<QIODevice>& device);
    /// Goes so many cards on, or back.
    void step(int cards);
    /// As the button, where that can be pressed.
    void showToLearners() { m_show->click(); }
    /// Tells the remote control where in the deck we are.
    void tellRemote();
    /// \p whyNoShow: why cards cannot be shown to the learners; empty when they can.
    void refresh(const QString& whyNoShow);

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void addFiles(const QList<QUrl>& urls);

    Classroom* m_classroom;
    QString m_whyNoShow;
    QListWidget* m_list = described(new QListWidget, tr("The pictures of the lesson"));
    QPushButton* m_show = button(tr("&Show to learners"), tr("Show this card on the learners\u2019 devices"));
};
