import assert from 'node:assert/strict';
import { after } from 'node:test';
import { check } from './support/check.js';
import { assertAccessible } from './support/accessible.js';
import { closeBrowser } from './support/browser.js';
import { field, heading, joinLearner, lesson, options, send, sent, teach } from './support/class.js';
import { press } from './support/keyboard.js';
import { PNG, asDataUri, card, upload } from './support/pictures.js';

after(closeBrowser);

const status = (page, text) => page.getByRole('status').filter({ hasText: text }).waitFor();
const focused = (page) => page.evaluate(() => document.activeElement.textContent || document.activeElement.id);

check('paused learners cannot answer; what they had begun is there when they go on', async (t) => {
  const { presenter, page } = await lesson(t);
  presenter.ask({ id: 'q', type: 'word-seed', instructions: 'Which word?' });
  await field(page, 'Your word or short phrase').fill('half a w');
  presenter.publish('pause', 'p');
  await status(page, 'Your teacher has paused this.');
  assert.equal(await send(page).isDisabled(), true);
  assert.equal(await field(page, 'Your word or short phrase').isDisabled(), true);
  assert.equal(await focused(page), 'Which word?');
  await assertAccessible(page);
  presenter.publish('resume', 'p');
  await page.getByText('Your teacher has paused this.').waitFor({ state: 'detached' });
  await page.keyboard.type('ord');
  await press(page, 'Enter');
  assert.equal((await presenter.next('questionResponse')).value.answer, 'half a word');
});

check('a stopped question is closed, with the answer that was given or without', async (t) => {
  const { presenter, page } = await lesson(t);
  presenter.ask({ id: 'q1', type: 'scale', activityOptions: options('0', '1'), metadata: { ordinalType: 'confidence' } });
  await page.getByRole('radio', { name: 'Not confident' }).check();
  await send(page).click();
  await sent(page);
  presenter.publish('pollStop', 'p');
  await heading(page, 'This question is closed');
  await page.getByText('Not confident').waitFor();
  await assertAccessible(page);
  presenter.ask({ id: 'q2', type: 'text' });
  await send(page).waitFor();
  presenter.publish('pollStop', 'p');
  await page.getByText('You have not answered it.').waitFor();
});

check('a question that is about to close counts down; what was begun stays to be read', async (t) => {
  const { presenter, page } = await lesson(t);
  presenter.ask({ id: 'q', type: 'word-seed', instructions: 'Which word?' });
  await field(page, 'Your word or short phrase').fill('half a w');
  presenter.publishObject('countdown', { id: 'q', seconds: 30 });
  await page.getByRole('timer').filter({ hasText: /^Closes in (30|29) s$/ }).waitFor();
  await status(page, 'This question closes in 30 seconds.');
  await assertAccessible(page);
  await page.getByRole('timer').filter({ hasText: /^Closes in 2[0-8] s$/ }).waitFor();
  presenter.publish('pollStop', 'q');
  await heading(page, 'This question is closed');
  await page.getByText('Begun, and not sent').waitFor();
  await page.getByText('half a w').waitFor();
});

check('results are bars that say what is right', async (t) => {
  const { presenter, page } = await lesson(t);
  const bars = [{ title: 'A Oxygen', count: 3, isCorrect: false }, { title: 'B Carbon dioxide', count: 12, isCorrect: true }];
  presenter.publishObject('dialogShow', { text: 'B: 12', isDismissible: true, results: { text: 'Your answer is right.', bars } });
  await heading(page, 'How it came out');
  await page.getByText('Your answer is right.').waitFor();
  assert.deepEqual(await page.getByRole('listitem').allInnerTexts(), ['A Oxygen\n3', 'B Carbon dioxide\nright\n12']);
  assert.equal(await focused(page), 'How it came out');
  await assertAccessible(page);
  await page.reload();
  await heading(page, 'How it came out');
});

check('a dialog that may be dismissed is closed with its button or with Escape', async (t) => {
  const { presenter, page } = await lesson(t);
  for (const close of [() => page.getByRole('button', { name: 'OK' }).click(), () => press(page, 'Escape')]) {
    presenter.publishObject('dialogShow', { text: 'Well done', isDismissible: true });
    await page.getByRole('dialog', { name: 'Well done' }).waitFor();
    await assertAccessible(page);
    await close();
    await page.getByRole('dialog').waitFor({ state: 'hidden' });
    assert.equal(await focused(page), 'You are in');
  }
});

check('a dialog that may not be dismissed stays, whatever is pressed, until something else comes', async (t) => {
  const { presenter, page } = await lesson(t);
  presenter.publishObject('dialogShow', { text: 'Look to the front', isDismissible: false });
  const dialog = page.getByRole('dialog', { name: 'Look to the front' });
  await dialog.waitFor();
  await assertAccessible(page);
  await press(page, 'Escape', 3);
  await press(page, 'Enter');
  assert.equal(await dialog.isVisible(), true);
  assert.equal(await page.getByRole('button', { name: 'OK' }).count(), 0);
  presenter.publishObject('dialogShow', { text: 'Another', isDismissible: true });
  await page.getByRole('dialog', { name: 'Another' }).waitFor();
  presenter.ask({ id: 'q', type: 'text' });
  await dialog.waitFor({ state: 'hidden' });
  await heading(page, 'Write your answer');
});

check('a card shows its picture, from a data URI and from the service', async (t) => {
  const { url, presenter, page } = await lesson(t);
  const path = await upload(presenter.host, PNG);
  const image = page.getByRole('img', { name: 'Card from your teacher' });
  for (const reference of [asDataUri(PNG), path, `http://localhost:1${path}`, `${url}${path}`]) {
    presenter.publish('showCard', card(reference), '.learner');
    await page.waitForFunction((wanted) => document.querySelector('.card img')?.src.endsWith(wanted), reference.replace(/^http.*?(?=\/t)/, ''));
    await image.evaluate((element) => element.decode());
    assert.equal(await image.evaluate((element) => element.naturalWidth), 2, reference);
  }
  await assertAccessible(page);
});

check('a picture that is elsewhere, or none, is not loaded and leaves a sentence', async (t) => {
  const { presenter, page } = await lesson(t);
  page.mayFail = true;
  const asked = [];
  page.on('request', (request) => asked.push(request.url()));
  presenter.publish('showCard', card('http://elsewhere.example/x.png'), '.learner');
  await page.getByText('The picture cannot be shown here.').waitFor();
  await assertAccessible(page);
  presenter.publish('showCard', card(''), '.learner');
  await page.getByText('There is nothing on this card.').waitFor();
  presenter.publish('showCard', card('/tavisto/resource/downloadResourceFile?resourceId=none'), '.learner');
  await page.getByText('The picture cannot be shown here.').waitFor();
  assert.deepEqual(asked.filter((one) => one.includes('elsewhere')), []);
});

check('a large picture is announced and then shown', async (t) => {
  const { presenter, page } = await lesson(t);
  presenter.publish('heavy', '%0', '.learner');
  await status(page, 'A large picture is on its way.');
  // Bytes after the end of a PNG are no harm to it.
  presenter.publish('showCard', card(asDataUri(Buffer.concat([PNG, Buffer.alloc(600000)]))), '.learner');
  await page.getByRole('img', { name: 'Card from your teacher' }).waitFor();
  await page.getByText('A large picture is on its way.').waitFor({ state: 'detached' });
});

check('behind a card the open question waits', async (t) => {
  const { presenter, page } = await lesson(t);
  presenter.ask({ id: 'q', type: 'word-seed' });
  await field(page, 'Your word or short phrase').fill('begun');
  presenter.publish('showCard', card(asDataUri(PNG)), '.learner');
  await page.getByRole('button', { name: 'Back to the question' }).click();
  assert.equal(await field(page, 'Your word or short phrase').inputValue(), 'begun');
});

check('what cannot be read is passed over', async (t) => {
  const { presenter, page } = await lesson(t);
  page.mayFail = true;
  for (const data of [['AAAA'], 'no base64!', [], null, 5, [5]]) {
    presenter.bus.publish(presenter.token, { from: 'x', type: 'questionStart', data });
  }
  for (const body of [null, 'text', { type: 'constructor', data: 'AAAA' }, { type: 5 }]) presenter.bus.publish(presenter.token, body);
  presenter.publish('dialogShow', null);
  presenter.ask({ id: 'q', type: 'text' });
  await heading(page, 'Write your answer');
});

check('the end of the session ends the page, with or without a goodbye', async (t) => {
  const room = await teach(t);
  const { page } = await joinLearner(t, room);
  await room.presenter.stop();
  await heading(page, 'This session has ended');
  await assertAccessible(page);
  await page.reload();
  await heading(page, 'Join your class');
  assert.equal(await page.getByRole('button', { name: /^Go on as/ }).count(), 0);

  const another = await teach(t);
  const { page: second } = await joinLearner(t, another);
  await another.presenter.host.stop(another.presenter.token);
  await heading(second, 'This session has ended');
});

check('one learner is sent away, the other stays', async (t) => {
  const room = await teach(t);
  const [ann, bob] = [await joinLearner(t, room), await joinLearner(t, room, { name: 'Bob' })];
  room.presenter.publish('disconnect', '', `.user.${ann.token}`);
  await heading(ann.page, 'You have been taken out');
  const { client } = await room.presenter.bus.nextBody((body) => body.action === 'unregister');
  assert.equal(client.token, ann.token);
  room.presenter.ask({ id: 'q', type: 'text' });
  await heading(bob.page, 'Write your answer');
  assert.equal(await ann.page.getByRole('heading', { level: 1 }).innerText(), 'You have been taken out');
});
