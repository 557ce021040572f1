import { randomUUID } from 'node:crypto';
import { addressOf } from './front.js';
import { BoundedMap } from './bounded.js';
import { LOGIN_IDLE_MS, MAX_LOGINS } from './limits.js';

const COOKIE = 'tavistoLogin';

function loginId(request) {
  for (const part of (request.headers.cookie ?? '').split(';')) {
    const [name, value] = part.trim().split('=', 2);
    if (name === COOKIE) return value;
  }
  return undefined;
}

const setCookie = (value, more = '') => `${COOKIE}=${value}; Path=/; HttpOnly; SameSite=Lax${more}`;

/** The logins that are open, each known by a cookie; one that is not used for half an hour ends. */
export class Logins {
  #open = new BoundedMap(MAX_LOGINS);
  #now;

  constructor(now = Date.now) {
    this.#now = now;
  }

  /** The request's login, {id, userId, from}, or undefined; asking keeps the login alive. */
  of(request) {
    const id = loginId(request);
    if (!this.isOpen(id)) return undefined;
    const { userId } = this.#open.get(id);
    this.#open.set(id, { userId, lastUse: this.#now() });
    return { id, userId, from: addressOf(request) };
  }

  isOpen(id) {
    const login = this.#open.get(id);
    if (login && this.#now() - login.lastUse > LOGIN_IDLE_MS) this.#open.delete(id);
    return this.#open.has(id);
  }

  /** Opens a login in place of the one that the request came with; returns the cookie to set. */
  open(request, userId) {
    this.#open.delete(loginId(request));
    const id = randomUUID();
    this.#open.set(id, { userId, lastUse: this.#now() });
    return setCookie(id);
  }

  close(request) {
    this.#open.delete(loginId(request));
    return setCookie('', '; Max-Age=0');
  }

  /** Ends all of them. */
  clear() {
    this.#open.clear();
  }
}
