import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import { existsSync } from 'node:fs';
import { createInterface } from 'node:readline';
import { fileURLToPath } from 'node:url';
import { startClassroom } from '../../test/support/classroom.js';
import { joinPage } from './class.js';

/** calyx-presenter. */
export const PROGRAM = process.env.CALYX_PRESENTER
  ?? fileURLToPath(new URL('../../../build/dev/presenter/calyx-presenter', import.meta.url));

// As long as a slow machine may take for whatever a lesson waits for.
const WAIT_SECONDS = 240;

const BAR = /^ {2}(\S.*?) {2,}.*?(\d+) +\d+ %$/u;

/** calyx-presenter as a child process with a live session: a host with the real library. */
export class RealHost {
  lines = [];
  #child;
  #ended;
  #wake = () => {};
  #commands = 0;

  static async open(t, url) {
    const host = new RealHost(t, url);
    await host.do('login');
    await host.do('session start');
    await host.do(`set wait-limit ${WAIT_SECONDS}`);
    const started = await host.line(/^Session ([\d ]+) is live/);
    host.code = started[1].replaceAll(' ', '');
    return host;
  }

  constructor(t, url) {
    assert.ok(existsSync(PROGRAM), `${PROGRAM} is not there: build it, or name it in CALYX_PRESENTER`);
    const env = { ...process.env, LC_ALL: 'C.UTF-8', CALYX_PASSWORD: 'chalk', no_proxy: '127.0.0.1' };
    this.#child = spawn(PROGRAM, ['--server', url, '--user', 'teacher'], { env, stdio: 'pipe' });
    this.#child.stdin.on('error', () => {});
    for (const output of [this.#child.stdout, this.#child.stderr]) {
      createInterface({ input: output }).on('line', (line) => this.#add(line));
    }
    this.#ended = once(this.#child, 'close').then(([code]) => {
      this.#add(`(ended with ${code})`);
      return code;
    });
    t.after(async () => {
      this.#child.kill('SIGKILL');
      await this.#ended;
    });
  }

  /** Types a command, and resolves with the lines that were printed until it was done; a failed one ends the host. */
  async do(command) {
    const from = this.lines.length;
    const mark = `done: ${this.#commands += 1}`;
    this.type(command);
    this.type(`say ${mark}`);
    await this.#until(() => this.lines.includes(mark), command);
    return this.lines.slice(from);
  }

  type(command) {
    this.#child.stdin.write(`${command}\n`);
  }

  /** The match of the first line that fits, which may have been printed before; or of the one that fits the n-th time. */
  async line(pattern, n = 1) {
    const matches = () => this.lines.map((line) => pattern.exec(line)).filter(Boolean);
    await this.#until(() => matches().length >= n, String(pattern));
    return matches()[n - 1];
  }

  /** Stops the poll; resolves with what was counted, {label: count}. */
  async stopPoll() {
    const bars = (await this.do('poll stop')).map((line) => BAR.exec(line)).filter(Boolean);
    return Object.fromEntries(bars.map(([, label, count]) => [label, Number(count)]));
  }

  /** Ends the lesson; asserts that all of it went well. */
  async finish() {
    this.type('quit');
    assert.equal(await this.#ended, 0, this.lines.join('\n'));
  }

  #add(line) {
    this.lines.push(line);
    this.#wake();
  }

  async #until(isThere, what) {
    while (!isThere()) {
      assert.equal(this.#child.exitCode, null, `${what} did not come to pass:\n${this.lines.join('\n')}`);
      await new Promise((resolve) => { this.#wake = resolve; });
    }
  }
}

/** A classroom in which the host with the real library has a live session: {url, host}. */
export async function teachWithLibrary(t) {
  const { url } = await startClassroom(t);
  return { url, host: await RealHost.open(t, url) };
}

/** A learner's page in it, whom the host has seen join. */
export async function learnerOf(t, { url, host }, { name = 'Ann', ...options } = {}) {
  const { page } = await joinPage(t, url, host.code, { name, ...options });
  await host.do('wait learners 1');
  return page;
}
