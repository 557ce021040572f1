import { randomInt, randomUUID } from 'node:crypto';
import { EventEmitter } from 'node:events';
import { Refusal } from './envelope.js';
import { EXPECTED_MS, MAX_EXPECTED_USERS, MAX_SESSIONS, MAX_USERS_PER_SESSION } from './limits.js';

export const MODES = ['learner', 'presenter', 'controller'];

/** One classroom session: known by its code from creation, by its token once started. */
class Session {
  token = null;
  // The login that it belongs to, {id, userId, from}, and the network address from which it was started last.
  owner;
  startedFrom = undefined;
  sequence = 0;
  users = new Map();
  // The bus connections that have registered one of the session's addresses; kept by the bus.
  connections = new Set();
  // Those of them at which a presenter hears its learners; kept by the bus too.
  presenters = new Set();
  // Who has joined, and has not been on the bus yet: the users with their time.
  #expected = new Map();
  #now;

  constructor(code, owner, now) {
    this.code = code;
    this.owner = owner;
    this.#now = now;
  }

  get started() {
    return this.token !== null;
  }

  get listening() {
    return this.presenters.size > 0;
  }

  present() {
    const since = this.#now() - EXPECTED_MS;
    return [...this.users.values()].filter((user) => !user.left && !(this.#expected.get(user) < since));
  }

  /** A user is on the bus. */
  came(user) {
    this.#expected.delete(user);
    user.left = false;
  }

  /** A device that names the token it was given before comes back as the user that it was. */
  join({ userToken, userName, mode, deviceName, deviceType }) {
    const known = this.users.get(userToken);
    if (known?.mode === mode) return Object.assign(known, { userName, deviceName, deviceType, left: false });
    this.#forgetExpected();
    if (this.users.size >= MAX_USERS_PER_SESSION) throw new Refusal(429, 'session.error.full');
    const user = { token: randomUUID(), userName, mode, deviceName, deviceType, left: false };
    this.users.set(user.token, user);
    if (mode !== 'presenter') this.#expected.set(user, this.#now());
    return user;
  }

  // Anybody with the code can join any number of times: those who never come to the bus take nobody's place.
  #forgetExpected() {
    if (this.#expected.size < MAX_EXPECTED_USERS && this.users.size < MAX_USERS_PER_SESSION) return;
    const [oldest] = this.#expected.keys();
    if (!oldest) return;
    this.#expected.delete(oldest);
    this.users.delete(oldest.token);
  }

  summary() {
    const users = Object.fromEntries(MODES.map((mode) => [mode, 0]));
    for (const { mode } of this.present()) users[mode] += 1;
    const { code, started, listening, sequence } = this;
    return { code, started, listening, sequence, users };
  }
}

/** All live sessions. Emits "started", "listening" (a presenter on the bus) and "stopped", each with the session. */
export class Sessions extends EventEmitter {
  #byCode = new Map();
  #byToken = new Map();
  #sequence = 0;
  #logins;
  #now;

  constructor(logins, now = Date.now) {
    super();
    this.#logins = logins;
    this.#now = now;
    this.setMaxListeners(0);
  }

  /** owner: a login. */
  create(owner) {
    this.#makeRoom();
    let code;
    do code = String(randomInt(100000, 1000000)); while (this.#byCode.has(code));
    const session = new Session(code, owner, this.#now);
    this.#byCode.set(code, session);
    return session;
  }

  // A host that goes away leaves its session behind. The first to make room is one that was never
  // started (nothing can stop such a one), then a started one that nobody is connected to.
  #makeRoom() {
    if (this.#byCode.size < MAX_SESSIONS) return;
    const all = [...this.#byCode.values()];
    const idle = all.find((session) => !session.started) ?? all.find((session) => session.connections.size === 0);
    if (!idle) throw new Refusal(429, 'session.error.tooMany');
    this.#remove(idle);
  }

  /** Starting a started session again gives the same token: a host may rejoin its own lesson. */
  start(code, login) {
    const session = this.byCode(code);
    this.#own(session, login);
    session.startedFrom = login.from;
    if (session.started) return session;
    session.token = randomUUID();
    session.sequence = ++this.#sequence;
    this.#byToken.set(session.token, session);
    this.emit('started', session);
    return session;
  }

  addPresenter(session, connection) {
    session.presenters.add(connection);
    connection.presents.add(session);
    this.emit('listening', session);
  }

  removePresenter(session, connection) {
    session.presenters.delete(connection);
    connection.presents.delete(session);
  }

  /** The session of a token, for the login that it belongs to. */
  owned(token, login) {
    const session = this.byToken(token);
    this.#own(session, login);
    return session;
  }

  // A session belongs to one login. Another one of the same teacher takes it over where that one is over, or holds no lesson
  // in it (its host has died, say), or is on the same machine.
  #own(session, login) {
    const { owner } = session;
    if (owner.userId !== login.userId) throw new Refusal(403, 'session.error.notOwner');
    const isHeld = session.listening && this.#logins.isOpen(owner.id) && owner.from !== login.from;
    if (isHeld && owner.id !== login.id) throw new Refusal(403, 'session.error.otherLogin');
    session.owner = login;
  }

  stop(token, login) {
    this.#remove(this.owned(token, login));
  }

  #remove(session) {
    this.#byCode.delete(session.code);
    if (!session.started) return;
    this.#byToken.delete(session.token);
    this.emit('stopped', session);
  }

  /** Knows none of them any more, without a word to anybody. */
  clear() {
    this.#byCode.clear();
    this.#byToken.clear();
  }

  byCode(code) {
    const session = this.#byCode.get(code);
    if (!session) throw new Refusal(404, 'session.error.unknownCode');
    return session;
  }

  byToken(token) {
    const session = this.#byToken.get(token);
    if (!session) throw new Refusal(404, 'session.error.unknownSession');
    return session;
  }

  /** The live session that a bus address belongs to: its token, or its token, a point and more. */
  owning(address) {
    const point = address.indexOf('.');
    return this.#byToken.get(point < 0 ? address : address.slice(0, point));
  }

  list() {
    return [...this.#byCode.values()].map((session) => session.summary());
  }
}
