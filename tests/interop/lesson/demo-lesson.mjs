// The whole demo lesson, with the programs of this build: thirty simulated learners, polls of all ten types, a card. What
// the host counts must be what the learners say they sent.
//
// node demo-lesson.mjs CALYX_PRESENTER SOURCE_FOLDER
import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import { join } from 'node:path';
import { createInterface } from 'node:readline';

const LEARNERS = 30;
const POLL_TYPES = [
  'true-false', 'yes-no-other', 'multiple', 'scale', 'sort', 'text', 'word-seed', 'number', 'creative', 'math-formula',
];

const [presenter, source] = process.argv.slice(2);
const running = new Set();

function start(command, args) {
  const child = spawn(command, args, { stdio: ['ignore', 'pipe', 'inherit'] });
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

function numberOf(text, pattern) {
  const match = pattern.exec(text);
  assert.ok(match, `${pattern} is not in:\n${text}`);
  return Number(match[1]);
}

async function teach() {
  const classroom = node('server.js', '--port', '0', '--quiet');
  const url = await listeningUrl(classroom.child);
  const learners = node('learners.js', '--url', url, '--session', 'auto', '--count', String(LEARNERS));
  const host = start(presenter, [
    '--server', url, '--user', 'teacher', '--password', 'chalk',
    '--script', join(source, 'presenter', 'lessons', 'demo.lesson'),
  ]);
  const lesson = await host.ended;
  assert.equal(lesson.code, 0, lesson.text);
  const totals = await learners.ended;
  assert.equal(totals.code, 0, totals.text);
  classroom.child.kill('SIGTERM');
  assert.equal((await classroom.ended).code, 0, 'the classroom did not end cleanly');
  return { lesson: lesson.text, learners: totals.text };
}

function check({ lesson, learners }) {
  for (const type of POLL_TYPES) {
    const row = new RegExp(`^ +\\d+ +${type} +${LEARNERS} of ${LEARNERS} `, 'm');
    assert.match(lesson, row, `not every learner's answer to the ${type} poll has arrived`);
  }
  assert.equal(numberOf(lesson, /^Total: (\d+) learners/m), LEARNERS);
  assert.equal(numberOf(learners, /joined=(\d+)/), LEARNERS);
  assert.equal(numberOf(learners, /answers=(\d+)/), numberOf(lesson, /^Total: .* (\d+) answers/m));
  assert.equal(numberOf(learners, /questions=(\d+)/), numberOf(lesson, /^Total: .* (\d+) polls/m));
  assert.equal(numberOf(learners, /cards=(\d+)/), numberOf(lesson, /^Total: .* (\d+) card/m));
  assert.equal(numberOf(learners, /decode-failures=(\d+)/), 0);
}

try {
  const told = await teach();
  check(told);
  console.log(told.learners.trim());
} finally {
  for (const child of running) child.kill('SIGKILL');
}
