// Teaches a whole lesson with the programs of this build: the classroom, simulated learners, the host.
import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import { join } from 'node:path';
import { createInterface } from 'node:readline';
import { pathToFileURL } from 'node:url';

const [presenter, source] = process.argv.slice(2);
const running = new Set();

function start(command, args) {
  // Wide enough for any table, and without colours.
  const env = { ...process.env, COLUMNS: '200', NO_COLOR: '1', LC_ALL: 'C.UTF-8', LANGUAGE: '' };
  const child = spawn(command, args, { stdio: ['ignore', 'pipe', 'inherit'], env });
  running.add(child);
  const output = { text: '' };
  child.stdout.setEncoding('utf8').on('data', (text) => (output.text += text));
  const ended = once(child, 'close').then(([code]) => {
    running.delete(child);
    return { code, text: output.text };
  });
  return { child, ended };
}

const node = (script, ...args) => start(process.execPath, [join(source, 'classroom', script), ...args]);

async function listeningUrl(child) {
  for await (const line of createInterface({ input: child.stdout })) {
    const match = /^listening (\S+)$/.exec(line);
    if (match) return match[1];
  }
  throw new Error('the classroom ended before it listened');
}

/** A module of the classroom. */
export const classroomModule = (name) => import(pathToFileURL(join(source, 'classroom', 'lib', name)));

export const lessonFile = (name) => join(source, 'presenter', 'lessons', name);

export function numberOf(text, pattern) {
  const match = pattern.exec(text);
  assert.ok(match, `${pattern} is not in:\n${text}`);
  return Number(match[1]);
}

/**
 * Teaches the lesson of that name to so many learners. What the host and the learners have printed, once all have ended
 * well. watch(url), if any, is waited for before the learners come; what it resolves with is called after the lesson,
 * while the classroom is still there.
 */
export async function teach(name, count, watch = async () => () => {}) {
  const classroom = node('server.js', '--port', '0', '--quiet');
  const url = await listeningUrl(classroom.child);
  const host = start(presenter, [
    '--server', url, '--user', 'teacher', '--password', 'chalk', '--script', lessonFile(name),
  ]);
  const endedEarly = host.ended.then(({ text }) => assert.fail(`the host has ended already:\n${text}`));
  const conclude = await Promise.race([watch(url), endedEarly]);
  const learners = node('learners.js', '--url', url, '--session', 'auto', '--count', String(count));
  const lesson = await host.ended;
  assert.equal(lesson.code, 0, lesson.text);
  const totals = await learners.ended;
  assert.equal(totals.code, 0, totals.text);
  await conclude();
  classroom.child.kill('SIGTERM');
  assert.equal((await classroom.ended).code, 0, 'the classroom did not end cleanly');
  return { lesson: lesson.text, learners: totals.text };
}

/** Runs the test, and leaves nothing behind. */
export async function run(test) {
  try {
    await test();
  } finally {
    for (const child of running) child.kill('SIGKILL');
  }
}
