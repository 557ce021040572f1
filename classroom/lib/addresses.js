/** Which connections listen at which address. */
export class Addresses {
  #listeners = new Map();

  add(address, connection) {
    if (!this.#listeners.has(address)) this.#listeners.set(address, new Set());
    this.#listeners.get(address).add(connection);
    connection.addresses.add(address);
  }

  remove(address, connection) {
    connection.addresses.delete(address);
    const listeners = this.#listeners.get(address);
    if (listeners?.delete(connection) && listeners.size === 0) this.#listeners.delete(address);
  }

  all(address) {
    return [...(this.#listeners.get(address) ?? [])];
  }

  /** One listener, each in its turn: whoever is taken goes to the end of the line. */
  next(address) {
    const listeners = this.#listeners.get(address);
    if (!listeners) return undefined;
    const [connection] = listeners;
    listeners.delete(connection);
    listeners.add(connection);
    return connection;
  }
}
