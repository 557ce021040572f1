import { isObject, listOf, textOf, wholeNumber } from '../model/text.js';

const MOST_CARDS = 10000;

/** What the remote control knows of the presenter and of its lesson. */
export class RemoteState {
  // null until the presenter has told it.
  lesson = null;
  card = null;
  // "unknown", "asked", "active" or "silent".
  presence = 'unknown';
  #isAsked = false;
  #changed;

  constructor(changed) {
    this.#changed = changed;
  }

  handlers = {
    currentLesson: (lesson) => {
      if (isObject(lesson)) this.#update({ lesson: { name: textOf(lesson.name) } });
    },
    currentCard: (card) => {
      if (isObject(card)) this.#update({ card: cardOf(card) });
    },
    presenterIsActive: () => {
      this.#isAsked = false;
      this.#update({ presence: 'active' });
    },
  };

  /** The presenter has been asked whether it is there. */
  asked() {
    this.#isAsked = true;
    // One that is there stays so while it is asked again: only its silence is news.
    if (this.presence !== 'active') this.#update({ presence: 'asked' });
  }

  /** Time enough has gone by for an answer. */
  waited() {
    if (this.#isAsked) this.#update({ presence: 'silent' });
    this.#isAsked = false;
  }

  /** The presenter has said that there are no cards. */
  get hasNoCards() {
    return this.card?.total === 0;
  }

  #update(changes) {
    Object.assign(this, changes);
    this.#changed();
  }
}

function cardOf({ currentCard, totalCards, cards }) {
  const current = wholeNumber(currentCard, 0, MOST_CARDS);
  const names = listOf(cards).map((one) => textOf(one?.name));
  return { current, total: wholeNumber(totalCards, 0, MOST_CARDS), name: names[current - 1] ?? '' };
}
