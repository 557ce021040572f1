#pragma once

#include "lesson/Picture.h"

#include <QList>
#include <QString>

/// The cards of a lesson, one of which is the current one. Cards are numbered from 1.
class Deck
{
public:
    struct Card
    {
        QString name;
        Picture picture;
    };

    /// Behind the others; the first becomes the current one.
    void add(const Card& card);
    int count() const { return m_cards.size(); }
    /// 0 when there is none.
    int current() const { return m_current; }
    const Card& card(int number) const { return m_cards.at(number - 1); }
    /// False when there is no such card: then nothing changes.
    bool go(int number);

private:
    QList<Card> m_cards;
    int m_current = 0;
};
