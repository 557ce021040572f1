// What stands in front of the classroom: nothing, or a reverse proxy, from whose address everybody comes then. The proxy says for
// whom it asks, and the presenter is known by a path to the bus that only its account is told.

import { randomUUID } from 'node:crypto';

const PRESENTERS_PATH = /^\/presenter\/([^/?]+)(?=\/eventbus(?:[/?]|$))/;

const plain = (address = '') => address.replace(/^::ffff:/, '');

/** The network address that a request comes from, in front of the proxy. */
export const addressOf = (request) => request.from ?? request.socket?.remoteAddress;

/** Where a classroom stands: `proxy` is the address of the reverse proxy in front of it, undefined without one. */
export class Front {
  #proxy;
  // By user, and the other way round; there are never more than accounts.
  #keys = new Map();
  #users = new Map();

  constructor(proxy) {
    this.#proxy = proxy;
  }

  get isProxied() {
    return this.#proxy !== undefined;
  }

  /** Notes on a request who it is from, and takes a presenter's path off its address: before anybody looks at it. */
  receive(request) {
    if (!this.isProxied) return;
    if (plain(request.socket.remoteAddress) === plain(this.#proxy)) {
      // The last is what the proxy has added; those before are what somebody says.
      request.from = request.headers['x-forwarded-for']?.split(',').pop().trim();
    }
    const [path, key] = PRESENTERS_PATH.exec(request.url) ?? [];
    request.presenter = this.#users.get(key);
    if (request.presenter !== undefined) request.url = request.url.slice(path.length);
  }

  /** What stands before the bus's own path in the address that a presenter is told. */
  pathFor(userId) {
    if (!this.isProxied) return '';
    if (!this.#keys.has(userId)) {
      const key = randomUUID();
      this.#keys.set(userId, key);
      this.#users.set(key, userId);
    }
    return `/presenter/${this.#keys.get(userId)}`;
  }

  /** Whether a connection is one of the session's presenter: by its path, or without a proxy by its address. */
  isPresenters(session, connection) {
    return this.isProxied ? connection.presenter === session.owner.userId : connection.remoteAddress === session.startedFrom;
  }
}
