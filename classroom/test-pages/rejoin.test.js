import assert from 'node:assert/strict';
import { after } from 'node:test';
import { check } from './support/check.js';
import { assertAccessible } from './support/accessible.js';
import { closeBrowser, openContext, openPage } from './support/browser.js';
import { field, heading, joinLearner, lesson, send, sendForm, sent, teach } from './support/class.js';
import { openWire } from '../test/support/wire.js';

after(closeBrowser);

const LOST = 'The connection is lost. It is being made again';
const WORD = 'Your word or short phrase';

/** The learners whom the service knows to be there. */
async function learnersOf({ host, token }) {
  const { users } = await host.data('/tavisto/session/getusers', { sessionToken: token });
  return users.filter(({ mode }) => mode === 'learner').map(({ userToken, userName }) => ({ userToken, userName }));
}

check('after a reload a learner is who it was, with what it had begun', async (t) => {
  const { presenter, page, token } = await lesson(t);
  presenter.ask({ id: 'q', type: 'word-seed', instructions: 'Which word?' });
  await field(page, WORD).fill('begun');
  await page.reload();
  await heading(page, 'Which word?');
  assert.equal(await field(page, WORD).inputValue(), 'begun');
  const { from, value } = await presenter.next('join');
  assert.deepEqual([from, value.userName], [token, 'Ann']);
  assert.deepEqual(await learnersOf(presenter), [{ userToken: token, userName: 'Ann' }]);
  await send(page).click();
  assert.deepEqual((await presenter.next('questionResponse')).from, token);
  await sent(page);
  await page.reload();
  await sent(page);
});

check('what was begun is offered again when the lesson itself was too large to be kept', async (t) => {
  const { presenter, page, token } = await lesson(t);
  const ask = () => presenter.ask({ id: 'q', type: 'word-seed', passage: 'x'.repeat(6e6) }, `.user.${token}`);
  ask();
  await field(page, WORD).fill('begun');
  await page.reload();
  await presenter.next('join');
  ask();
  await field(page, WORD).waitFor();
  assert.equal(await field(page, WORD).inputValue(), 'begun');
});

check('a question that is put again while nobody can hear it is there after a reload', async (t) => {
  const { presenter, page, token } = await lesson(t);
  await page.reload();
  await presenter.next('join');
  presenter.ask({ id: 'q', type: 'word-seed', instructions: 'Which word?' }, `.user.${token}`);
  await heading(page, 'Which word?');
});

check('a dropped connection is made again, as the same learner, and nothing begun is lost', async (t) => {
  const room = await teach(t);
  const wire = await openWire(t, room.url);
  const { page, token } = await joinLearner(t, room, { at: wire.url });
  const { presenter } = room;
  page.mayFail = true;
  presenter.ask({ id: 'q', type: 'word-seed' });
  await field(page, WORD).fill('be');
  wire.cut();
  await page.getByRole('status').filter({ hasText: LOST }).waitFor();
  assert.equal((await presenter.bus.nextBody((body) => body.action === 'unregister')).client.token, token);
  await assertAccessible(page);
  await field(page, WORD).fill('begun');
  await send(page).click();
  await page.getByRole('alert').filter({ hasText: 'Your answer has not gone out' }).waitFor();
  await assertAccessible(page);
  wire.mend();
  await page.getByText(LOST).waitFor({ state: 'detached' });
  assert.equal((await presenter.next('join')).from, token);
  assert.deepEqual((await learnersOf(presenter)).map(({ userToken }) => userToken), [token]);
  await send(page).click();
  const { from, value } = await presenter.next('questionResponse');
  assert.deepEqual([from, value.answer], [token, 'begun']);
});

check('an answer that is lost on a frozen link goes out again when there is another', async (t) => {
  const room = await teach(t);
  const wire = await openWire(t, room.url);
  const { page, token } = await joinLearner(t, room, { at: wire.url });
  const { presenter } = room;
  page.mayFail = true;
  presenter.ask({ id: 'q', type: 'word-seed' });
  await field(page, WORD).fill('leaf');
  wire.freeze();
  await send(page).click();
  await page.getByText(LOST).waitFor();
  wire.mend();
  const { from, value } = await presenter.next('questionResponse');
  assert.deepEqual([from, value.answer], [token, 'leaf']);
  await page.getByText(LOST).waitFor({ state: 'detached' });
  await sent(page);
});

check('a learner is in when the class knows of it, and not before', async (t) => {
  const room = await teach(t);
  const wire = await openWire(t, room.url);
  const page = await openPage(t, await openContext(t));
  await page.goto(`${wire.url}/?code=${room.presenter.code}`);
  page.mayFail = true;
  await page.route('**/eventbus/info*', (route) => {
    wire.freeze();
    return route.continue();
  }, { times: 1 });
  await sendForm(page, { name: 'Ann' });
  await page.getByText(LOST).waitFor();
  assert.equal(await page.getByText('You are in').count(), 0);
  wire.mend();
  await heading(page, 'You are in');
  assert.equal((await room.presenter.next('join')).value.userName, 'Ann');
});

check('a session that has ended while the connection was lost is over', async (t) => {
  const room = await teach(t);
  const wire = await openWire(t, room.url);
  const { page } = await joinLearner(t, room, { at: wire.url });
  page.mayFail = true;
  wire.cut();
  await page.getByText(LOST).waitFor();
  await room.presenter.stop();
  wire.mend();
  await heading(page, 'This session has ended');
});

check('a learner who has left may go on in the same place', async (t) => {
  const { presenter, page, token } = await lesson(t);
  await page.getByRole('button', { name: 'Leave' }).click();
  await heading(page, 'Join your class');
  assert.equal((await presenter.bus.nextBody((body) => body.action === 'unregister')).client.token, token);
  await assertAccessible(page);
  await page.getByRole('button', { name: `Go on as Ann in ${presenter.code.replace(/^.../, '$& ')}`, exact: true }).click();
  await heading(page, 'You are in');
  assert.equal((await presenter.next('join')).from, token);
});

check('a closed tab comes back to its place; another learner in it gets a place of its own', async (t) => {
  const { url, presenter, page, context, token } = await lesson(t);
  await page.close();
  const again = await openPage(t, context);
  await again.goto(`${url}/?code=${presenter.code}`);
  await again.getByRole('button', { name: /^Go on as Ann/ }).click();
  assert.equal((await presenter.next('join')).from, token);
  const other = await openPage(t, context);
  await other.goto(`${url}/?code=${presenter.code}`);
  await field(other, 'Your name').fill('Bob');
  await other.getByRole('button', { name: 'Join', exact: true }).click();
  const { from, value } = await presenter.next('join');
  assert.equal(value.userName, 'Bob');
  assert.notEqual(from, token);
  assert.equal((await learnersOf(presenter)).length, 2);
});

check('of two windows with one place the later one has it, and the earlier one can take it back', async (t) => {
  const { url, presenter, page, context, token } = await lesson(t);
  const second = await openPage(t, context);
  await second.goto(`${url}/?code=${presenter.code}`);
  await second.getByRole('button', { name: /^Go on as Ann/ }).click();
  await heading(page, 'You have gone on elsewhere');
  await assertAccessible(page);
  assert.equal((await presenter.next('join')).from, token);
  await page.getByRole('button', { name: 'Go on here' }).click();
  await heading(second, 'You have gone on elsewhere');
  await heading(page, 'You are in');
  assert.equal((await presenter.next('join')).from, token);
  assert.equal((await learnersOf(presenter)).length, 1);
});

check('a link to another session is followed, whatever place there was', async (t) => {
  const { url, page } = await lesson(t);
  await page.goto(`${url}/?code=654321`);
  await heading(page, 'Join your class');
  assert.equal(await field(page, 'Session code').inputValue(), '654321');
});

check('a codec that could not be loaded is loaded for the next message', async (t) => {
  const { url, presenter } = await teach(t);
  const context = await openContext(t);
  await context.route('**/vendor/lzma.js', (route) => route.abort(), { times: 1 });
  const page = await openPage(t, context);
  page.mayFail = true;
  await page.goto(`${url}/?code=${presenter.code}`);
  const failed = page.waitForEvent('console', (message) => message.text().startsWith('A "join" cannot be sent'));
  await sendForm(page, { name: 'Ann' });
  await failed;
  presenter.ask({ id: 'q', type: 'word-seed' });
  await field(page, WORD).fill('begun');
  await send(page).click();
  assert.equal((await presenter.next('questionResponse')).value.answer, 'begun');
});
