import assert from 'node:assert/strict';
import { after } from 'node:test';
import { ADD_IMAGE, ASKED_AT_ONCE, GROUPS, STOP } from '../public/js/controller/commands.js';
import { assertAccessible } from './support/accessible.js';
import { PHONE, closeBrowser, openContext, openPage } from './support/browser.js';
import { check } from './support/check.js';
import { heading, teach } from './support/class.js';
import { codeField, command, joinController, stateOf, told } from './support/controller.js';
import { press, tabTo } from './support/keyboard.js';
import { PNG } from './support/pictures.js';
import { openWire } from '../test/support/wire.js';

after(closeBrowser);

const COMMANDS = GROUPS.flatMap(({ commands }) => commands);

/** A class with a remote control, which has asked what it asks at once; with the wire between them when that is wanted. */
async function control(t, { hasWire = false, ...options } = {}) {
  const room = await teach(t);
  const wire = hasWire ? await openWire(t, room.url) : null;
  const joined = await joinController(t, wire?.url ?? room.url, room.presenter.code, options);
  const [{ from }] = await askedAtOnce(room);
  room.presenter.publish('presenterIsActive', '%0', '.controller');
  await stateOf(joined.page, 'Presenter', 'is there');
  return { ...room, ...joined, wire, token: from };
}

const TYPES = [...COMMANDS, ADD_IMAGE, STOP].map(({ type }) => type);
// The presenter hears its own "pause" as well.
const nextCommand = ({ presenter, token }) => presenter.bus.nextBody(({ from, type }) => from === token && TYPES.includes(type));

async function askedAtOnce(room) {
  const asked = [];
  for (const type of ASKED_AT_ONCE) asked.push(await room.presenter.bus.nextBody((body) => body.type === type));
  return asked;
}

const tellCard = (presenter, currentCard, totalCards, cards = []) => presenter.publish('currentCard',
  { currentCard: String(currentCard), totalCards: String(totalCards), cards }, '.controller');

// What a presenter does at each command, and what the page says then.
const OUTCOMES = {
  previousCard: [(presenter) => tellCard(presenter, 1, 3), 'Card 1 of 3, the first'],
  nextCard: [(presenter) => tellCard(presenter, 2, 3), 'Card 2 of 3'],
  pushCurrentCard: [(presenter) => presenter.publish('showCard', { components: [] }, '.learner'), 'The card is shown'],
  pause: [(presenter) => presenter.publish('pause', 'p'), 'Paused'],
  resume: [(presenter) => presenter.publish('resume', 'p'), 'Resumed'],
  lockAll: [(presenter) => presenter.publishObject('dialogShow', { text: 'Look here' }), 'All devices are locked'],
  unlockAll: [(presenter) => presenter.publishObject('dialogShow', { text: 'Go on', isDismissible: true }), 'All devices are unlocked'],
  presenterActive: [(presenter) => presenter.publish('presenterIsActive', '%0', '.controller'), 'The presenter is there'],
  requestLessonInfo: [(presenter) => presenter.publish('currentLesson', { name: 'Leaves' }, '.controller'), 'The lesson is “Leaves”'],
  requestLesson: [(presenter) => tellCard(presenter, 3, 3), 'Card 3 of 3, the last'],
};

const pictureFile = { name: 'leaf.png', mimeType: 'image/png', buffer: PNG };

check('a remote control joins by code alone, with the keyboard, and asks what there is', async (t) => {
  const room = await teach(t);
  const page = await openPage(t, await openContext(t));
  await page.goto(`${room.url}/controller`);
  await assertAccessible(page);
  await tabTo(page, codeField(page));
  await page.keyboard.type(room.presenter.code);
  await press(page, 'Enter');
  await heading(page, 'No lesson yet');
  const { client } = await room.presenter.bus.nextBody((body) => body.action === 'register');
  assert.equal(client.type, 'controller');
  assert.deepEqual((await askedAtOnce(room)).map(({ from }) => from), ASKED_AT_ONCE.map(() => client.token));
  await assertAccessible(page);
});

check('each command goes out from a tap on a telephone, and what came of it is told', async (t) => {
  const room = await control(t, PHONE);
  const { page } = room;
  for (const { type, label, said } of COMMANDS) {
    await command(page, label).tap();
    assert.equal((await nextCommand(room)).type, type);
    await told(page, `${said}: waiting for the presenter …`);
    const [answer, words] = OUTCOMES[type];
    answer(room.presenter);
    await told(page, words);
    await page.getByRole('status').filter({ hasText: words }).waitFor({ state: 'attached' });
  }
  await assertAccessible(page);
});

check('each command goes out with the keyboard alone', async (t) => {
  const room = await control(t);
  for (const { type, label } of COMMANDS) {
    await tabTo(room.page, command(room.page, label));
    await press(room.page, 'Enter');
    assert.equal((await nextCommand(room)).type, type);
  }
});

check('a picture is added as a card; what is no picture is not', async (t) => {
  const { page, presenter } = await control(t);
  const [chooser] = await Promise.all([page.waitForEvent('filechooser'), command(page, ADD_IMAGE.label).click()]);
  await chooser.setFiles(pictureFile);
  const { value } = await presenter.next('addImageCard');
  assert.equal(value.name, 'leaf.png');
  assert.match(value.url, /^data:image\/jpeg;base64,/);
  tellCard(presenter, 1, 1);
  await told(page, 'The picture is the last card');
  const [second] = await Promise.all([page.waitForEvent('filechooser'), command(page, ADD_IMAGE.label).click()]);
  await second.setFiles({ ...pictureFile, buffer: Buffer.from('no picture') });
  await told(page, 'This file is no picture that can be read.');
  const [third] = await Promise.all([page.waitForEvent('filechooser'), command(page, ADD_IMAGE.label).click()]);
  await third.setFiles(pictureFile);
  await presenter.next('addImageCard');
  tellCard(presenter, 1, 1);
  await told(page, 'The picture was not taken');
});

check('the session is stopped only after a second question', async (t) => {
  const room = await control(t);
  const { page } = room;
  const dialog = page.getByRole('dialog', { name: 'End the session for everyone?' });
  for (const change of [() => press(page, 'Escape'), () => dialog.getByRole('button', { name: 'Cancel' }).click()]) {
    await command(page, STOP.label).click();
    await dialog.waitFor();
    await assertAccessible(page);
    await change();
    await dialog.waitFor({ state: 'detached' });
  }
  await command(page, 'Next').click();
  assert.equal((await nextCommand(room)).type, 'nextCard');
  await command(page, STOP.label).click();
  await dialog.getByRole('button', { name: STOP.label }).click();
  assert.equal((await nextCommand(room)).type, 'stopSession');
  await room.presenter.stop();
  await heading(page, 'This session has ended');
  await assertAccessible(page);
});

check('lesson, card and presence show as text, and a screen reader is told', async (t) => {
  const { page, presenter } = await control(t);
  presenter.publish('currentLesson', { lessonId: 'l-1', name: '<b>Leaves</b> & light' }, '.controller');
  await heading(page, '<b>Leaves</b> & light');
  assert.equal(await page.getByText('l-1').count(), 0, 'an id says nothing to anybody');
  tellCard(presenter, 2, 3, [{ name: '1' }, { name: 'A root' }, { name: '3' }]);
  await stateOf(page, 'Card', '2 of 3: A root');
  await page.getByRole('status').filter({ hasText: '2 of 3: A root' }).waitFor({ state: 'attached' });
  await assertAccessible(page);
  tellCard(presenter, 0, 0);
  await stateOf(page, 'Card', 'no cards');
  for (const label of ['Previous', 'Next', 'Push this card to the learners']) assert.ok(await command(page, label).isDisabled(), label);
  await assertAccessible(page);
});

check('a presenter that does not answer is silent until it does', async (t) => {
  const { page, presenter } = await control(t, { prepare: (context) => context.clock.install() });
  await command(page, 'Pause').click();
  await told(page, 'Pause: waiting for the presenter …');
  await page.clock.runFor(6000);
  await told(page, 'Pause: no answer from the presenter yet');
  presenter.publish('pause', 'p');
  await told(page, 'Paused');
  // It is asked again by itself, and its silence is noticed.
  await page.clock.runFor(36000);
  await stateOf(page, 'Presenter', 'does not answer');
  for (const label of ['Next', 'Pause', 'Lock all', ADD_IMAGE.label, STOP.label]) assert.ok(await command(page, label).isDisabled(), label);
  await command(page, 'Pause').click({ force: true });
  await told(page, 'The presenter does not answer');
  await assertAccessible(page);
  await command(page, 'Is the presenter there?').click();
  presenter.publish('presenterIsActive', '%0', '.controller');
  await told(page, 'The presenter is there');
  assert.ok(await command(page, 'Pause').isEnabled());
});

check('after a reload the remote control is who it was', async (t) => {
  const room = await control(t);
  await room.page.reload();
  const asked = await askedAtOnce(room);
  assert.ok(asked.every(({ from }) => from === room.token));
  await heading(room.page, 'No lesson yet');
});

check('a dropped connection is made again, and until then no command can be given', async (t) => {
  const room = await control(t, { hasWire: true });
  const { page, wire, token } = room;
  page.mayFail = true;
  wire.cut();
  await page.getByText('The connection is lost.').waitFor();
  await command(page, 'Next').click({ force: true });
  await told(page, 'There is no connection');
  assert.ok(await command(page, 'Is the presenter there?').isDisabled());
  await assertAccessible(page);
  wire.mend();
  assert.equal((await askedAtOnce(room))[0].from, token);
  await page.getByText('The connection is lost.').waitFor({ state: 'detached' });
  await command(page, 'Next').click();
  assert.equal((await nextCommand(room)).type, 'nextCard');
});
