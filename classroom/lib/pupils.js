import { Learner } from './learner.js';

/** Simulated learners of one classroom who join, answer and leave when they are told to. */
export class Pupils {
  #learners = [];
  #count = 0;
  #wake = new Set();
  #settings;

  /** settings: those of a Learner; where answerAfter is not given, they answer when told. */
  constructor(settings) {
    const { answerAfter } = settings;
    this.#settings = {
      ...settings, reconnect: true, waits: answerAfter === undefined, changed: () => this.#wakeAll(),
    };
  }

  /** One after the other, so that hosts hear of them in that order. Rejects at the first who cannot join. */
  async join(count, code, signal) {
    for (let joined = 0; joined < count; joined += 1) await this.#joinOne(new Learner(this.#count++, this.#settings), code, signal);
  }

  /** Everybody, or the first `count`, who has not answered yet does; waits for those who have not been asked. */
  async answer(count, text, msecs) {
    await this.#until(() => this.#open(count) !== null, msecs, 'no question is before them');
    const answering = this.#open(count);
    for (const learner of answering) learner.answer(text);
    return answering.length;
  }

  /** Resolves when nobody has a question before him. */
  async idle(msecs) {
    await this.#until(() => !this.#learners.some(({ hasQuestion }) => hasQuestion), msecs, 'learners still have a question before them');
  }

  /** The last `count` of them leave, or all. */
  leave(count = this.#learners.length) {
    const leaving = this.#learners.slice(Math.max(this.#learners.length - count, 0));
    for (const learner of leaving) learner.leave();
    return leaving.length;
  }

  async #joinOne(learner, code, signal) {
    try {
      await learner.join(code, signal);
    } catch (error) {
      learner.leave();
      throw error;
    }
    this.#learners.push(learner);
    learner.ended.then(() => this.#learners.splice(this.#learners.indexOf(learner), 1));
  }

  /** Those who are to answer; null while somebody has not got the question that others have got last. */
  #open(count) {
    const newest = this.#learners.reduce((a, b) => (b.askedAt > a.askedAt ? b : a), { askedAt: 0 });
    const isBehind = ({ isAsked, hasFinished, askedId }) => !isAsked && !hasFinished && askedId !== newest.askedId;
    const open = this.#learners.filter((learner) => learner.isAsked);
    return open.length >= (count ?? 1) && !this.#learners.some(isBehind) ? open.slice(0, count) : null;
  }

  #wakeAll() {
    this.#wake.forEach((wake) => wake());
  }

  async #until(condition, msecs, complaint) {
    const end = AbortSignal.timeout(msecs);
    while (!condition()) {
      if (end.aborted) throw new Error(complaint);
      await this.#woken(end);
    }
  }

  #woken(signal) {
    return new Promise((resolve) => {
      const wake = () => {
        this.#wake.delete(wake);
        signal.removeEventListener('abort', wake);
        resolve();
      };
      this.#wake.add(wake);
      signal.addEventListener('abort', wake);
    });
  }
}
