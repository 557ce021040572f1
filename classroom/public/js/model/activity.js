import { priorAnswer } from './answer.js';
import { Stopwatch } from './stopwatch.js';

/** A question or a poll on the page: its document, and what the learner has made of it so far. */
export class Activity {
  sending = false;
  // The last answer could not be sent.
  failed = false;
  // An answer that has gone out is being changed.
  changing = false;
  closed = false;

  constructor({ kind, document, number = 0, draft = null, answer = null, closed = false, watch }, now) {
    Object.assign(this, { kind, document, number, draft, answer, closed, watch: new Stopwatch(now, watch) });
    this.answer = priorAnswer(this) ?? answer;
    this.wasAnsweredBefore = priorAnswer(this) !== null;
  }

  get id() {
    return this.document.id;
  }

  isSameAs(other) {
    return other !== null && other !== undefined && this.kind === other.kind && this.id === other.id;
  }

  toJSON() {
    const { kind, document, number, draft, answer, closed, watch } = this;
    return { kind, document, number, draft, answer, closed, watch: watch.toJSON() };
  }
}
