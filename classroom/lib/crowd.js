import { setMaxListeners } from 'node:events';
import { Learner } from './learner.js';
import { JOINS_AT_ONCE } from './limits.js';
import { requestJson } from './rest.js';
import { tableLines } from './table.js';

const most = (learners, what) => learners.reduce((top, learner) => Math.max(top, learner[what]), 0);
const sum = (learners, what) => learners.reduce((total, learner) => total + learner[what], 0);

/** A number of learners who attend sessions together, and what came of it. */
export class Crowd {
  totals = { joined: 0, questions: 0, cards: 0, answers: 0, decodeFailures: 0 };
  refused = 0;
  lost = 0;
  // The assessments by token: {title, rows}, a row for each learner: the name, then what was meant as each answer.
  #assessments = new Map();
  #settings;

  /** settings: those of a Learner, and count. */
  constructor(settings) {
    this.#settings = settings;
  }

  get ok() {
    return this.refused === 0 && this.lost === 0 && this.totals.decodeFailures === 0;
  }

  // Questions and cards are the most that any one learner of a session got, so that the total of the
  // answers of a lesson without losses is joined times questions.
  summary() {
    const { joined, questions, cards, answers, decodeFailures } = this.totals;
    return `learners: joined=${joined} questions=${questions} cards=${cards} answers=${answers} `
      + `decode-failures=${decodeFailures}`;
  }

  /** What the learners meant to answer, as the lines of a table for each assessment. */
  meantAnswers() {
    return [...this.#assessments.values()].flatMap(({ title, rows }) => {
      const most = Math.max(...rows.map((row) => row.length)) - 1;
      const header = ['Learner', ...Array.from({ length: most }, (_, i) => `${i + 1}`)];
      return [`Meant as answers${title && ` to "${title}"`}:`, ...tableLines([header, ...rows])];
    });
  }

  /** Attends one session until all learners have left it, or until the signal makes them leave. */
  async attend(code, signal) {
    const learners = Array.from({ length: this.#settings.count }, (_, i) => new Learner(i, this.#settings));
    const leaveAll = () => learners.forEach((learner) => learner.leave());
    // Every join that is under way listens to the signal: no leak, whatever Node thinks of more than ten.
    setMaxListeners(0, signal);
    signal.addEventListener('abort', leaveAll);
    const joined = await this.#joinAll(learners, code, signal);
    this.#settings.note(`session ${code}: ${joined.length} of ${learners.length} learners joined`);
    await Promise.all(joined.map((learner) => learner.ended));
    signal.removeEventListener('abort', leaveAll);
    this.#count(joined);
  }

  async #joinAll(learners, code, signal) {
    const joined = [];
    const queue = [...learners];
    const joinSome = async () => {
      for (let learner = queue.shift(); learner && !signal.aborted; learner = queue.shift()) {
        if (await this.#joinOne(learner, code, signal)) joined.push(learner);
      }
    };
    await Promise.all(Array.from({ length: JOINS_AT_ONCE }, joinSome));
    return joined;
  }

  async #joinOne(learner, code, signal) {
    try {
      await learner.join(code, signal);
      return true;
    } catch (error) {
      learner.leave();
      if (!signal.aborted) {
        this.refused += 1;
        this.#settings.note(`${learner.userName} could not join: ${error.message}`);
      }
      return false;
    }
  }

  #count(learners) {
    this.totals.joined += learners.length;
    this.totals.questions += most(learners, 'questions');
    this.totals.cards += most(learners, 'cards');
    this.totals.answers += sum(learners, 'answers');
    this.totals.decodeFailures += sum(learners, 'decodeFailures');
    this.lost += learners.filter(({ lost }) => lost).length;
    for (const learner of learners) this.#collectMeant(learner);
  }

  #collectMeant({ userName, meant }) {
    for (const { token, title, answers } of meant) {
      const last = Math.max(0, ...answers.keys());
      const row = [userName, ...Array.from({ length: last }, (_, i) => answers.get(i + 1) ?? '-')];
      if (!this.#assessments.has(token)) this.#assessments.set(token, { title, rows: [] });
      this.#assessments.get(token).rows.push(row);
    }
  }
}

async function listSessions(url, query, signal) {
  const { status, value } = await requestJson('GET', `${url}/classroom/sessions${query}`, { signal });
  if (status !== 200) throw new Error(value.errorMsgKeys?.[0] ?? `status ${status}`);
  return value;
}

export async function findSession(url, code, signal) {
  const session = (await listSessions(url, '', signal)).find((one) => one.code === code);
  if (!session) throw new Error(`there is no session ${code}`);
  return session;
}

/** The newest session with a listening presenter and a sequence number above `since`; waits for one. */
export async function waitForSession(url, since, signal) {
  for (;;) {
    const sessions = await listSessions(url, `?wait=listening&since=${since}`, signal);
    if (sessions.length > 0) return sessions.reduce((a, b) => (b.sequence > a.sequence ? b : a));
  }
}
