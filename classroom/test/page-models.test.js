import assert from 'node:assert/strict';
import { Activity } from '../public/js/model/activity.js';
import { inWords, responseTo } from '../public/js/model/answer.js';
import { feedbackOf } from '../public/js/model/feedback.js';
import { parseLatex, partsOf } from '../public/js/model/latex.js';
import { decimalsOf, readNumber } from '../public/js/model/number.js';
import { nameOf, optionsOf } from '../public/js/model/options.js';
import { cardPictures, pictureAddress } from '../public/js/model/picture.js';
import { promptFor } from '../public/js/model/prompts.js';
import { Stopwatch } from '../public/js/model/stopwatch.js';
import { check } from './support/check.js';

const options = (...ids) => ids.map((id, i) => ({ id, optionText: '', displaySeqNumber: i + 1 }));
const texts = (pairs) => Object.entries(pairs).map(([id, optionText], i) => ({ id, optionText, displaySeqNumber: i + 1 }));
const question = (document) => new Activity({ kind: 'question', document: { id: 'q', ...document } }, () => 0);
const poll = (document) => new Activity({ kind: 'poll', document: { id: 'p', ...document } }, () => 0);
const labels = (activity) => optionsOf(activity).map(nameOf);
const scheme = (ordinalType, ...ids) => labels(question({
  type: 'scale', activityOptions: options(...ids), metadata: { ordinalType },
}));

// --- labels ---

for (const [ordinalType, ids, expected] of [
  ['alpha-upper', ['A', 'B', 'C'], ['A', 'B', 'C']],
  ['alpha-lower', ['a', 'b'], ['a', 'b']],
  ['number', ['0', '1', '2'], ['0', '1', '2']],
  ['generic', ['0', '1'], ['0', '1']],
  ['', ['x', 'y'], ['x', 'y']],
  ['yes-no', ['A', 'B', '?'], ['Yes', 'No', 'Don’t know']],
  ['yes-no-maybe', ['A', 'B', '?'], ['Yes', 'No', 'Maybe']],
  ['yes-no-unsure', ['A', 'B', '?'], ['Yes', 'No', 'Unsure']],
  ['yes-no-other', ['A', 'B', '?', '?'], ['Yes', 'No', 'Other', 'Other']],
  ['true-false', ['A', 'B'], ['True', 'False']],
  ['agreement', ['0', '1', '2'], ['Disagree', 'Neither', 'Agree']],
  ['agreement', ['0', '1', '2', '3', '4', '5', '6'], ['Disagree', '1', '2', '3', '4', '5', 'Agree']],
  ['confidence', ['0', '1'], ['Not confident', 'Confident']],
  ['constructor', ['0', '1'], ['0', '1']],
]) {
  check(`options without texts are labelled by the scheme "${ordinalType}" (${ids.length})`, () => {
    assert.deepEqual(scheme(ordinalType, ...ids), expected);
  });
}

check('the words of the fixed types take the place of the letters in their ids', () => {
  const activityOptions = texts({ A: 'TRUE', B: 'FALSE', '?': 'DONTKNOW' });
  assert.deepEqual(labels(question({ type: 'true-false', activityOptions, metadata: { ordinalType: 'alpha-upper' } })),
    ['True', 'False', 'Don’t know']);
  assert.deepEqual(labels(question({ type: 'yes-no-other', activityOptions: texts({ A: 'YES', '?': 'DONTKNOW' }), metadata: { ordinalType: 'yes-no-maybe' } })),
    ['Yes', 'Maybe']);
  assert.deepEqual(labels(question({ type: 'yes-no-other', activityOptions: texts({ '?': 'DONTKNOW' }) })), ['Other']);
});

check('texts of a presenter stand beside the letters, in the order of their sequence numbers', () => {
  const activityOptions = [{ id: 'B', optionText: 'TRUE', displaySeqNumber: 2 }, { id: 'A', optionText: 'one', displaySeqNumber: 1 }];
  assert.deepEqual(labels(question({ type: 'multiple', activityOptions, metadata: { ordinalType: 'alpha-upper' } })), ['A one', 'B TRUE']);
});

check('a poll document’s options are its numbers, labelled by the scheme', () => {
  assert.deepEqual(labels(poll({ type: 'word-seed', metadata: { ordinalType: 'alpha-upper', options: [0, 1, 2] } })), ['A', 'B', 'C']);
  assert.deepEqual(labels(poll({ type: 'creative', metadata: { ordinalType: 'generic', options: [0, 1] } })), ['0', '1']);
  assert.deepEqual(optionsOf(poll({ type: 'creative' })), []);
});

check('options that make no sense do not break the page', () => {
  assert.deepEqual(labels(question({ type: 'scale', activityOptions: [null, 5, {}] })).length, 3);
  assert.deepEqual(optionsOf(question({ type: 'text', activityOptions: 'none', metadata: 7 })), []);
});

// --- what goes to the presenter ---

const sent = (activity, answer) => responseTo(activity, answer, 1500, 'token');

check('picked options are answered by their ids, in the order picked', () => {
  const activity = question({ type: 'sort', questionSetMode: 'Assessment', activityOptions: options('A', 'B', 'C') });
  assert.deepEqual(sent(activity, { picked: [2, 0, 1] }), {
    type: 'questionResponse',
    value: {
      questionId: 'q', questionSetMode: 'Assessment', responseTime: 1500, studentAssessmentToken: 'token',
      optionAnswers: ['C', 'A', 'B'].map((activityOptionId) => ({ activityOptionId })),
    },
  });
});

check('texts and standard options are answered as a text', () => {
  assert.equal(sent(question({ type: 'text' }), { text: 'x' }).value.answer, 'x');
  for (const [type, picked, expected] of [
    ['true-false', [1], 'FALSE'], ['yes-no-other', [0], 'YES'], ['multiple', [0, 2], 'AC'], ['scale', [4], '5'], ['sort', [1, 0], 'BA'],
  ]) {
    const { value } = sent(question({ type }), { picked });
    assert.deepEqual([value.answer, value.optionAnswers], [expected, undefined], type);
  }
});

check('a poll document is answered with a list of picks or with input, never with a single pick', () => {
  const withOptions = poll({ type: 'word-seed', metadata: { options: [0, 1, 7] } });
  assert.deepEqual(sent(withOptions, { picked: [2] }), {
    type: 'pollResponse', value: { pollId: 'p', blob: { pick: ['7'] }, responseTime: 1500, studentAssessmentToken: 'token' },
  });
  assert.deepEqual(sent(poll({ type: 'creative' }), { text: 'a note' }).value.blob, { input: 'a note' });
});

check('what was answered before is found again', () => {
  const feedBack = { numberOfRetriesRemaining: 99, optionAnswers: [{ activityOptionId: 'C' }, { activityOptionId: 'A' }] };
  const sorted = question({ type: 'sort', activityOptions: options('A', 'B', 'C'), feedBack });
  assert.deepEqual(sorted.answer, { picked: [2, 0] });
  assert.equal(inWords(sorted, sorted.answer), 'C, A');
  assert.deepEqual(question({ type: 'text', feedBack: { numberOfRetriesRemaining: 99, answer: 'before' } }).answer, { text: 'before' });
  for (const none of [{ ...feedBack, numberOfRetriesRemaining: 0 }, { numberOfRetriesRemaining: 99 }, null]) {
    assert.equal(question({ type: 'sort', activityOptions: options('A', 'B', 'C'), feedBack: none }).answer, null);
  }
});

check('feedback is given once there is an answer, and only as far as it is to be shown', () => {
  const feedBack = {
    numberOfRetriesRemaining: 99, optionAnswers: [{ activityOptionId: 'A' }], showFeedback: true, showCorrectAnswer: true,
    correctOptions: [{ activityOptionId: 'B' }], correctFeedback: 'Right!', inCorrectFeedback: 'Not quite.',
  };
  const of = (changes) => feedbackOf(question({ type: 'multiple', activityOptions: options('A', 'B'), feedBack: { ...feedBack, ...changes } }));
  assert.deepEqual(of({}), ['Not quite.', 'The correct answer: B']);
  assert.deepEqual(of({ correctOptions: ['A'], showCorrectAnswer: false }), ['Right!']);
  assert.deepEqual(of({ showFeedback: false, showCorrectAnswer: false }), []);
  assert.deepEqual(of({ numberOfRetriesRemaining: 0 }), []);
});

check('a question without words asks in its own', () => {
  assert.equal(promptFor(question({ type: 'multiple', numberOfCorrectOptions: 2 })), 'Which of these apply?');
  assert.equal(promptFor(question({ type: 'multiple', numberOfCorrectOptions: 1 })), 'Which one is it?');
  assert.equal(promptFor(poll({ type: 'word-seed', metadata: { options: [0] } })), 'Which do you pick?');
  assert.equal(promptFor(question({ type: 'constructor' })), 'What do you say?');
});

// --- numbers ---

for (const [typed, decimals, expected] of [
  ['12', 0, '12'], [' 1 200 ', 0, '1200'], ['007', 0, '7'], ['-0', 0, '0'], ['−3', 0, '-3'], ['+3', 0, '3'],
  ['2,5', 2, '2.50'], ['2.5', 2, '2.50'], ['.5', 1, '0.5'], ['-.50', 1, '-0.5'], ['3.', 0, '3'], ['3.000', 0, '3'],
  ['12345678901234567890.123456789', 9, '12345678901234567890.123456789'],
]) {
  check(`the number "${typed}" with ${decimals} decimals is ${expected}`, () => {
    assert.deepEqual(readNumber(typed, decimals), { text: expected });
  });
}

check('what is no number, or has too many decimals, is said to be so', () => {
  for (const typed of ['', '.', '-', 'twelve', '1e5', '1.2.3', '1,2,3', '0x10', '- -1']) {
    assert.match(readNumber(typed, 2).problem, /^Enter a number/, typed);
  }
  assert.match(readNumber('1.5', 0).problem, /whole number/);
  assert.match(readNumber('1.25', 1).problem, /at most 1 decimal\.$/);
  assert.deepEqual([decimalsOf(-1), decimalsOf(2.9), decimalsOf(99), decimalsOf('x'), decimalsOf(undefined)], [0, 2, 20, 0, 0]);
});

// --- formulas ---

for (const [latex, expected] of [
  ['x^2', ['msup', ['mi', 'x'], ['mn', '2']]],
  ['x^12', ['mrow', ['msup', ['mi', 'x'], ['mn', '1']], ['mn', '2']]],
  ['a_{i}^{2}', ['msubsup', ['mi', 'a'], ['mi', 'i'], ['mn', '2']]],
  ['\\frac{1}{2}', ['mfrac', ['mn', '1'], ['mn', '2']]],
  ['\\sqrt[3]{x}', ['mroot', ['mi', 'x'], ['mn', '3']]],
  ['\\sqrt2', ['msqrt', ['mn', '2']]],
  ['2\\pi r', ['mrow', ['mn', '2'], ['mi', 'π'], ['mi', 'r']]],
  ['a-b', ['mrow', ['mi', 'a'], ['mo', '−'], ['mi', 'b']]],
  ['\\text{if }x', ['mrow', ['mtext', 'if '], ['mi', 'x']]],
  ['\\unknown', ['mtext', '\\unknown']],
  ['\\constructor', ['mtext', '\\constructor']],
  ['^2', ['msup', ['mrow'], ['mn', '2']]],
  ['}{', ['mrow', ['mo', '}'], ['mrow']]],
  ['\\frac', ['mfrac', ['mrow'], ['mrow']]],
  ['x^', ['msup', ['mi', 'x'], ['mrow']]],
  ['', ['mrow']],
  ['<b>', ['mrow', ['mo', '<'], ['mi', 'b'], ['mo', '>']]],
]) {
  check(`the formula "${latex}" is read`, () => assert.deepEqual(parseLatex(latex), expected));
}

check('a formula too deep or too long is not read, and any text is read to its end', () => {
  assert.equal(parseLatex('{'.repeat(1000)), null);
  assert.equal(parseLatex('x'.repeat(3000)), null);
  for (let seed = 1; seed < 300; seed += 1) {
    const text = Array.from({ length: 20 }, (_, i) => '\\{}^_[]xfrac sqrt12<'[(seed * (i + 7) * 31) % 20]).join('');
    assert.doesNotThrow(() => parseLatex(text), text);
  }
});

check('the marks of an embedded formula are found, every other markup is text', () => {
  const mark = '<span class="mathquill-embedded-latex">';
  assert.deepEqual(partsOf(`Is ${mark}x^2</span> <b>even</b>?`, false), [{ text: 'Is ' }, { latex: 'x^2' }, { text: ' <b>even</b>?' }]);
  assert.deepEqual(partsOf(`${mark}x`, false), [{ latex: 'x' }]);
  assert.deepEqual(partsOf('x^2', true), [{ latex: 'x^2' }]);
  assert.deepEqual(partsOf('x^2', false), [{ text: 'x^2' }]);
});

// --- pictures ---

const PAGE = 'http://10.0.0.5:8090/?code=123456';
const DOWNLOAD = '/tavisto/resource/downloadResourceFile?resourceId=1';

for (const [reference, expected] of [
  ['data:image/png;base64,AAAA', 'data:image/png;base64,AAAA'],
  ["url('data:image/png;base64,AAAA')", 'data:image/png;base64,AAAA'],
  [DOWNLOAD, `http://10.0.0.5:8090${DOWNLOAD}`],
  [`url('${DOWNLOAD}')`, `http://10.0.0.5:8090${DOWNLOAD}`],
  [`http://127.0.0.1:8090${DOWNLOAD}`, `http://10.0.0.5:8090${DOWNLOAD}`],
  ['https://elsewhere.example/x.png', null],
  ['javascript:alert(1)', null],
  ['data:text/html,x', null],
  ['http://', null],
  ['', null],
  [undefined, null],
  [5, null],
]) {
  check(`the picture ${JSON.stringify(reference)} is loaded from ${expected}`, () => {
    assert.equal(pictureAddress(reference, PAGE), expected);
  });
}

check('a card’s pictures are its background and its images', () => {
  const components = [{ type: 'image', blob: { url: 'a' } }, { type: 'text', blob: { url: 'b' } }, null, { type: 'image' }];
  assert.deepEqual(cardPictures({ styles: { backgroundImage: 'bg' }, components }), ['bg', 'a']);
  for (const none of [{}, null, undefined, { styles: { backgroundImage: '' }, components: 'x' }]) assert.deepEqual(cardPictures(none), []);
});

check('a stopwatch leaves its pauses out, also over a reload', () => {
  let now = 1000;
  const watch = new Stopwatch(() => now);
  now = 1500;
  watch.pause();
  watch.pause();
  now = 5000;
  assert.equal(watch.elapsed, 500);
  watch.resume();
  watch.resume();
  now = 5250;
  assert.equal(watch.elapsed, 750);
  const later = new Stopwatch(() => now, JSON.parse(JSON.stringify(watch)));
  now = 5500;
  assert.equal(later.elapsed, 1000);
});
