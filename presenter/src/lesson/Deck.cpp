#include "lesson/Deck.h"

void Deck::add(const Card& card)
{
    m_cards.append(card);
    m_current = qMax(m_current, 1);
}

bool Deck::go(int number)
{
    if (number < 1 || number > count())
        return false;
    m_current = number;
    return true;
}
