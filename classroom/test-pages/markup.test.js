// Whatever is typed, here or by the presenter, is shown letter by letter: it never becomes a part of the page.

import assert from 'node:assert/strict';
import { after } from 'node:test';
import { closeBrowser } from './support/browser.js';
import { check } from './support/check.js';
import { field, heading, joinLearner, lesson, send, sent, teach, withTexts } from './support/class.js';

after(closeBrowser);

const EVIL = '<img src=x onerror="document.title=1"><b>&amp;</b><script>document.title=2</script>';

// As one text on the page, and no element that any of it could have made.
async function assertPlain(page, place) {
  await page.locator(place).getByText(EVIL, { exact: true }).first().waitFor();
  assert.equal(await page.locator('img[src="x"], main b, main script, dialog b, header b').count(), 0);
}

check('a name', async (t) => {
  const room = await teach(t);
  const name = EVIL.slice(0, 60);
  const { page } = await joinLearner(t, room, { name });
  await page.locator('header').getByText(name, { exact: true }).waitFor();
  assert.equal(await page.locator('img[src="x"]').count(), 0);
  await page.getByRole('button', { name: 'Leave' }).click();
  await page.getByRole('button', { name: `Go on as ${name} in ${room.presenter.code.replace(/^.../, '$& ')}`, exact: true }).waitFor();
});

check('an answer, and what the presenter has it to say', async (t) => {
  const { presenter, page } = await lesson(t);
  presenter.ask({ id: 'q', type: 'text', instructions: EVIL, passage: EVIL, hint: EVIL });
  await assertPlain(page, 'h1');
  await assertPlain(page, '.passage');
  await page.getByText('Hint', { exact: true }).click();
  await assertPlain(page, 'details');
  await field(page, 'Your answer').fill(EVIL);
  await send(page).click();
  await sent(page);
  assert.equal((await presenter.next('questionResponse')).value.answer, EVIL);
  presenter.publish('pollStop', 'p');
  await heading(page, 'This question is closed');
  await assertPlain(page, 'main');
});

check('options, in a choice and in an order', async (t) => {
  const { presenter, page } = await lesson(t);
  const activityOptions = withTexts({ A: EVIL, B: 'B' });
  presenter.ask({ id: 'q1', type: 'multiple', numberOfCorrectOptions: 1, activityOptions });
  await assertPlain(page, '.option-text');
  presenter.ask({ id: 'q2', type: 'sort', activityOptions });
  await assertPlain(page, '.order-text');
});

check('a formula that cannot be one', async (t) => {
  const { presenter, page } = await lesson(t);
  presenter.ask({ id: 'q', type: 'math formula' });
  await field(page, 'Your formula').fill(EVIL);
  await page.locator('.preview math').waitFor();
  assert.equal(await page.locator('.preview :not(math, math *)').count(), 0);
  const bare = (text) => text.replace(/\s/g, '');
  assert.equal(bare(await page.locator('.preview').textContent()), bare(EVIL));
});

check('dialogs, reviews, and the titles of assessments', async (t) => {
  const { presenter, page } = await lesson(t);
  presenter.publishObject('dialogShow', { text: EVIL, isDismissible: true });
  await assertPlain(page, 'dialog');
  presenter.publishObject('questionSetReview', { text: EVIL, showNavigation: true });
  await assertPlain(page, 'h1');
  presenter.publishObject('assessmentStart', { assessmentToken: 'a', questionCount: 2, title: EVIL, description: EVIL });
  await assertPlain(page, '.bar-title');
  await page.getByText('About this assessment').click();
  await assertPlain(page, '.bar details');
});
