// The classroom by command: a line says what to do, and is answered with one line when that is done.

import { setMaxListeners } from 'node:events';
import { createInterface } from 'node:readline';
import { Pupils } from './pupils.js';

// How long a command waits for what it needs of the host: a session, a question.
const PATIENCE_MS = 30000;
const MAX_LEARNERS = 10000;

export const COMMANDS = `Commands, each on a line; each is answered by one line, "ok" or "error" and more, when it is done:

  join N [CODE]              N simulated learners join: the session of that code, else the newest
                             whose presenter is on the bus; one is waited for
  answer [by N] [TEXT]       those who have a question before them answer it, or the first N of
                             them: with TEXT (options by their ids, several as "A,C"), else as they
                             like. Those whose question is still on its way are waited for
  idle                       waits until no question is before anybody: what some have not answered
                             is still theirs until the stop has come
  leave [N]                  the last N learners leave, or all
  refuse [KEY]               every request is refused, with KEY as the reason, and so is the bus
  stall                      nothing is read and nothing is sent: connections stay open, and silent
  cut                        all connections are cut; new ones can be made
  down                       all connections are cut, and nobody is there any more
  mend                       the end of refuse, stall and down
  forget                     all sessions are forgotten, and their connections cut
  logout                     all logins are forgotten
`;

class CommandError extends Error {}

function learnersIn(text = 'nothing') {
  if (!/^\d+$/.test(text) || Number(text) < 1 || Number(text) > MAX_LEARNERS) {
    throw new CommandError(`not a number from 1 to ${MAX_LEARNERS}: ${text}`);
  }
  return Number(text);
}

/** Carries out commands on a classroom, one after the other. */
export class Commands {
  #classroom;
  #pupils;
  #table = new Map(Object.entries({
    join: { most: 2, run: (count, code) => this.#join(count, code) },
    answer: { most: Infinity, run: (...words) => this.#answer(words) },
    idle: { most: 0, run: () => this.#pupils.idle(PATIENCE_MS) },
    leave: { most: 1, run: (count) => `${this.#pupils.leave(count && learnersIn(count))} learners` },
    refuse: { most: 1, run: (key) => this.#refuse(key) },
    stall: { most: 0, run: () => this.#classroom.faults.stall() },
    cut: { most: 0, run: () => this.#classroom.faults.cut() },
    down: { most: 0, run: () => this.#classroom.faults.goDown() },
    mend: { most: 0, run: () => this.#classroom.faults.mend() },
    forget: { most: 0, run: () => this.#forget() },
    logout: { most: 0, run: () => this.#classroom.logins.clear() },
  }));

  /** learners: the settings of their Learner, the url among them. */
  constructor(classroom, learners) {
    this.#classroom = classroom;
    this.#pupils = new Pupils(learners);
  }

  /** The answer to a line, as a line. */
  async obey(line) {
    const [name, ...words] = line.trim().split(/\s+/);
    const command = this.#table.get(name);
    if (!command) return `error unknown command: ${name}`;
    if (words.length > command.most) return `error too much after ${name}: ${words.slice(command.most).join(' ')}`;
    try {
      const said = await command.run(...words);
      return said === undefined ? 'ok' : `ok ${said}`;
    } catch (error) {
      return `error ${error.message}`.replace(/\s+/g, ' ');
    }
  }

  /** Obeys the lines of a stream until it ends. */
  async obeyAll(input, output) {
    for await (const line of createInterface({ input })) {
      if (line.trim() !== '') output.write(`${await this.obey(line)}\n`);
    }
  }

  async #join(count, code) {
    const learners = learnersIn(count);
    const signal = AbortSignal.timeout(PATIENCE_MS);
    setMaxListeners(0, signal);
    await this.#pupils.join(learners, code ?? await this.#sessionCode(signal), signal);
    return `${learners} learners`;
  }

  #sessionCode(signal) {
    const { sessions } = this.#classroom;
    const newest = () => sessions.list().filter(({ listening }) => listening)
      .reduce((a, b) => (a && a.sequence > b.sequence ? a : b), undefined)?.code;
    return new Promise((resolve, reject) => {
      const look = () => {
        if (newest() === undefined) return;
        sessions.off('listening', look);
        resolve(newest());
      };
      sessions.on('listening', look);
      signal.addEventListener('abort', () => {
        sessions.off('listening', look);
        reject(new CommandError('nobody holds a lesson'));
      });
      look();
    });
  }

  async #answer(words) {
    const [by, count, ...rest] = words;
    const [learners, text] = by === 'by' ? [learnersIn(count), rest] : [undefined, words];
    const said = text.length > 0 ? text.join(' ') : undefined;
    return `${await this.#pupils.answer(learners, said, PATIENCE_MS)} learners`;
  }

  #refuse(key = 'service.error.unavailable') {
    if (!key.includes('error')) throw new CommandError(`a key of a refusal has "error" in it: ${key}`);
    this.#classroom.faults.refuse(key);
  }

  #forget() {
    this.#classroom.sessions.clear();
    this.#classroom.faults.cut();
  }
}
