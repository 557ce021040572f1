// The whole demo lesson: thirty simulated learners, polls of all ten types, a card. What the host counts must be what the
// learners say they sent.
//
// node demo-lesson.mjs CALYX_PRESENTER
import assert from 'node:assert/strict';
import { numberOf, run, teach } from './lesson.mjs';

const LEARNERS = 30;
const POLL_TYPES = [
  'true-false', 'yes-no-other', 'multiple', 'scale', 'sort', 'text', 'word-seed', 'number', 'creative', 'math-formula',
];

await run(async () => {
  const { lesson, learners } = await teach('demo.lesson', LEARNERS);
  for (const type of POLL_TYPES) {
    const row = new RegExp(`^ +\\d+ +${type} +${LEARNERS} of ${LEARNERS} `, 'm');
    assert.match(lesson, row, `not every learner's answer to the ${type} poll has arrived`);
  }
  assert.equal(numberOf(lesson, /^Total: (\d+) learners/m), LEARNERS);
  assert.equal(numberOf(learners, /joined=(\d+)/), LEARNERS);
  assert.equal(numberOf(learners, /answers=(\d+)/), numberOf(lesson, /^Total: .* (\d+) answers/m));
  assert.equal(numberOf(learners, /questions=(\d+)/), numberOf(lesson, /^Total: .* (\d+) polls/m));
  assert.equal(numberOf(learners, /cards=(\d+)/), numberOf(lesson, /^Total: .* (\d+) card/m));
  console.log(learners.trim());
});
