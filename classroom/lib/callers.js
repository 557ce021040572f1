// Whose SockJS session is it? Over XHR its id stands in each address, and ids can be guessed: some clients make theirs from
// the clock. So a session is at the network address from which it was opened only, and with the cookie that it was given
// then, from the first time that this comes back (there are clients that keep none).

import { randomUUID } from 'node:crypto';
import { BoundedMap } from './bounded.js';
import { addressOf } from './front.js';
import { MAX_CONNECTIONS } from './limits.js';

const COOKIE = 'eventBusSession';
const SESSION_PATH = /^(\/eventbus\/[^/.]+\/([^/.]+))\/(?:xhr|xhr_streaming|eventsource|(xhr_send))\/?$/;

const cookieOf = ({ headers: { cookie = '' } }) => cookie.split(';').map((part) => part.trim())
  .find((part) => part.startsWith(`${COOKIE}=`))?.slice(COOKIE.length + 1);

export class Callers {
  #callers = new BoundedMap(MAX_CONNECTIONS);

  /**
   * The status with which a request at a session's path is refused, or undefined. The first request that receives opens
   * the session.
   */
  refusal(request, response, path) {
    const [, place, id, sends] = SESSION_PATH.exec(path) ?? [];
    if (!id) return 404;
    const caller = this.#callers.get(id);
    if (caller) return caller.isSame(request) ? undefined : 403;
    if (sends) return 404;
    const opened = new Caller(request);
    this.#callers.set(id, opened);
    response.setHeader('set-cookie', `${COOKIE}=${opened.cookie}; Path=${place}; HttpOnly; SameSite=Strict`);
    return undefined;
  }

  /** The connection that a request at a session's path speaks for. */
  at(path) {
    return this.#callers.get(SESSION_PATH.exec(path)?.[2])?.connection;
  }

  connected(path, connection) {
    const caller = this.#callers.get(SESSION_PATH.exec(path)?.[2]);
    if (!caller) return;
    caller.connection = connection;
    connection.presenter = caller.presenter;
  }

  ended(path, connection) {
    const id = SESSION_PATH.exec(path)?.[2];
    if (this.#callers.get(id)?.connection === connection) this.#callers.delete(id);
  }
}

class Caller {
  cookie = randomUUID();
  connection = undefined;
  #address;
  #keepsCookie = false;

  constructor(request) {
    this.#address = addressOf(request);
    this.presenter = request.presenter;
  }

  isSame(request) {
    if (addressOf(request) !== this.#address) return false;
    const cookie = cookieOf(request);
    if (cookie === this.cookie) this.#keepsCookie = true;
    return cookie === this.cookie || (cookie === undefined && !this.#keepsCookie);
  }
}
