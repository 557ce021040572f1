// The programs of this tree as child processes: the classroom, its learners, a host. All are gone when the test is.
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import { fileURLToPath } from 'node:url';

export const SOURCE = fileURLToPath(new URL('../../../', import.meta.url));
const PROXY_VARIABLE = /^(https?|all|no)_proxy$/i;

const running = new Set();
// Loopback only: a proxy of the machine's must not stand in between.
const environment = Object.fromEntries(Object.entries(process.env).filter(([name]) => !PROXY_VARIABLE.test(name)));
// The library's diagnostics are not what is looked at.
environment.QT_LOGGING_RULES = 'default.debug=false';

export class Program {
  output = '';
  #waiting = new Set();

  constructor(command, args) {
    this.child = spawn(command, args, { stdio: ['pipe', 'pipe', 'inherit'], env: environment });
    running.add(this.child);
    this.child.stdout.setEncoding('utf8').on('data', (text) => {
      this.output += text;
      for (const look of this.#waiting) look();
    });
    this.ended = once(this.child, 'close').then(([code]) => {
      running.delete(this.child);
      return code;
    });
  }

  /** The match of the pattern in the output; waits for it. */
  async says(pattern) {
    const match = () => pattern.exec(this.output);
    const found = new Promise((resolve) => {
      const look = () => match() && resolve();
      this.#waiting.add(look);
      look();
    });
    await Promise.race([found, this.ended]);
    if (!match()) throw new Error(`${pattern} was not said:\n${this.output}`);
    return match();
  }

  async succeeds() {
    const code = await this.ended;
    if (code !== 0) throw new Error(`${this.child.spawnfile} ended with ${code}:\n${this.output}`);
  }
}

export const runNode = (script, ...args) => new Program(process.execPath, [`${SOURCE}${script}`, ...args]);

/** A classroom that listens: [program, url]. */
export async function startClassroom(...args) {
  const classroom = runNode('classroom/server.js', '--port', '0', '--quiet', ...args);
  const [, url] = await classroom.says(/^listening (\S+)$/m);
  return [classroom, url];
}

export const startLearners = (url, count, ...args) =>
  runNode('classroom/learners.js', '--url', url, '--session', 'auto', '--count', String(count), ...args);

/** Runs a test; whatever it has started ends with it. */
export async function withPrograms(test) {
  try {
    await test();
  } finally {
    for (const child of running) child.kill('SIGKILL');
  }
}
