/** An amount of memory that many share, each by a lease that is given back as a whole. */
export class Budget {
  #left;

  constructor(bytes) {
    this.#left = bytes;
  }

  lease() {
    let held = 0;
    return {
      /** Holds more; false when all who share have too much. */
      take: (bytes) => {
        if (bytes > this.#left) return false;
        this.#left -= bytes;
        held += bytes;
        return true;
      },
      end: () => {
        this.#left += held;
        held = 0;
      },
    };
  }
}
