import assert from 'node:assert/strict';
import { after } from 'node:test';
import { promptFor } from '../public/js/model/prompts.js';
import { check } from './support/check.js';
import { assertAccessible } from './support/accessible.js';
import { closeBrowser, PHONE } from './support/browser.js';
import { field, heading, lesson, options, send, sent, withTexts } from './support/class.js';
import { press, tabTo } from './support/keyboard.js';
import { QUESTIONS, put, responseFor } from './support/questions.js';

after(closeBrowser);

async function assertReceived(presenter, token, question, id) {
  const { type, value } = responseFor(question, id);
  const { from, value: { responseTime, ...received } } = await presenter.next(type);
  assert.equal(from, token);
  assert.ok(Number.isInteger(responseTime) && responseTime >= 0 && responseTime < 60000, `${responseTime} ms`);
  assert.deepEqual(received, value);
}

check('every kind of question is answered by hand, accessibly', async (t) => {
  const { presenter, page, token } = await lesson(t);
  for (const [i, question] of QUESTIONS.entries()) {
    put(presenter, question, `q${i}`);
    await send(page).waitFor();
    await assertAccessible(page);
    await question.hand(page);
    await send(page).click();
    await assertReceived(presenter, token, question, `q${i}`);
    await sent(page);
    if (i % 4 === 0) await assertAccessible(page);
    presenter.publish('pollStop', 'an id of the poll');
    await heading(page, 'This question is closed');
  }
});

check('every kind of question is answered with the keyboard alone, from where the focus is put', async (t) => {
  const { presenter, page, token } = await lesson(t);
  for (const [i, question] of QUESTIONS.entries()) {
    put(presenter, question, `q${i}`);
    await send(page).waitFor();
    assert.equal(await page.evaluate(() => document.activeElement.tagName), 'H1', question.name);
    await question.keys(page);
    await tabTo(page, send(page));
    await press(page, 'Enter');
    await assertReceived(presenter, token, question, `q${i}`);
    await sent(page);
    assert.equal(await page.evaluate(() => document.activeElement.textContent), 'Your answer is sent.', question.name);
    presenter.publish('pollStop', 'an id of the poll');
    await heading(page, 'This question is closed');
  }
});

check('an answer is changed with a second response, and Enter sends from a field', async (t) => {
  const { presenter, page } = await lesson(t);
  presenter.ask({ id: 'q', type: 'word-seed' });
  await field(page, 'Your word or short phrase').fill('one');
  await field(page, 'Your word or short phrase').press('Enter');
  assert.equal((await presenter.next('questionResponse')).value.answer, 'one');
  await page.getByRole('button', { name: 'Change answer' }).click();
  assert.equal(await field(page, 'Your word or short phrase').inputValue(), 'one');
  await page.keyboard.type('!');
  await press(page, 'Enter');
  assert.equal((await presenter.next('questionResponse')).value.answer, 'one!');
});

check('an answer that may not be changed stays', async (t) => {
  const { presenter, page } = await lesson(t);
  presenter.ask({ id: 'q', type: 'scale', activityOptions: options('0', '1'), feedBack: { allowResubmit: false } });
  await page.getByRole('radio', { name: '1' }).check();
  await send(page).click();
  await sent(page);
  assert.equal(await page.getByRole('button', { name: 'Change answer' }).isVisible(), false);
  assert.equal(await page.getByRole('radio', { name: '0' }).isDisabled(), true);
});

const PROBLEMS = [
  [{ type: 'scale', activityOptions: options('0', '1') }, async () => {}, 'Pick an option first.'],
  [{ type: 'multiple', numberOfCorrectOptions: 2, activityOptions: options('A', 'B', 'C') }, async (page) => {
    for (const name of ['A', 'B', 'C']) await page.getByRole('checkbox', { name }).check();
  }, 'Pick up to 2: you have picked 3 options.'],
  [{ type: 'text' }, (page) => field(page, 'Your answer').fill('  '), 'Write something first.'],
  [{ type: 'text', maxChars: 3 }, (page) => field(page, 'Your answer').fill('🌱🌱🌱🌱'), 'That is 1 character too many.'],
  [{ type: 'number' }, (page) => field(page, 'Your number').fill('many'), 'Enter a number, such as 12 or −3.'],
  [{ type: 'number', noOfDecimals: 1 }, (page) => field(page, 'Your number').fill('1.25'), 'Enter at most 1 decimal.'],
  [{ type: 'math formula' }, async () => {}, 'Write a formula first.'],
];

check('what is no answer is not sent, and the page says why', async (t) => {
  const { presenter, page } = await lesson(t);
  for (const [i, [document, act, message]] of PROBLEMS.entries()) {
    presenter.ask({ id: `q${i}`, ...document });
    await heading(page, promptFor({ kind: 'question', document }));
    await act(page);
    await send(page).click();
    await page.getByRole('alert').filter({ hasText: message }).waitFor();
    if (i % 3 === 0) await assertAccessible(page);
    presenter.publish('pollStop', '');
    await heading(page, 'This question is closed');
  }
  // What the page had sent would have come before this.
  presenter.ask({ id: 'last', type: 'word-seed' });
  await field(page, 'Your word or short phrase').fill('x');
  await send(page).click();
  assert.equal((await presenter.next('questionResponse')).value.questionId, 'last');
});

check('the sign of a number is changed with a button', async (t) => {
  const { presenter, page } = await lesson(t);
  presenter.ask({ id: 'q', type: 'number' });
  await field(page, 'Your number').fill('5');
  await page.getByRole('button', { name: 'Change the sign' }).click();
  assert.equal(await field(page, 'Your number').inputValue(), '-5');
  await page.getByRole('button', { name: 'Change the sign' }).click();
  assert.equal(await field(page, 'Your number').inputValue(), '5');
});

const SORT = { type: 'sort', activityOptions: withTexts({ A: 'Light', B: 'Sugar', C: 'Root' }), metadata: { ordinalType: 'alpha-upper' } };

const middleOf = async (locator) => {
  const { x, y, width, height } = await locator.boundingBox();
  return { x: x + width / 2, y: y + height / 2 };
};

check('options are put in order by dragging', async (t) => {
  const { presenter, page } = await lesson(t);
  presenter.ask({ id: 'q', ...SORT });
  await send(page).waitFor();
  const handle = (i) => page.locator('.handle').nth(i);
  const [from, to] = [await middleOf(handle(0)), await middleOf(handle(2))];
  await page.mouse.move(from.x, from.y);
  await page.mouse.down();
  await page.mouse.move(from.x, (from.y + to.y) / 2 + 5, { steps: 5 });
  await page.mouse.move(to.x, to.y + 10, { steps: 5 });
  await page.mouse.up();
  await send(page).click();
  const { optionAnswers } = (await presenter.next('questionResponse')).value;
  assert.deepEqual(optionAnswers.map((one) => one.activityOptionId), ['B', 'C', 'A']);
});

check('a screen reader is told where a moved option is, and the focus stays on its button', async (t) => {
  const { presenter, page } = await lesson(t, PHONE);
  presenter.ask({ id: 'q', ...SORT });
  const up = page.getByRole('button', { name: 'Move B Sugar up' });
  await up.focus();
  await press(page, 'Enter');
  await page.getByRole('status').filter({ hasText: 'B Sugar is now 1 of 3.' }).waitFor({ state: 'attached' });
  assert.equal(await up.evaluate((element) => element === document.activeElement), true);
  assert.equal(await up.getAttribute('aria-disabled'), 'true');
  await press(page, 'Enter');
  assert.equal(await page.locator('.order-row').first().innerText().then((text) => text.includes('Sugar')), true);
});

check('a formula shows as it will read, also inside a question', async (t) => {
  const { presenter, page } = await lesson(t);
  const mark = '<span class="mathquill-embedded-latex">';
  presenter.ask({ id: 'q', type: 'math formula', instructions: `Solve ${mark}x^2=4</span> <b>for</b> x.` });
  await send(page).waitFor();
  assert.equal(await page.locator('h1 math msup').count(), 1);
  assert.match(await page.locator('h1').innerText(), /<b>for<\/b> x\./);
  await field(page, 'Your formula').fill('\\sqrt{x}');
  assert.equal(await page.locator('.preview math msqrt').count(), 1);
  await assertAccessible(page);
});

for (const fonts of [null, 'fonts-without-roots.conf']) {
  check(`a root has its sign with ${fonts ?? 'the fonts of the machine'}`, async (t) => {
    const { presenter, page } = await lesson(t, { fonts });
    presenter.ask({ id: 'q', type: 'math formula' });
    await field(page, 'Your formula').fill('\\sqrt{x}');
    const width = (one) => page.locator(`.preview ${one}`).evaluate((element) => element.getBoundingClientRect().width);
    assert.ok(await width('msqrt') > await width('mi') + 4);
  });
}

check('a question that was answered before shows the answer and what is said about it', async (t) => {
  const { presenter, page } = await lesson(t);
  presenter.ask({
    id: 'q', type: 'multiple', numberOfCorrectOptions: 1, activityOptions: withTexts({ A: 'Oxygen', B: 'Water' }),
    feedBack: {
      numberOfRetriesRemaining: 99, optionAnswers: [{ activityOptionId: 'A' }], showFeedback: true, inCorrectFeedback: 'Not quite.',
      showCorrectAnswer: true, correctOptions: [{ activityOptionId: 'B' }], allowResubmit: true,
    },
  });
  await page.getByText('You have answered this before.').waitFor();
  await page.getByText('Not quite.').waitFor();
  await page.getByText('The correct answer: Water').waitFor();
  assert.equal(await page.getByRole('radio', { name: 'Oxygen' }).isChecked(), true);
  await assertAccessible(page);
  await page.getByRole('button', { name: 'Change answer' }).click();
  await page.getByRole('radio', { name: 'Water' }).check();
  await send(page).click();
  assert.deepEqual((await presenter.next('questionResponse')).value.optionAnswers, [{ activityOptionId: 'B' }]);
  await sent(page);
  assert.equal(await page.getByText('Not quite.').count(), 0);
});

check('passage, hint and the picture behind a question are there to be read', async (t) => {
  const { presenter, page } = await lesson(t);
  const backgroundImage = "url('data:image/svg+xml,%3Csvg xmlns=\"http://www.w3.org/2000/svg\" width=\"40\" height=\"20\"/%3E')";
  presenter.ask({ id: 'q', type: 'text', instructions: 'What is it?', passage: 'A long passage.', hint: 'It is green.', card: { styles: { backgroundImage } } });
  await page.getByText('A long passage.').waitFor();
  const image = page.getByRole('img', { name: 'Picture to this question' });
  await image.waitFor();
  assert.equal(await image.evaluate((element) => element.naturalWidth), 40);
  await page.getByText('Hint').click();
  await page.getByText('It is green.').waitFor();
  await assertAccessible(page);
});

check('at twice the size of text nothing sticks out of a narrow telephone', async (t) => {
  const { presenter, page } = await lesson(t, { ...PHONE, viewport: { width: 360, height: 640 }, name: 'Annabella' });
  await page.evaluate(() => { document.documentElement.style.fontSize = '200%'; });
  const activityOptions = withTexts({ A: 'Photosynthesis', B: 'Root' });
  for (const type of ['sort', 'multiple', 'math formula']) {
    presenter.ask({ id: type, type, instructions: type, activityOptions: type === 'math formula' ? [] : activityOptions });
    await heading(page, type);
    assert.equal(await page.evaluate(() => document.documentElement.scrollWidth), 360, type);
  }
  const [code, leave] = await Promise.all([page.locator('.who-code').boundingBox(), page.getByRole('button', { name: 'Leave' }).boundingBox()]);
  assert.ok(code.x + code.width <= leave.x || code.y + code.height <= leave.y, 'the code is not below the button');
});
