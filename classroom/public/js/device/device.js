import { Codec } from '../codec/codec.js';
import { Refused, join } from './service.js';

const { EventBus } = globalThis;

const PING_MS = 60000;
const FIRST_RETRY_MS = 500;
const LAST_RETRY_MS = 8000;
// A bus is to open, and whatever is sent is followed by a message to itself. When nothing comes back for so long, the link is dead, whatever the
// browser thinks of it.
const SILENCE_MS = 10000;
const CLOSED_WITH_SESSION = 3001;
const SESSION_IS_OVER = ['session.error.unknownCode', 'session.error.notStarted'];

/**
 * One device of a session on the event bus. A dropped connection is made again, under the same token, until the
 * session ends, the device is sent away, or it leaves.
 */
export class Device {
  // Tells this page from another one that has taken the same place.
  #page = crypto.getRandomValues(new Uint32Array(2)).join('-');
  #codec = new Codec();
  #settings;
  #profile;
  #token;
  #bus = null;
  #tries = 0;
  #timer;
  #silence;
  // The bus is open, and has registered the addresses.
  #isIn = false;
  #over = false;
  #receiving = Promise.resolve();
  #sending = Promise.resolve();

  /**
   * settings: mode; addresses, what to listen at beside the session's and the own one (".learner"); handlers, a
   * function (value, isMine) by message type; onState(state, reason), with the states "open" (the addresses are
   * registered), "lost" and "over" and the reasons "stopped", "removed" and "elsewhere".
   */
  constructor(settings) {
    this.#settings = settings;
    addEventListener('online', () => this.#retryNow());
  }

  get connected() {
    return this.#bus?.state === EventBus.OPEN;
  }

  /** Joins with {code, userName, userToken}; resolves with the place taken. Rejects when the service refuses. */
  async join({ code, userName, userToken }) {
    const { mode, deviceType } = this.#settings;
    this.#profile = { sessionCode: code, userName, userToken, mode, deviceName: 'browser', deviceType };
    await this.#rejoin();
    return { code, userName, userToken: this.#profile.userToken };
  }

  /** Sends to the presenter; resolves with whether it has gone out. */
  publish(type, value) {
    const sent = this.#sending.then(async () => {
      const data = await this.#codec.encode(value);
      if (!this.connected) return false;
      this.#bus.publish(`${this.#token}.presenter`, { from: this.#profile.userToken, type, data });
      this.#callBack(this.#bus);
      return true;
    }).catch((error) => {
      console.warn(`A "${type}" cannot be sent:`, error.message);
      return false;
    });
    this.#sending = sent;
    return sent;
  }

  leave() {
    this.#over = true;
    clearTimeout(this.#timer);
    this.#heard();
    if ([EventBus.CONNECTING, EventBus.OPEN].includes(this.#bus?.state)) this.#bus.close();
  }

  async #rejoin() {
    const { userToken, sessionToken } = await join(this.#profile);
    if (this.#over) return;
    this.#profile.userToken = userToken;
    this.#token = sessionToken;
    this.#open();
  }

  #open() {
    const bus = new EventBus(`${location.origin}/eventbus`, { vertxbus_ping_interval: PING_MS });
    this.#bus = bus;
    this.#isIn = false;
    this.#silence = setTimeout(() => bus.close(), SILENCE_MS);
    bus.onopen = () => this.#opened(bus);
    bus.onclose = ({ code }) => this.#closed(code);
    bus.onerror = (error) => console.warn('The bus reports', error);
  }

  #opened(bus) {
    const own = this.#own;
    const others = this.#settings.addresses.map((address) => this.#token + address);
    for (const address of [this.#token, ...others, own]) {
      bus.registerHandler(address, (error, message) => {
        if (!error && bus === this.#bus) this.#receive(message.body, address === own);
      });
    }
    this.#callBack(bus);
  }

  get #own() {
    return `${this.#token}.user.${this.#profile.userToken}`;
  }

  // A device may talk to itself: what comes back has followed all that was sent before.
  #callBack(bus) {
    bus.publish(this.#own, { type: 'here', page: this.#page });
    this.#silence ??= setTimeout(() => bus.close(), SILENCE_MS);
  }

  #heard() {
    clearTimeout(this.#silence);
    this.#silence = undefined;
  }

  // One after the other, although each is decoded elsewhere: a "pollStop" never overtakes its question.
  #receive(body, isMine) {
    this.#heard();
    if (body?.type === 'here' && isMine) {
      if (body.page === this.#page) this.#registered();
      else this.#end('elsewhere');
    } else if (body?.type === 'disconnect') {
      this.#receiving = this.#receiving.then(() => this.#end(isMine ? 'removed' : 'stopped'));
    } else if (Object.hasOwn(this.#settings.handlers, body?.type)) {
      this.#receiving = this.#receiving.then(() => this.#handle(body, isMine));
    }
  }

  #registered() {
    if (this.#isIn || this.#over) return;
    this.#isIn = true;
    this.#tries = 0;
    this.#settings.onState('open');
  }

  async #handle({ type, data }, isMine) {
    try {
      const value = await this.#codec.decode(data);
      if (!this.#over) this.#settings.handlers[type](value, isMine);
    } catch (error) {
      console.warn(`A "${type}" cannot be read:`, error.message);
    }
  }

  #closed(code) {
    this.#heard();
    if (this.#over) return;
    if (code === CLOSED_WITH_SESSION) {
      this.#receiving.then(() => this.#end('stopped'));
      return;
    }
    this.#settings.onState('lost');
    this.#retryLater();
  }

  #retryLater() {
    const pause = Math.min(FIRST_RETRY_MS * 2 ** this.#tries, LAST_RETRY_MS);
    this.#tries += 1;
    // Not all at once, when a whole class has lost its connection.
    this.#timer = setTimeout(() => this.#retry(), pause * (0.75 + Math.random() / 2));
  }

  #retryNow() {
    if (this.#over || this.#timer === undefined) return;
    clearTimeout(this.#timer);
    this.#retry();
  }

  async #retry() {
    this.#timer = undefined;
    try {
      await this.#rejoin();
    } catch (error) {
      if (this.#over) return;
      if (error instanceof Refused && SESSION_IS_OVER.includes(error.key)) this.#end('stopped');
      else this.#retryLater();
    }
  }

  #end(reason) {
    if (this.#over) return;
    this.leave();
    this.#settings.onState('over', reason);
  }
}
