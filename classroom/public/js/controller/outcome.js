import { t } from '../words/words.js';

/** How long the presenter may take to answer before that is said. */
export const ANSWER_MS = 5000;

/** What came of the command that was given last. */
export class Outcome {
  #tell;
  #command = null;
  #before;
  #timer;
  #told;

  /** tell(text) */
  constructor(tell) {
    this.#tell = tell;
  }

  /** A command is about to go out; state is what is known before it. */
  given(command, { card }) {
    this.end();
    this.#command = command;
    this.#before = card;
    this.#told = '';
    this.#tell(t('%1: waiting for the presenter …', command.said));
    this.#timer = setTimeout(() => this.#late(), ANSWER_MS);
  }

  notSent({ said }) {
    this.end();
    this.#tell(t('%1: not sent, there is no connection', said));
  }

  /** The presenter has sent this; what it says of the same command again, a card further, is told as well. */
  heard({ type, value }, state) {
    if (this.#command?.sign !== type) return;
    const text = this.#command.outcome(value, state, this.#before);
    if (!text || text === this.#told) return;
    if (this.#timer === undefined) this.#command = null;
    this.#told = text;
    this.#tell(text);
  }

  /** Nothing is waited for any more. */
  end() {
    clearTimeout(this.#timer);
    this.#command = null;
  }

  // An answer that is late is told all the same.
  #late() {
    this.#timer = undefined;
    if (this.#told) this.#command = null;
    else this.#tell(t('%1: no answer from the presenter yet', this.#command.said));
  }
}
