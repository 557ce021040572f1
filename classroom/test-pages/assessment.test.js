import assert from 'node:assert/strict';
import { after } from 'node:test';
import { check } from './support/check.js';
import { assertAccessible } from './support/accessible.js';
import { closeBrowser } from './support/browser.js';
import { field, heading, joinLearner, lesson, options, send, sent, teach, withTexts } from './support/class.js';
import { press, tabTo } from './support/keyboard.js';

after(closeBrowser);

const QUESTIONS = [
  { type: 'true-false', instructions: 'Plants need light.', activityOptions: withTexts({ A: 'TRUE', B: 'FALSE' }) },
  { type: 'multiple', instructions: 'What do leaves take in?', numberOfCorrectOptions: 1, activityOptions: options('A', 'B', 'C'), metadata: { ordinalType: 'alpha-upper', options: [] } },
  { type: 'number', instructions: 'How many leaves?', noOfDecimals: 0 },
  { type: 'text', instructions: 'Why are they green?' },
  { type: 'sort', instructions: 'From below to above', activityOptions: withTexts({ A: 'Root', B: 'Leaf' }) },
];

// What each learner answers to each question, and what the presenter has to receive for it.
const LEARNERS = [
  { name: 'Ann', answers: ['True', 'A', '5', 'Chlorophyll', ['A', 'B']], received: ['A', 'A', '5', 'Chlorophyll', 'AB'] },
  { name: 'Bob', answers: ['False', 'C', '-7', '葉', ['B', 'A']], received: ['B', 'C', '-7', '葉', 'BA'] },
  { name: 'Cem', answers: ['True', 'B', '012', 'No idea', ['A', 'B']], received: ['A', 'B', '12', 'No idea', 'AB'] },
];

const ACTS = {
  'true-false': (page, answer) => page.getByRole('radio', { name: answer }).check(),
  multiple: (page, answer) => page.getByRole('radio', { name: answer }).check(),
  number: (page, answer) => field(page, 'Your number').fill(answer),
  text: (page, answer) => field(page, 'Your answer').fill(answer),
  sort: async (page, [first]) => {
    if (first === 'B') await page.getByRole('button', { name: 'Move Leaf up' }).click();
  },
};

function start(presenter, settings, place) {
  presenter.publishObject('assessmentStart', {
    assessmentToken: 'the-token', questionCount: QUESTIONS.length, startingQuestionNumber: 0, title: 'Leaves', ...settings,
  }, place);
}

const idOf = (number) => `question-${number}`;

/** Sends one question of the assessment to one learner, as asked. */
function give(presenter, from, questionNumber, more = {}) {
  presenter.ask({
    id: idOf(questionNumber), questionSetMode: 'Assessment', questionNumber, ...QUESTIONS[questionNumber - 1], ...more,
  }, `.user.${from}`);
}

/** Takes the next request for a question, which is to be for this number, and answers it. */
async function giveNext(presenter, number) {
  const { from, value } = await presenter.next('questionGet');
  assert.deepEqual(value, { questionNumber: number, assessmentToken: 'the-token' });
  give(presenter, from, number);
  return from;
}

async function workThrough(page, { answers }) {
  for (const [i, question] of QUESTIONS.entries()) {
    await heading(page, question.instructions);
    await ACTS[question.type](page, answers[i]);
    await send(page).click();
    await sent(page);
    await page.getByRole('button', { name: i === 4 ? 'Finish' : 'Next question' }).click();
  }
  await heading(page, 'That was the last question');
}

const receivedText = ({ answer, optionAnswers }) => answer ?? optionAnswers.map((one) => one.activityOptionId).join('');

check('three learners work through five questions at once', async (t) => {
  const room = await teach(t);
  const { presenter } = room;
  const learners = [];
  for (const { name } of LEARNERS) learners.push(await joinLearner(t, room, { name }));
  start(presenter, { showSummaryOnAssessmentCompletion: true });
  const serving = (async () => {
    const asked = new Map();
    for (let i = 0; i < 15; i += 1) {
      const { from, value } = await presenter.next('questionGet');
      asked.set(from, [...(asked.get(from) ?? []), value.questionNumber]);
      give(presenter, from, value.questionNumber);
    }
    return asked;
  })();
  const [responses, asked] = await Promise.all([
    presenter.all('questionResponse', 15), serving, ...learners.map(({ page }, i) => workThrough(page, LEARNERS[i])),
  ]);
  for (const [i, { token, page }] of learners.entries()) {
    assert.deepEqual(asked.get(token), [1, 2, 3, 4, 5]);
    const own = responses.filter(({ from }) => from === token).map(({ value }) => value);
    assert.deepEqual(own.map(({ questionId }) => questionId), [1, 2, 3, 4, 5].map(idOf));
    assert.deepEqual(own.map(receivedText), LEARNERS[i].received);
    assert.ok(own.every((one) => one.studentAssessmentToken === 'the-token' && one.questionSetMode === 'Assessment'));
    await page.getByText('You have answered 5 of 5.').waitFor();
  }
  const rows = await learners[1].page.getByRole('row').allInnerTexts();
  assert.deepEqual(rows.slice(1).map((row) => row.split('\t').at(-1)), ['False', 'C', '-7', '葉', 'Leaf, Root']);
  await assertAccessible(learners[0].page);
  presenter.publishObject('assessmentStop', { assessmentToken: 'the-token' });
  for (const { page } of learners) await heading(page, 'The assessment is over');
  await assertAccessible(learners[0].page);
});

check('progress shows, and without leave one neither skips nor navigates', async (t) => {
  const { presenter, page } = await lesson(t);
  start(presenter, { description: 'Five questions about leaves.' });
  await heading(page, 'Question 1 is on its way');
  await assertAccessible(page);
  await giveNext(presenter, 1);
  await heading(page, 'Plants need light.');
  await page.getByText('Question 1 of 5').waitFor();
  await page.getByText('About this assessment').click();
  await page.getByText('Five questions about leaves.').waitFor();
  for (const name of ['Skip', 'Next question', 'Question 2']) assert.equal(await page.getByRole('button', { name }).count(), 0, name);
  await page.getByRole('radio', { name: 'True' }).check();
  await send(page).click();
  await sent(page);
  assert.equal(await page.getByRole('progressbar', { name: 'Questions answered' }).evaluate(({ value, max }) => `${value} of ${max}`), '1 of 5');
  await assertAccessible(page);
});

check('a question that does not come is asked for again', async (t) => {
  const { presenter, page } = await lesson(t);
  start(presenter);
  await presenter.next('questionGet');
  await page.getByRole('button', { name: 'Ask again' }).click();
  await giveNext(presenter, 1);
  await heading(page, 'Plants need light.');
});

check('where skipping is allowed one goes on without an answer', async (t) => {
  const { presenter, page } = await lesson(t);
  start(presenter, { allowSkipQuestion: true, startingQuestionNumber: 4 });
  await giveNext(presenter, 4);
  await page.getByRole('button', { name: 'Skip' }).click();
  await giveNext(presenter, 5);
  await page.getByRole('button', { name: 'Skip' }).click();
  await page.getByText('You have answered 0 of 5.').waitFor();
});

check('where navigating is allowed one goes anywhere, and finds what one has left', async (t) => {
  const { presenter, page } = await lesson(t);
  start(presenter, { allowNavigateQuestionSet: true });
  await giveNext(presenter, 1);
  await page.getByRole('radio', { name: 'False' }).check();
  await page.getByRole('button', { name: 'Question 4' }).click();
  await giveNext(presenter, 4);
  await field(page, 'Your answer').fill('light');
  await send(page).click();
  await sent(page);
  await assertAccessible(page);
  await tabTo(page, page.getByRole('button', { name: 'Question 1' }));
  await press(page, 'Enter');
  await giveNext(presenter, 1);
  await heading(page, 'Plants need light.');
  assert.equal(await page.getByRole('radio', { name: 'False' }).isChecked(), true);
  await page.getByRole('button', { name: 'Question 4, answered' }).click();
  await giveNext(presenter, 4);
  await page.getByText('Your answer is sent.').waitFor();
  assert.equal(await field(page, 'Your answer').inputValue(), 'light');
});

check('a review leads back to the questions', async (t) => {
  const { presenter, page } = await lesson(t);
  start(presenter);
  const from = await giveNext(presenter, 1);
  await heading(page, 'Plants need light.');
  presenter.publishObject('questionSetReview', { text: 'Look at question 2 again', showNavigation: true }, `.user.${from}`);
  await heading(page, 'Look at question 2 again');
  await assertAccessible(page);
  await page.getByRole('button', { name: 'Question 2' }).click();
  await giveNext(presenter, 2);
  await heading(page, 'What do leaves take in?');
});

const TIME_LEFT = /^Time left \d+:\d\d$/;

check('when the time is up the questions are closed', async (t) => {
  const { presenter, page } = await lesson(t, { prepare: (context) => context.clock.install() });
  start(presenter, { allowedTime: 600 });
  await giveNext(presenter, 1);
  await page.getByText(TIME_LEFT).waitFor();
  await assertAccessible(page);
  await page.clock.runFor(541000);
  await page.getByRole('status').filter({ hasText: 'Less than a minute is left.' }).waitFor({ state: 'attached' });
  presenter.publish('pause', '');
  await page.getByText('Your teacher has paused this.').waitFor();
  // The clock on the page is put right once a second.
  await page.clock.runFor(2000);
  const left = await page.getByText(TIME_LEFT).innerText();
  await page.clock.runFor(600000);
  assert.equal(await page.getByText(TIME_LEFT).innerText(), left);
  presenter.publish('resume', '');
  await page.getByText('Your teacher has paused this.').waitFor({ state: 'detached' });
  await page.clock.runFor(60000);
  await heading(page, 'Time is up');
  await page.getByText('You have answered 0 of 5.').waitFor();
  await assertAccessible(page);
});

check('a learner comes back into an assessment after a reload', async (t) => {
  const { presenter, page } = await lesson(t);
  start(presenter);
  await giveNext(presenter, 1);
  await page.getByRole('radio', { name: 'True' }).check();
  await send(page).click();
  await sent(page);
  await page.reload();
  await heading(page, 'Plants need light.');
  await sent(page);
  await page.getByRole('button', { name: 'Next question' }).click();
  // The presenter has been asked, but this learner is gone before it can answer.
  await presenter.next('questionGet');
  await page.reload();
  await giveNext(presenter, 2);
  await heading(page, 'What do leaves take in?');
  await page.getByText('Question 2 of 5').waitFor();
});
