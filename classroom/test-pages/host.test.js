// The pages with the real library: calyx-presenter puts the questions, and counts what is answered on the page.

import assert from 'node:assert/strict';
import { after } from 'node:test';
import { check } from './support/check.js';
import { closeBrowser } from './support/browser.js';
import { field, heading, send, sent } from './support/class.js';
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
  ['true-false', pick('False'), ['B FALSE']],
  ['yes-no-other', pick('Yes'), ['A YES']],
  ['yes-no-other', pick('Don’t know'), ['? DONTKNOW']],
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
