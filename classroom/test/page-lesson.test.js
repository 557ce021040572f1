import assert from 'node:assert/strict';
import { Lesson } from '../public/js/model/lesson.js';
import { check } from './support/check.js';

const choice = (id, more = {}) => ({ id, type: 'multiple', questionSetMode: 'Poll', activityOptions: [{ id: 'A' }, { id: 'B' }], ...more });
const asked = (id, questionNumber, more = {}) => choice(id, { questionSetMode: 'Assessment', questionNumber, ...more });

/** A lesson by itself, with a clock that is set by hand and a list of what has gone out. */
function lesson() {
  const made = { sent: [], now: 1000, online: true, changes: 0 };
  const publish = async (type, value) => {
    if (made.online) made.sent.push({ type, value });
    return made.online;
  };
  made.open = () => new Lesson({ publish, changed: () => { made.changes += 1; }, now: () => made.now });
  made.lesson = made.open();
  made.receive = (type, value) => made.lesson.handlers[type](value);
  return made;
}

function assessment(options = {}) {
  const made = lesson();
  made.receive('assessmentStart', { assessmentToken: 'a', questionCount: 3, startingQuestionNumber: 0, ...options });
  return made;
}

check('a question is answered once, and again after a change of mind', async () => {
  const { lesson: one, receive, sent } = lesson();
  receive('questionStart', choice('q'));
  await one.answer({ picked: [0] });
  assert.equal(one.mayAnswer, false);
  await one.answer({ picked: [1] });
  assert.equal(sent.length, 1);
  one.changeAnswer();
  await one.answer({ picked: [1] });
  assert.deepEqual(sent.map(({ value }) => value.optionAnswers[0].activityOptionId), ['A', 'B']);
});

check('an answer that may not be changed is not', async () => {
  const { lesson: one, receive, sent } = lesson();
  receive('questionStart', choice('q', { feedBack: { allowResubmit: false } }));
  await one.answer({ picked: [0] });
  one.changeAnswer();
  await one.answer({ picked: [1] });
  assert.deepEqual([one.mayChangeAnswer, sent.length], [false, 1]);
});

check('an answer that was given before is changed, also over a reload, until the question comes again', async () => {
  const made = lesson();
  const before = (id) => choice('q', { feedBack: { numberOfRetriesRemaining: 99, optionAnswers: [{ activityOptionId: id }] } });
  made.receive('questionStart', before('A'));
  assert.deepEqual([made.lesson.activity.answer, made.lesson.activity.wasAnsweredBefore], [{ picked: [0] }, true]);
  made.lesson.changeAnswer();
  await made.lesson.answer({ picked: [1] });
  const later = made.open();
  later.restore(JSON.parse(JSON.stringify(made.lesson)));
  for (const { activity } of [made.lesson, later]) {
    assert.deepEqual([activity.answer, activity.wasAnsweredBefore], [{ picked: [1] }, false]);
  }
  later.handlers.questionStart(before('B'));
  assert.deepEqual([later.activity.answer, later.activity.wasAnsweredBefore], [{ picked: [1] }, true]);
});

check('an answer that does not go out is not taken for one that has', async () => {
  const made = lesson();
  made.receive('questionStart', choice('q'));
  made.online = false;
  await made.lesson.answer({ picked: [0] });
  assert.deepEqual([made.lesson.activity.answer, made.lesson.activity.failed, made.lesson.mayAnswer], [null, true, true]);
  made.online = true;
  await made.lesson.answer({ picked: [0] });
  assert.deepEqual([made.lesson.activity.failed, made.sent.length], [false, 1]);
});

check('while paused nothing is answered, and the time stands still', async () => {
  const made = lesson();
  made.receive('questionStart', choice('q'));
  made.now += 500;
  made.receive('pause', 'p');
  await made.lesson.answer({ picked: [0] });
  assert.equal(made.sent.length, 0);
  made.now += 60000;
  made.receive('resume', 'p');
  made.now += 250;
  await made.lesson.answer({ picked: [0] });
  assert.equal(made.sent[0].value.responseTime, 750);
});

check('a stopped question is closed; the next one starts unpaused', async () => {
  const { lesson: one, receive, sent } = lesson();
  receive('questionStart', choice('q'));
  receive('pause', 'p');
  receive('pollStop', 'p');
  await one.answer({ picked: [0] });
  assert.deepEqual([one.shows, one.paused, sent.length], ['stopped', false, 0]);
  receive('poll', { id: 'p', type: 'creative' });
  assert.deepEqual([one.shows, one.mayAnswer], ['question', true]);
});

check('a stop without a question, and documents that are none, change nothing', () => {
  const { lesson: one, receive } = lesson();
  receive('pollStop', '');
  for (const type of ['questionStart', 'poll', 'showCard', 'assessmentStart']) {
    for (const value of [null, 'text', 5, []]) receive(type, value);
  }
  receive('assessmentStop', null);
  assert.deepEqual([one.shows, one.activity, one.assessment], ['waiting', null, null]);
});

check('a card lies over an open question, and is not taken away by its stop', () => {
  const { lesson: one, receive } = lesson();
  receive('heavy', '%0');
  assert.equal(one.expectsPicture, true);
  receive('questionStart', choice('q'));
  receive('showCard', { components: [] });
  one.backToQuestion();
  assert.equal(one.shows, 'question');
  receive('showCard', { components: [] });
  receive('pollStop', '');
  assert.deepEqual([one.shows, one.activity.closed, one.expectsPicture], ['card', true, false]);
});

check('a dialog is dismissed by the learner, or goes with what comes next', () => {
  const { lesson: one, receive } = lesson();
  receive('dialogShow', { text: 'Hi', isDismissible: true });
  assert.deepEqual(one.notice, { text: 'Hi', dismissible: true });
  one.dismiss();
  assert.equal(one.notice, null);
  receive('dialogShow', { text: 'Stay' });
  assert.equal(one.notice.dismissible, false);
  receive('questionStart', choice('q'));
  assert.equal(one.notice, null);
});

check('an assessment asks for its questions in their order, from its starting number on', async () => {
  const { lesson: one, receive, sent } = assessment({ startingQuestionNumber: 2 });
  assert.deepEqual([one.shows, sent.pop()], ['coming', { type: 'questionGet', value: { questionNumber: 2, assessmentToken: 'a' } }]);
  receive('questionStart', asked('q2', 2));
  assert.equal(one.mayGoOn, false);
  await one.answer({ picked: [0] });
  assert.equal(sent.pop().value.studentAssessmentToken, 'a');
  one.goOn();
  assert.equal(sent.pop().value.questionNumber, 3);
  receive('questionStart', asked('q3', 0));
  assert.equal(one.activity.number, 3);
  await one.answer({ picked: [1] });
  one.goOn();
  assert.deepEqual([one.shows, one.assessment.answered], ['finished', 2]);
});

check('who may skip goes on without an answer, who may navigate goes anywhere', () => {
  const plain = assessment();
  plain.receive('questionStart', asked('q1', 1));
  assert.deepEqual([plain.lesson.mayGoOn, plain.lesson.mayNavigate], [false, false]);
  const skipping = assessment({ allowSkipQuestion: true });
  skipping.receive('questionStart', asked('q1', 1));
  assert.deepEqual([skipping.lesson.mayGoOn, skipping.lesson.mayNavigate], [true, false]);
  const free = assessment({ allowNavigateQuestionSet: true });
  free.receive('questionStart', asked('q1', 1));
  assert.deepEqual([free.lesson.mayGoOn, free.lesson.mayNavigate], [true, true]);
  free.lesson.goTo(3);
  assert.equal(free.sent.pop().value.questionNumber, 3);
});

check('a review lets the learner navigate', () => {
  const { lesson: one, receive } = assessment();
  receive('questionStart', asked('q1', 1));
  receive('questionSetReview', { text: 'Look', showNavigation: true });
  assert.deepEqual([one.shows, one.review, one.mayNavigate], ['review', 'Look', true]);
});

check('a question that comes back is found as it was left, its time included', async () => {
  const made = assessment({ allowNavigateQuestionSet: true });
  const { lesson: one, receive, sent } = made;
  receive('questionStart', asked('q1', 1));
  made.now += 300;
  one.keepDraft({ picked: [1] });
  one.goTo(2);
  made.now += 10000;
  receive('questionStart', asked('q2', 2));
  one.goTo(1);
  receive('questionStart', asked('q1', 1));
  assert.deepEqual(one.activity.draft, { picked: [1] });
  made.now += 200;
  await one.answer({ picked: [1] });
  assert.equal(sent.pop().value.responseTime, 500);
});

check('the assessment decides whether answers may be changed', async () => {
  const { lesson: one, receive } = assessment({ allowResubmitResponse: false });
  receive('questionStart', asked('q1', 1));
  await one.answer({ picked: [0] });
  assert.equal(one.mayChangeAnswer, false);
});

check('when the time is over nothing more is answered', async () => {
  const made = assessment({ allowedTime: 60, allowNavigateQuestionSet: true });
  const { lesson: one, receive, sent } = made;
  receive('questionStart', asked('q1', 1));
  made.now += 59000;
  one.tick();
  receive('pause', '');
  made.now += 60000;
  one.tick();
  assert.deepEqual([one.shows, one.assessment.remaining], ['question', 1000]);
  receive('resume', '');
  made.now += 1000;
  one.tick();
  const count = sent.length;
  await one.answer({ picked: [0] });
  assert.deepEqual([one.shows, one.mayNavigate, sent.length], ['finished', false, count]);
});

check('an assessment is stopped by its own token only; polls go on after it', async () => {
  const { lesson: one, receive, sent } = assessment();
  receive('assessmentStop', { assessmentToken: 'another' });
  assert.equal(one.shows, 'coming');
  receive('assessmentStop', { assessmentToken: 'a' });
  assert.equal(one.shows, 'over');
  receive('questionStart', choice('q'));
  await one.answer({ picked: [0] });
  assert.deepEqual([one.assessment, sent.pop().value.studentAssessmentToken], [null, undefined]);
});

check('a poll in the middle of an assessment is no question of it', async () => {
  const { lesson: one, receive, sent } = assessment();
  receive('questionStart', choice('p'));
  await one.answer({ picked: [0] });
  assert.equal(sent.pop().value.studentAssessmentToken, undefined);
  one.goOn();
  assert.equal(sent.pop().value.questionNumber, 1);
});

check('a lesson goes on after a reload where it was', async () => {
  const made = assessment({ allowedTime: 100 });
  made.receive('questionStart', asked('q1', 1));
  await made.lesson.answer({ picked: [0] });
  made.lesson.goOn();
  made.receive('questionStart', asked('q2', 2));
  made.lesson.keepDraft({ picked: [1] });
  made.receive('pause', '');
  const again = made.open();
  again.restore(JSON.parse(JSON.stringify(made.lesson)));
  assert.deepEqual([again.shows, again.paused, again.activity.draft, again.assessment.current], ['question', true, { picked: [1] }, 2]);
  assert.deepEqual([again.assessment.answered, again.assessment.at(1).answer], [1, { picked: [0] }]);
  assert.equal(again.assessment.at(2), again.activity);
});

check('what was kept by another version of the page does not break it', () => {
  const made = lesson();
  for (const saved of [null, 'x', { shows: 'question' }, { shows: 'nonsense', activity: 5, assessment: [] }, { shows: 'finished', assessment: null }]) {
    const one = made.open();
    one.restore(saved);
    assert.equal(one.shows, 'waiting');
  }
});

check('an answer goes out again after a lost connection, also over a reload, while its question is open', async () => {
  const made = lesson();
  made.lesson.sendAgain();
  made.receive('questionStart', choice('q'));
  made.lesson.sendAgain();
  await made.lesson.answer({ picked: [1] });
  made.lesson.sendAgain();
  const later = made.open();
  later.restore(JSON.parse(JSON.stringify(made.lesson)));
  later.sendAgain();
  later.handlers.questionStart(choice('q'));
  assert.deepEqual(made.sent.map((one) => JSON.stringify(one)), Array(4).fill(JSON.stringify(made.sent[0])));
  later.handlers.pollStop('p');
  later.sendAgain();
  assert.equal(made.sent.length, 4);
  assert.deepEqual([later.activity.answer, later.activity.closed], [{ picked: [1] }, true]);
});

check('a countdown is that of the open question, over a reload too, and ends with it', () => {
  const made = lesson();
  made.receive('countdown', { seconds: 5 });
  assert.equal(made.lesson.closesIn, null);
  made.receive('questionStart', choice('q'));
  assert.equal(made.lesson.closesIn, null);
  for (const [seconds, left] of [['x', 0], [-1, 0], [1e9, 86400], [10, 10]]) {
    made.receive('countdown', { id: 'q', seconds });
    assert.equal(made.lesson.closesIn, left);
  }
  made.now += 2500;
  const later = made.open();
  later.restore(JSON.parse(JSON.stringify(made.lesson)));
  assert.deepEqual([made.lesson.closesIn, later.closesIn], [8, 8]);
  made.now += 60000;
  assert.deepEqual([later.closesIn, later.mayAnswer], [0, true]);
  later.handlers.pollStop('q');
  assert.equal(later.closesIn, null);
  later.handlers.questionStart(choice('q2'));
  assert.equal(later.closesIn, null);
});

check('results are shown in the place of what was there, and the way back is to an open question', () => {
  const made = lesson();
  const bars = [{ title: 'A', count: 3, isCorrect: true }, { title: 'B', count: -1 }, 7];
  const drawn = { text: 'Right.', bars: [{ title: 'A', count: 3, isCorrect: true }, { title: 'B', count: 0, isCorrect: false }] };
  made.receive('questionStart', choice('q'));
  made.receive('dialogShow', { text: 'A: 3', isDismissible: true, results: { text: 'Right.', bars } });
  assert.deepEqual([made.lesson.shows, made.lesson.results, made.lesson.notice], ['results', drawn, null]);
  const later = made.open();
  later.restore(JSON.parse(JSON.stringify(made.lesson)));
  assert.deepEqual([later.shows, later.results], ['results', drawn]);
  later.backToQuestion();
  assert.deepEqual([later.shows, later.results], ['question', null]);
  for (const results of [null, 'x', {}, { bars: [] }, { bars: [7] }]) {
    made.receive('dialogShow', { text: 'A: 3', isDismissible: true, results });
    assert.deepEqual(made.lesson.notice, { text: 'A: 3', dismissible: true });
  }
});

check('what was begun is offered again with its question, until it has been sent', async () => {
  const made = lesson();
  const drafts = new Map();
  const open = () => new Lesson({ publish: async () => true, changed: () => {}, drafts });
  made.lesson = open();
  made.receive('questionStart', choice('q'));
  made.lesson.keepDraft({ picked: [1] });
  made.lesson = open(); // nothing else was kept
  made.receive('questionStart', choice('another'));
  assert.equal(made.lesson.activity.draft, null);
  made.receive('questionStart', choice('q'));
  assert.deepEqual(made.lesson.activity.draft, { picked: [1] });
  await made.lesson.answer({ picked: [1] });
  made.lesson = open();
  made.receive('questionStart', choice('q'));
  assert.equal(made.lesson.activity.draft, null);
});
