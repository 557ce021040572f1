import assert from 'node:assert/strict';
import { answerPoll, answerQuestion, responseTime, seedOf } from '../lib/answers.js';
import { check } from './support/check.js';

const LEARNERS = Array.from({ length: 200 }, (_, i) => i);
const options = (...ids) => ids.map((id, i) => ({ id, optionText: '', displaySeqNumber: i + 1, math: false }));
const picked = (question) => LEARNERS.map((i) => answerQuestion(question, i).optionAnswers.map((one) => one.activityOptionId));
const written = (question) => LEARNERS.map((i) => answerQuestion(question, i).answer);

check('the same learner gives the same answer, different learners different ones', () => {
  const question = { id: 'abcd1234', type: 'multiple', activityOptions: options('A', 'B', 'C', 'D') };
  assert.deepEqual(answerQuestion(question, 3), answerQuestion(question, 3));
  assert.notDeepEqual(picked(question), picked({ ...question, id: 'efgh5678' }));
});

check('with a key of its own a question is answered alike whatever its id', () => {
  const question = { id: 'abcd1234', type: 'multiple', activityOptions: options('A', 'B', 'C', 'D') };
  const answersTo = (id, key) => Array.from({ length: 30 }, (_, index) => answerQuestion({ ...question, id }, index, key));
  assert.deepEqual(answersTo('abcd1234', 'first'), answersTo('efgh5678', 'first'));
  assert.notDeepEqual(answersTo('abcd1234', 'first'), answersTo('abcd1234', 'second'));
});

check('every option is chosen by some', () => {
  for (const type of ['true-false', 'yes-no-other', 'multiple', 'scale']) {
    for (const ids of [['A', 'B'], ['A', 'B', 'C'], ['0', '1', '2', '3', '4', '5', '6', '7', '8', '9']]) {
      const answers = picked({ id: 'q', type, activityOptions: options(...ids) });
      assert.ok(answers.every((one) => one.length === 1));
      assert.deepEqual(new Set(answers.flat()), new Set(ids), `${type} of ${ids}`);
    }
  }
});

check('as many options are picked as are correct, in their order', () => {
  const question = { id: 'q', type: 'multiple', numberOfCorrectOptions: 3, activityOptions: options('A', 'B', 'C', 'D') };
  for (const answer of picked(question)) {
    assert.equal(new Set(answer).size, 3);
    assert.deepEqual(answer, [...answer].sort());
  }
  for (const [correct, count] of [[0, 1], [-1, 1], [9, 4]]) {
    assert.ok(picked({ ...question, numberOfCorrectOptions: correct }).every((one) => one.length === count));
  }
});

check('a sort is answered with all options, in several orders', () => {
  const answers = picked({ id: 'q', type: 'sort', activityOptions: options('a', 'b', 'c') });
  assert.ok(answers.every((one) => [...one].sort().join('') === 'abc'));
  assert.ok(new Set(answers.map(String)).size > 1);
});

check('a number has the decimals that are asked for', () => {
  for (const [decimals, form] of [[0, /^\d+$/], [2, /^\d+\.\d\d$/], [-1, /^\d+$/], [50, /^\d+\.\d{6}$/], [undefined, /^\d+$/]]) {
    const answers = written({ id: 'q', type: 'number', noOfDecimals: decimals });
    assert.ok(answers.every((one) => form.test(one)), `${decimals}: ${answers[0]}`);
    assert.ok(new Set(answers).size > 5);
  }
});

check('texts go beyond ASCII and beyond the BMP, and keep to the length that is allowed', () => {
  const answers = written({ id: 'q', type: 'text', maxChars: 0 });
  assert.ok(answers.some((one) => /[^\u0000-\u007f]/.test(one)));
  assert.ok(answers.some((one) => /[\u{10000}-\u{10ffff}]/u.test(one)));
  const short = written({ id: 'q', type: 'text', maxChars: 3 });
  assert.ok(short.every((one) => one !== '' && [...one].length <= 3));
});

check('a formula is LaTeX, and a type that nobody knows is answered all the same', () => {
  assert.ok(written({ id: 'q', type: 'math formula' }).some((one) => one.includes('\\frac')));
  assert.ok(written({ id: 'q', type: 'riddle' }).every((one) => one.length > 0));
  assert.ok(picked({ id: 'q', type: 'riddle', activityOptions: options('A', 'B') }).every((one) => one.length === 1));
});

check('a question whose options were left out gets a sensible text', () => {
  for (const [type, form] of [
    ['true-false', /^(TRUE|FALSE)$/], ['yes-no-other', /^(YES|NO)$/], ['multiple', /^[A-D]$/],
    ['scale', /^[1-5]$/], ['sort', /^(AB|BA)$/],
  ]) {
    for (const activityOptions of [[], undefined]) {
      assert.ok(written({ id: 'q', type, activityOptions }).every((one) => form.test(one)), type);
    }
  }
});

check('a poll document is answered with picks where it has options, with input where it has none', () => {
  const poll = { id: 'p', type: 'word-seed', metadata: { ordinalType: 'alpha-upper', options: [0, 1, 2] } };
  const picks = LEARNERS.map((i) => answerPoll(poll, i));
  assert.ok(picks.every(({ pick, input }) => input === undefined && pick.length >= 1 && pick.length <= 2));
  assert.deepEqual(new Set(picks.flatMap(({ pick }) => pick)), new Set(['0', '1', '2']));
  assert.deepEqual(answerPoll({ ...poll, metadata: { options: [7] } }, 1), { pick: ['7'] });
  for (const metadata of [{ options: [] }, {}, undefined]) {
    const inputs = LEARNERS.map((i) => answerPoll({ id: 'p', type: 'creative', metadata }, i));
    assert.ok(inputs.every(({ pick, input }) => pick === undefined && input.length > 0));
    assert.ok(inputs.some(({ input }) => /[^\u0000-\u007f]/.test(input)));
  }
});

check('thinking takes what was asked for and a little, in few different values', () => {
  const times = LEARNERS.map((i) => responseTime(seedOf(i, 'q'), 2000));
  assert.ok(times.every((time) => time >= 2000 && time < 4000));
  assert.equal(new Set(times).size, 8);
});
