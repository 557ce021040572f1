/** How long something has been running, without its pauses. Can be kept as JSON, and goes on from there. */
export class Stopwatch {
  #now;
  #before;
  #since;

  constructor(now, { before = 0, since = now() } = {}) {
    this.#now = now;
    this.#before = before;
    this.#since = since;
  }

  get elapsed() {
    return this.#before + (this.#since === null ? 0 : Math.max(0, this.#now() - this.#since));
  }

  pause() {
    this.#before = this.elapsed;
    this.#since = null;
  }

  resume() {
    this.#since ??= this.#now();
  }

  toJSON() {
    return { before: this.#before, since: this.#since };
  }
}
