// The assessment lesson: thirty simulated learners, each at its own pace. Each learner's answers and score, question by
// question, must be what the learner meant to answer, marked here from the lesson's own file.
//
// node assessment-lesson.mjs CALYX_PRESENTER
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { lessonFile, numberOf, run, teach } from './lesson.mjs';

const LEARNERS = 30;
const RIGHT = '\u2713';

// What the lesson's file says is right: a list of alternatives for each question, for each assessment.
function keysIn(script) {
  const assessments = [[]];
  for (const line of script.split('\n')) {
    const key = /^assessment question .*\banswer=(\S+)/.exec(line);
    if (key) assessments.at(-1).push(key[1].split('|'));
    if (line === 'assessment stop') assessments.push([]);
  }
  return assessments.filter((keys) => keys.length > 0);
}

const cellsOf = (line) => line.trim().split(/ {2,}/);

// The rows below each line that begins with "  Learner ", by the learner's name, up to a line that is no row of it.
function tablesIn(text) {
  const tables = [];
  let rows = null;
  for (const line of text.split('\n')) {
    if (/^ {2}Learner /.test(line)) tables.push(rows = new Map());
    else if (!/^ {2}\S/.test(line) || /^ {2}(Answers|\d+ learners?,) /.test(line)) rows = null;
    else rows?.set(cellsOf(line)[0], cellsOf(line).slice(1));
  }
  return tables;
}

// 4.00 is 4.
const isSame = (answer, key) => answer === key || Number(answer) === Number(key);

// The row that the host has to print for somebody who means these answers.
function expectedRow(meant, keys) {
  const marks = meant.map((answer, i) => keys[i].some((key) => isSame(answer, key)));
  const cells = meant.map((answer, i) => `${marks[i] ? RIGHT : '\u2717'} ${answer}`);
  return [`${marks.filter(Boolean).length} of ${keys.length}`, ...cells];
}

function compare(printed, meant, keys, learners) {
  assert.equal(meant.size, learners);
  assert.deepEqual([...printed.keys()].sort(), [...meant.keys()].sort());
  for (const [name, answers] of meant) {
    assert.equal(answers.length, keys.length, `${name} was not asked everything`);
    assert.deepEqual(printed.get(name), expectedRow(answers, keys), `the row of ${name}`);
  }
}

await run(async () => {
  const { lesson, learners } = await teach('assessment.lesson', LEARNERS);
  const keys = keysIn(readFileSync(lessonFile('assessment.lesson'), 'utf8'));
  const printed = tablesIn(lesson);
  const meant = tablesIn(learners);
  assert.deepEqual([keys.map(({ length }) => length), printed.length, meant.length], [[5, 2], 2, 2]);
  compare(printed[0], meant[0], keys[0], LEARNERS);
  compare(printed[1], meant[1], keys[1], 1);
  const right = [...printed[0].values()].flat().filter((cell) => cell.startsWith(RIGHT)).length;
  assert.ok(right > 0, 'nobody was right in anything: nothing has been compared');
  assert.equal(numberOf(lesson, /^ {2}30 learners, 150 answers, (\d+) of 150 right\.$/m), right);
  assert.equal(numberOf(learners, /answers=(\d+)/), LEARNERS * 5 + 2);
  console.log(`${printed[0].size} learners, ${right} right answers, all as they were meant`);
});
