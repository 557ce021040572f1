// An assessment of five questions by three pages at once, held and marked by the real library's host.

import assert from 'node:assert/strict';
import { after } from 'node:test';
import { assertAccessible } from './support/accessible.js';
import { closeBrowser } from './support/browser.js';
import { check } from './support/check.js';
import { field, heading, joinPage, send, sent } from './support/class.js';
import { teachWithLibrary } from './support/host.js';

after(closeBrowser);

const option = (page, name) => ['radio', 'checkbox'].map((role) => page.getByRole(role, { name, exact: true }))
  .reduce((one, other) => one.or(other));
const pick = async (page, names) => {
  for (const name of names) await option(page, name).check();
};
const moveUp = async (page, names) => {
  for (const name of names) await page.getByRole('button', { name: `Move ${name} up`, exact: true }).click();
};

// What the host is told to ask, what the page then asks, and how it is answered there.
const QUESTIONS = [
  ['true-false answer=A', 'Plants need light.', pick],
  ['multiple choices=oxygen|"carbon dioxide"|water|sugar answer=BC', 'Which two does a leaf take in?', pick],
  ['number 1 answer=4.5', 'How many litres a day?', (page, text) => field(page, 'Your number').fill(text)],
  ['text answer=water', 'What do they need?', (page, text) => field(page, 'Your answer').fill(text)],
  ['sort choices=root|stem|leaf answer=ABC', 'From below to above', moveUp],
];

// What each learner does with each question, and its row in the host's results.
const LEARNERS = [
  {
    acts: [['True'], ['B carbon dioxide', 'C water'], '4,5', 'water', []],
    row: ['Ann', '5 of 5', '✓ A', '✓ BC', '✓ 4.5', '✓ water', '✓ ABC'],
  },
  {
    acts: [['False'], ['A oxygen'], '-7', '葉 & <b>', ['B stem']],
    row: ['Bob', '0 of 5', '✗ B', '✗ A', '✗ -7.0', '✗ 葉 & <b>', '✗ BAC'],
  },
  {
    acts: [['True'], ['B carbon dioxide', 'C water'], '04.50', 'No idea', ['C leaf', 'C leaf']],
    row: ['Cem', '3 of 5', '✓ A', '✓ BC', '✓ 4.5', '✗ No idea', '✗ CAB'],
  },
];

async function workThrough(page, acts) {
  for (const [i, [, asked, act]] of QUESTIONS.entries()) {
    await heading(page, asked);
    await page.getByText(`Question ${i + 1} of 5`).waitFor();
    await act(page, acts[i]);
    await send(page).click();
    await sent(page);
    await page.getByRole('button', { name: i === 4 ? 'Finish' : 'Next question' }).click();
  }
  await heading(page, 'That was the last question');
}

const cellsOf = (line) => line.trim().split(/ {2,}/);

check('three learners work through five questions at once, and the host marks each answer', async (t) => {
  const { url, host } = await teachWithLibrary(t);
  const pages = [];
  for (const { row: [name] } of LEARNERS) pages.push((await joinPage(t, url, host.code, { name })).page);
  await host.do('wait learners 3');
  for (const [question, asked] of QUESTIONS) await host.do(`assessment question ${question} text="${asked}"`);
  await host.do('assessment start title="Leaves and light" summary=yes');
  await Promise.all(pages.map((page, i) => workThrough(page, LEARNERS[i].acts)));
  await host.do('wait assessment 3');
  const results = await host.do('assessment stop');
  for (const { row } of LEARNERS) {
    assert.deepEqual(results.map(cellsOf).find(([name]) => name === row[0]), row, results.join('\n'));
  }
  for (const page of pages) {
    await heading(page, 'The assessment is over');
    await page.getByText('You have answered 5 of 5.').waitFor();
  }
  const [, ...rows] = await pages[1].getByRole('row').allInnerTexts();
  assert.deepEqual(rows.map((row) => row.split('\t').at(-1)), ['False', 'A oxygen', '-7.0', '葉 & <b>', 'B stem, A root, C leaf']);
  await assertAccessible(pages[1]);
  await host.finish();
});

check('a learner goes back to a question in a review, and dialogs show', async (t) => {
  const { url, host } = await teachWithLibrary(t);
  const { page } = await joinPage(t, url, host.code, { name: 'Ann' });
  await host.do('wait learners 1');
  for (const [question, asked] of QUESTIONS.slice(0, 2)) await host.do(`assessment question ${question} text="${asked}"`);
  await host.do('assessment start to=Ann navigate=yes');
  await heading(page, 'Plants need light.');
  await pick(page, ['False']);
  await send(page).click();
  await sent(page);
  await page.getByRole('button', { name: 'Next question' }).click();
  await heading(page, 'Which two does a leaf take in?');
  await host.do('assessment dialog to=Ann dismissible=no Look to the front');
  await page.getByRole('dialog', { name: 'Look to the front' }).waitFor();
  await host.do('assessment review Look at the first once more');
  await heading(page, 'Look at the first once more');
  await page.getByRole('button', { name: 'Question 1, answered' }).click();
  await heading(page, 'Plants need light.');
  await page.getByRole('button', { name: 'Change answer' }).click();
  await pick(page, ['True']);
  await host.do('assessment pause');
  await page.getByText('Your teacher has paused this.').waitFor();
  assert.equal(await send(page).isDisabled(), true);
  await host.do('assessment resume');
  await send(page).click();
  await sent(page);
  // An answer comes before what is asked for next.
  await page.getByRole('button', { name: 'Next question' }).click();
  await heading(page, 'Which two does a leaf take in?');
  const results = await host.do('assessment stop');
  assert.deepEqual(results.map(cellsOf).find(([name]) => name === 'Ann').slice(1, 3), ['1 of 2', '✓ A'], results.join('\n'));
  await host.finish();
});
