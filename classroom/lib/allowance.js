/** What somebody may send: a burst at once, and so much a second from then on. */
export class Allowance {
  #burst;
  #perSecond;
  #left;
  #now;
  #at;

  constructor({ burst, perSecond }, now = Date.now) {
    [this.#burst, this.#perSecond, this.#left] = [burst, perSecond, burst];
    [this.#now, this.#at] = [now, now()];
  }

  /** Takes an amount; false when there is not so much left. */
  take(amount) {
    const now = this.#now();
    this.#left = Math.min(this.#burst, this.#left + ((now - this.#at) / 1000) * this.#perSecond);
    this.#at = now;
    if (amount > this.#left) return false;
    this.#left -= amount;
    return true;
  }

  /** More than half of the burst is gone. */
  get isLow() {
    return this.#left < this.#burst / 2;
  }
}
