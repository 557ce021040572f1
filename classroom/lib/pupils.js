import { Learner } from './learner.js';
import { JOINS_AT_ONCE } from './limits.js';

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
      ...settings, reconnect: true, waits: answerAfter === undefined, asked: () => this.#wakeAll(),
    };
  }

  /** Rejects with the first reason for which one of them could not join; the others have joined. */
  async join(count, code, signal) {
    const queue = Array.from({ length: count }, () => new Learner(this.#count++, this.#settings));
    const failures = [];
    const joinSome = async () => {
      for (let learner = queue.shift(); learner; learner = queue.shift()) {
        await this.#joinOne(learner, code, signal).catch((error) => failures.push(error));
      }
    };
    await Promise.all(Array.from({ length: JOINS_AT_ONCE }, joinSome));
    if (failures.length > 0) throw failures[0];
  }

  /** Everybody, or the first `count`, who has not answered yet does; waits for those who have not been asked. */
  async answer(count, text, msecs) {
    await this.#until(() => this.#open(count) !== null, msecs, 'no question is before them');
    const answering = this.#open(count);
    for (const learner of answering) learner.answer(text);
    return answering.length;
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
    const open = this.#learners.filter((learner) => learner.isAsked);
    if (count !== undefined) return open.length >= count ? open.slice(0, count) : null;
    const isBehind = (learner) => !learner.isAsked && learner.askedId !== newest.askedId;
    return open.length > 0 && !this.#learners.some(isBehind) ? open : null;
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
