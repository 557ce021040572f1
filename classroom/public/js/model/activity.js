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

  // sent: the last answer as it went out, {type, value}. wasAnsweredBefore is known of one that was kept; of one that comes its document tells.
  constructor({ kind, document, number = 0, draft = null, answer = null, sent = null, closed = false, closesAt, watch, wasAnsweredBefore }, now) {
    Object.assign(this, { kind, document, number, draft, answer, sent, closed, closesAt, watch: new Stopwatch(now, watch), wasAnsweredBefore });
    if (wasAnsweredBefore !== undefined) return;
    const prior = priorAnswer(this);
    this.answer = prior ?? answer;
    this.wasAnsweredBefore = prior !== null;
  }

  get id() {
    return this.document.id;
  }

  isSameAs(other) {
    return other !== null && other !== undefined && this.kind === other.kind && this.id === other.id;
  }

  toJSON() {
    const { kind, document, number, draft, answer, sent, closed, closesAt, watch, wasAnsweredBefore } = this;
    return { kind, document, number, draft, answer, sent, closed, closesAt, watch: watch.toJSON(), wasAnsweredBefore };
  }
}
