import { isObject, listOf, textOf, wholeNumber } from '../model/text.js';
import { t } from '../words/words.js';

const MOST_CARDS = 10000;

// What each message of the presenter's changes; false for one that cannot be read.
const READERS = {
  currentLesson: (lesson) => isObject(lesson) && { lesson: { name: textOf(lesson.name) } },
  currentCard: (card) => isObject(card) && { card: cardOf(card) },
  dialogShow: (dialog) => isObject(dialog) && {},
  presenterIsActive: () => ({}),
  pause: () => ({}),
  resume: () => ({}),
  showCard: () => ({}),
};

/** What the remote control knows of the presenter and of its lesson. */
export class RemoteState {
  // null until the presenter has told it.
  lesson = null;
  card = null;
  isLinked = false;
  // "unknown", "asked", "active" or "silent".
  presence = 'unknown';
  #isAsked = false;
  #changed;

  /** changed(message): the message {type, value} that has come, if one has. */
  constructor(changed) {
    this.#changed = changed;
  }

  handlers = Object.fromEntries(Object.entries(READERS).map(
    ([type, read]) => [type, (value) => this.#heard({ type, value }, read(value))]));

  /** The connection has been made, or is lost. */
  linked(isLinked) {
    this.#isAsked = false;
    this.#update({ isLinked, presence: 'unknown' });
  }

  /** The presenter has been asked whether it is there. Until it answers, or does not, it is what it was. */
  asked() {
    this.#isAsked = true;
    if (this.presence === 'unknown') this.#update({ presence: 'asked' });
  }

  /** Time enough has gone by for an answer. */
  waited() {
    if (this.#isAsked) this.#update({ presence: 'silent' });
    this.#isAsked = false;
  }

  /** Why a command cannot work, or nothing. */
  obstacle({ asksPresence, needsCards }) {
    if (!this.isLinked) return t('There is no connection');
    if (this.presence === 'silent' && !asksPresence) return t('The presenter does not answer');
    return needsCards && this.card?.total === 0 ? t('There are no cards') : '';
  }

  // Whatever it says, it is there.
  #heard(message, changes) {
    if (!changes) return;
    this.#isAsked = false;
    this.#update({ ...changes, presence: 'active' }, message);
  }

  #update(changes, message) {
    Object.assign(this, changes);
    this.#changed(message);
  }
}

function cardOf({ currentCard, totalCards, cards }) {
  const current = wholeNumber(currentCard, 0, MOST_CARDS);
  const names = listOf(cards).map((one) => textOf(one?.name));
  return { current, total: wholeNumber(totalCards, 0, MOST_CARDS), name: names[current - 1] ?? '' };
}
