// The pages with the real library: calyx-presenter puts the questions, and counts what is answered on the page.

import assert from 'node:assert/strict';
import { after } from 'node:test';
import { fileURLToPath } from 'node:url';
import { ADD_IMAGE, ASKED_AT_ONCE, GROUPS, STOP } from '../public/js/controller/commands.js';
import { check } from './support/check.js';
import { closeBrowser } from './support/browser.js';
import { field, heading, send, sent } from './support/class.js';
import { command, joinController, stateOf } from './support/controller.js';
import { learnerOf, teachWithLibrary } from './support/host.js';

after(closeBrowser);

const pick = (...names) => async (page) => {
  for (const name of names) await page.getByLabel(name, { exact: true }).check();
};
const write = (label, text) => (page) => field(page, label).fill(text);

async function lastFirst(page) {
  await page.getByRole('button', { name: 'Move C up' }).click();
  await page.getByRole('button', { name: 'Move C up' }).click();
}

// What the host is told to put, how it is answered on the page, and what the host has then counted.
const POLLS = [
  ['true-false', pick('False'), ['B False']],
  ['yes-no-other', pick('Yes'), ['A Yes']],
  ['yes-no-other', pick('Other'), ['? Other']],
  ['multiple alpha-upper 5', pick('D'), ['D']],
  ['multiple alpha-lower 4 2', pick('a', 'c'), ['a', 'c']],
  ['scale number 5', pick('4'), ['4']],
  ['sort alpha-upper 3', lastFirst, ['CAB']],
  ['text', write('Your answer', 'свет, 葉 🌱'), ['свет, 葉 🌱']],
  ['word-seed', write('Your word or short phrase', 'chlorophyll'), ['chlorophyll']],
  ['word-seed alpha-upper 3', pick('A', 'C'), ['A', 'C']],
  ['number 2', write('Your number', '-2,5'), ['-2.50']],
  ['creative', write('Your note, or what you have drawn', 'a leaf in the sun'), ['a leaf in the sun']],
  ['math-formula', write('Your formula', '\\frac{1}{2}'), ['\\frac{1}{2}']],
];

check('every kind of poll is answered on the page and counted by the host', async (t) => {
  const room = await teachWithLibrary(t);
  const { host } = room;
  const page = await learnerOf(t, room);
  for (const [poll, answer, counted] of POLLS) {
    await host.do(`poll ${poll}`);
    await send(page).waitFor();
    await answer(page);
    await send(page).click();
    await sent(page);
    await host.do('wait answers 1');
    const bars = await host.stopPoll();
    assert.deepEqual(Object.keys(bars).filter((label) => bars[label] > 0), counted, poll);
    await heading(page, 'This question is closed');
  }
  await host.finish();
});

const PICTURE = fileURLToPath(new URL('../../presenter/lessons/images/leaf.png', import.meta.url));

async function assertShown(image) {
  await image.waitFor();
  await image.evaluate((element) => element.decode());
  assert.ok(await image.evaluate((element) => element.naturalWidth) > 0);
}

check('a picture shows as a card, uploaded or in the message, and behind a poll', async (t) => {
  const room = await teachWithLibrary(t);
  const page = await learnerOf(t, room);
  const card = page.getByRole('img', { name: 'Card from your teacher' });
  await room.host.do(`card upload "${PICTURE}"`);
  await assertShown(card);
  assert.match(await card.getAttribute('src'), /\/downloadResourceFile\?/);
  await room.host.do('poll text');
  await heading(page, 'Write your answer');
  await room.host.do(`card "${PICTURE}"`);
  await assertShown(card);
  assert.match(await card.getAttribute('src'), /^data:image\/png;base64,/);
  await room.host.do(`poll multiple alpha-upper 3 picture "${PICTURE}"`);
  await assertShown(page.getByRole('img', { name: 'Picture to this question' }));
  await room.host.finish();
  await heading(page, 'This session has ended');
});

const COMMANDS = GROUPS.flatMap(({ commands }) => commands);
// What it asks at once it has asked before.
const seen = (host, type) => host.line(new RegExp(`Remote control\\b.*\\b${type}\\b`), ASKED_AT_ONCE.includes(type) ? 2 : 1);

check('the host sees every command of the remote control, and the remote control what the host tells it', async (t) => {
  const { url, host } = await teachWithLibrary(t);
  await host.do(`deck add "${PICTURE}"`);
  const { page } = await joinController(t, url, host.code);
  for (const { type, label } of COMMANDS) {
    await command(page, label).click();
    await seen(host, type);
  }
  const [chooser] = await Promise.all([page.waitForEvent('filechooser'), command(page, ADD_IMAGE.label).click()]);
  await chooser.setFiles(PICTURE);
  await seen(host, ADD_IMAGE.type);
  await host.do('remote lesson leaves-1 "Leaves and light"');
  await host.do('remote card 2 5');
  await host.do('remote active');
  await heading(page, 'Leaves and light');
  await stateOf(page, 'Card', '2 of 5');
  await stateOf(page, 'Presenter', 'is there');
  await command(page, STOP.label).click();
  await page.getByRole('dialog').getByRole('button', { name: STOP.label }).click();
  await seen(host, STOP.type);
  await host.finish();
  await heading(page, 'This session has ended');
});
