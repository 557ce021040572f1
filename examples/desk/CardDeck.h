#pragma once

#include "Card.h"

#include <QVector>
#include <QWidget>

#include <functional>

class QFrame;
class QLabel;
class QPushButton;

/// The lesson's pictures: added from a file, by drag and drop or by the remote control, and shown one by one.
class CardDeck : public QWidget
{
    Q_OBJECT

public:
    CardDeck();

    /// From 1; 0 without any.
    int current() const { return m_current + 1; }
    int count() const { return m_cards.size(); }
    /// Why cards cannot be shown to the learners; empty when they can.
    void setWhyNoShow(const QString& reason);

    void chooseFile();
    void addFiles(const QStringList& paths);
    /// \p url: a picture as a data URI.
    void addDataUri(const QString& name, const QString& url);
    void next() { goTo(m_current + 1); }
    void previous() { goTo(m_current - 1); }
    void showToLearners();

Q_SIGNALS:
    void changed();
    void refused(const QString& name, const QString& reason);
    void cardToShow(const QByteArray& png);

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void layOut();
    void readLater(const std::function<Card()>& read);
    void add(const Card& card);
    void goTo(int card);
    void refresh();
    void highlight(bool isOver);

    QVector<Card> m_cards;
    int m_current = -1;
    int m_reading = 0;
    QString m_whyNoShow;
    QFrame* m_drop;
    QLabel* m_picture;
    QLabel* m_place;
    QPushButton* m_add;
    QPushButton* m_previous;
    QPushButton* m_next;
    QPushButton* m_show;
};
