import { randomUUID } from 'node:crypto';
import { readFileSync } from 'node:fs';
import { BoundedMap } from './bounded.js';
import { Refusal } from './envelope.js';
import { MAX_DEVICE_TOKENS, MAX_REGISTRATIONS, MAX_USERS_REGISTERED } from './limits.js';

const DEMO_FILE = new URL('../demo-accounts.json', import.meta.url);

export const NO_ACCOUNTS = { users: [], oauth: [] };

export function demoAccounts() {
  return JSON.parse(readFileSync(DEMO_FILE, 'utf8'));
}

const pair = (first, second) => JSON.stringify([first, second]);

/** Who may log in, and with what: passwords, device access tokens, and codes of OAuth providers. */
export class Accounts {
  #passwords = new Map();
  #identities = new Map();
  #registered = new Set();
  #deviceTokens = new BoundedMap(MAX_DEVICE_TOKENS);
  #registrations = new BoundedMap(MAX_REGISTRATIONS);

  constructor({ users, oauth }, extraUsers = []) {
    for (const { userId, password } of [...users, ...extraUsers]) this.#passwords.set(userId, password);
    for (const identity of oauth) this.#identities.set(pair(identity.provider, identity.code), { ...identity });
  }

  checkPassword(userId, password) {
    if (this.#passwords.get(userId) !== password) throw new Refusal(403, 'login.error.badCredentials');
  }

  /** A device has one token for each user; asking again replaces it. */
  issueDeviceToken(userId, deviceId) {
    const token = randomUUID();
    this.#deviceTokens.set(pair(userId, deviceId), token);
    return token;
  }

  checkDeviceToken(userId, deviceId, token) {
    if (this.#deviceTokens.get(pair(userId, deviceId)) !== token) {
      throw new Refusal(403, 'login.error.badDeviceAccessToken');
    }
  }

  /** The user behind a provider's code: {userId} when known here, {registration} when not yet. */
  identify(provider, code) {
    const identity = this.#identities.get(pair(provider, code));
    if (!identity) throw new Refusal(403, 'login.oauth.error.badCode');
    return identity.userId ? { userId: identity.userId } : { registration: this.#askToRegister(identity) };
  }

  // The last member has to be a string: clients add their "sourceSystem" after the last double quote.
  #askToRegister(identity) {
    const registrationToken = randomUUID();
    this.#registrations.set(registrationToken, identity);
    return { provider: identity.provider, registrationToken, userId: identity.suggestedUserId };
  }

  register(registrationToken, provider, userId) {
    const identity = this.#registrations.get(registrationToken);
    if (!identity || identity.provider !== provider) throw new Refusal(403, 'register.error.badToken');
    if (this.#passwords.has(userId) || this.#registered.has(userId)) {
      throw new Refusal(409, 'register.error.userIdTaken');
    }
    if (this.#registered.size >= MAX_USERS_REGISTERED) throw new Refusal(429, 'register.error.tooMany');
    this.#registrations.delete(registrationToken);
    this.#registered.add(userId);
    identity.userId = userId;
  }
}
