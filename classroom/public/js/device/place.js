// Which place in which session this browser has: {code, userName, userToken}. That of the tab outlives a reload;
// the last one of the browser is offered when the tab was closed.

import { recall, remember } from './storage.js';

export class Place {
  #key;

  constructor(mode) {
    this.#key = `classroom.place.${mode}`;
  }

  get current() {
    return recall('sessionStorage', this.#key);
  }

  get last() {
    return recall('localStorage', this.#key);
  }

  take(place) {
    remember('sessionStorage', this.#key, place);
    remember('localStorage', this.#key, place);
  }

  /** Left, to be taken again. */
  leave() {
    remember('sessionStorage', this.#key, null);
  }

  /** There is nothing to come back to: unless the browser has another place by now. */
  forget() {
    if (this.last?.userToken === this.current?.userToken) remember('localStorage', this.#key, null);
    this.leave();
  }
}
