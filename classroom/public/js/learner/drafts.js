// What has been typed and not sent, by question. Kept at each stroke, and apart from the lesson, which can be too large
// to be kept: so it is offered again however the page has ended.

import { recall, remember } from '../device/storage.js';

const KEY = 'classroom.drafts';
const MOST = 20;

export class Drafts {
  #owner;
  #kept = {};

  /** Takes up what this learner has left. */
  open(owner) {
    this.#owner = owner;
    const saved = recall('sessionStorage', KEY);
    if (saved?.owner === owner) this.#kept = Object(saved.kept);
  }

  get(id) {
    return Object.hasOwn(this.#kept, id) ? this.#kept[id] : null;
  }

  /** null: there is none any more. */
  set(id, draft) {
    const { [id]: before, ...others } = this.#kept;
    const all = draft === null ? others : { ...others, [id]: draft };
    this.#kept = Object.fromEntries(Object.entries(all).slice(-MOST));
    remember('sessionStorage', KEY, { owner: this.#owner, kept: this.#kept });
  }

  forget() {
    this.#kept = {};
    remember('sessionStorage', KEY, null);
  }
}
