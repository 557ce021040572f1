/**
 * A small memory of work done, by text. A question goes to every learner of a process as the same text,
 * and many learners give the same answer: without it 5,000 learners would decode every question, and a
 * large card, 5,000 times. Bounded in entries and characters; the one unused for longest goes first.
 */
export class PayloadCache {
  #entries = new Map();
  #chars = 0;
  #maxEntries;
  #maxChars;

  constructor(maxEntries, maxChars) {
    this.#maxEntries = maxEntries;
    this.#maxChars = maxChars;
  }

  /** What `make(text)` gave for this text the last time, or gives now. A throw is not remembered. */
  get(text, make) {
    const known = this.#entries.has(text);
    const value = known ? this.#entries.get(text) : make(text);
    if (known) this.#entries.delete(text);
    else this.#chars += text.length;
    this.#entries.set(text, value);
    while (this.#entries.size > this.#maxEntries || this.#chars > this.#maxChars) this.#dropOldest();
    return value;
  }

  #dropOldest() {
    const text = this.#entries.keys().next().value;
    this.#entries.delete(text);
    this.#chars -= text.length;
  }
}
