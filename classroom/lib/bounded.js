/** A map that forgets its oldest entry when it is full. */
export class BoundedMap extends Map {
  #limit;

  constructor(limit) {
    super();
    this.#limit = limit;
  }

  set(key, value) {
    this.delete(key);
    if (this.size >= this.#limit) this.delete(this.keys().next().value);
    return super.set(key, value);
  }
}
