import assert from 'node:assert/strict';
import { after } from 'node:test';
import { check } from './support/check.js';
import { startClassroom, startSession, Host } from '../test/support/classroom.js';
import { assertAccessible } from './support/accessible.js';
import { PHONE, closeBrowser, openContext, openPage } from './support/browser.js';
import { field, heading, joinLearner, send, sendForm, sent, teach } from './support/class.js';
import { press, tabTo } from './support/keyboard.js';

after(closeBrowser);

const alert = (page, text) => page.getByRole('alert').filter({ hasText: text }).waitFor();

check('a learner joins by code and name, and the presenter hears of it', async (t) => {
  const { url, presenter } = await teach(t);
  const page = await openPage(t, await openContext(t));
  await page.goto(url);
  await assertAccessible(page);
  const { code } = presenter;
  await sendForm(page, { code: `${code.slice(0, 3)} ${code.slice(3)}`, name: '  Zoë 🌱 ' });
  await heading(page, 'You are in');
  const { from, value } = await presenter.next('join');
  assert.deepEqual(value, { userName: 'Zoë 🌱', deviceType: 'laptop' });
  const { client } = await presenter.bus.nextBody((body) => body.action === 'register');
  assert.deepEqual(client, { token: from, type: 'user' });
  assert.equal(await page.title(), 'Waiting – Classroom');
  await assertAccessible(page);
});

check('the code comes with the link, and a telephone says that it is one', async (t) => {
  const { url, presenter } = await teach(t);
  const page = await openPage(t, await openContext(t, PHONE));
  await page.goto(`${url}/?code=${presenter.code}`);
  assert.equal(await field(page, 'Session code').inputValue(), presenter.code);
  await sendForm(page, { name: 'Ann' });
  assert.equal((await presenter.next('join')).value.deviceType, 'phone');
});

check('the page speaks the language of the browser', async (t) => {
  const { url, presenter } = await teach(t);
  for (const [locale, name, isIn] of [['de-CH', 'Dein Name', 'Du bist dabei'], ['fr-FR', 'Ton nom', 'Tu y es']]) {
    const page = await openPage(t, await openContext(t, { ...PHONE, locale }));
    await page.goto(`${url}/?code=${presenter.code}`);
    assert.equal(await page.evaluate(() => document.documentElement.lang), locale.slice(0, 2));
    await assertAccessible(page);
    await field(page, name).fill('Ann');
    await page.keyboard.press('Enter');
    await heading(page, isIn);
    await assertAccessible(page);
  }
});

check('a learner joins with the keyboard alone', async (t) => {
  const { url, presenter } = await teach(t);
  const page = await openPage(t, await openContext(t));
  await page.goto(url);
  await tabTo(page, field(page, 'Session code'));
  await page.keyboard.type(presenter.code);
  await press(page, 'Tab');
  await page.keyboard.type('Ann');
  await press(page, 'Enter');
  assert.equal((await presenter.next('join')).value.userName, 'Ann');
  await heading(page, 'You are in');
  assert.equal(await page.evaluate(() => document.activeElement.textContent), 'You are in');
});

check('the form says what is missing, and goes there', async (t) => {
  const { url } = await startClassroom(t);
  const page = await openPage(t, await openContext(t));
  await page.goto(url);
  await sendForm(page, { code: '12345', name: '   ' });
  await page.getByText('The code has six digits.').waitFor();
  await page.getByText('Your teacher needs a name to call you by.').waitFor();
  assert.equal(await page.evaluate(() => document.activeElement.id), 'code');
  assert.equal(await field(page, 'Session code').getAttribute('aria-invalid'), 'true');
  await assertAccessible(page);
});

check('a join that is refused is explained, and can be tried again', async (t) => {
  const { url, classroom } = await startClassroom(t);
  const host = new Host(url);
  await host.logIn();
  const notStarted = await host.createSession();
  const page = await openPage(t, await openContext(t));
  // A reply with an error status is a line in the browser's log.
  page.mayFail = true;
  await page.goto(url);
  await sendForm(page, { code: '000000', name: 'Ann' });
  await alert(page, 'There is no session with this code.');
  await assertAccessible(page);
  await sendForm(page, { code: notStarted, name: 'Ann' });
  await alert(page, 'has not been started yet');
  const { code } = await startSession(url);
  await sendForm(page, { code, name: 'Ann' });
  await heading(page, 'You are in');
  await page.getByRole('button', { name: 'Leave' }).click();
  await classroom.close();
  await sendForm(page, { code, name: 'Ann' });
  await alert(page, 'The classroom cannot be reached.');
});

check('nothing is loaded from elsewhere, and nothing is asked of the browser that its policy forbids', async (t) => {
  const { url, presenter } = await teach(t);
  const context = await openContext(t);
  const asked = [];
  context.on('request', (request) => asked.push(new URL(request.url()).origin));
  const page = await openPage(t, context);
  await page.goto(`${url}/?code=${presenter.code}`);
  await sendForm(page, { name: 'Ann' });
  await heading(page, 'You are in');
  presenter.ask({ id: 'q', type: 'text' });
  await field(page, 'Your answer').fill('x');
  await send(page).click();
  await sent(page);
  assert.deepEqual([...new Set(asked)], [url]);
});

check('where WebSockets are refused the page gets through all the same', async (t) => {
  const room = await teach(t, { websocket: false });
  const { page } = await joinLearner(t, room);
  room.presenter.ask({ id: 'q', type: 'word-seed' });
  await field(page, 'Your word or short phrase').fill('x');
  await send(page).click();
  assert.equal((await room.presenter.next('questionResponse')).value.answer, 'x');
});
