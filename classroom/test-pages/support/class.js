import { Presenter } from '../../test/support/presenter.js';
import { startClassroom } from '../../test/support/classroom.js';
import { openContext, openPage } from './browser.js';

/** A classroom with a presenter that listens: {url, classroom, presenter}. */
export async function teach(t, options) {
  const { classroom, url } = await startClassroom(t, options);
  return { url, classroom, presenter: await Presenter.open(t, url) };
}

export const heading = (page, name) => page.getByRole('heading', { level: 1, name }).waitFor();

export const field = (page, name) => page.getByRole('textbox', { name, exact: true });

export async function sendForm(page, { code, name }) {
  if (code !== undefined) await field(page, 'Session code').fill(code);
  await field(page, 'Your name').fill(name);
  await page.getByRole('button', { name: 'Join', exact: true }).click();
}

/** A learner's page in a browser's window of its own, joined by hand: {page, context}. */
export async function joinPage(t, url, code, { name = 'Ann', prepare, ...options } = {}) {
  const context = await openContext(t, options);
  await prepare?.(context);
  const page = await openPage(t, context);
  await page.goto(`${url}/?code=${code}`);
  await sendForm(page, { name });
  await heading(page, 'You are in');
  return { page, context };
}

/** The same in a class of `teach`: {page, context, token}. */
export async function joinLearner(t, { url, presenter }, { at = url, ...options } = {}) {
  const joined = await joinPage(t, at, presenter.code, options);
  const { from } = await presenter.next('join');
  return { ...joined, token: from };
}

/** A class with one learner in it. */
export async function lesson(t, options) {
  const room = await teach(t);
  return { ...room, ...await joinLearner(t, room, options) };
}

export const options = (...ids) => ids.map((id, i) => ({ id, optionText: '', displaySeqNumber: i + 1, math: false }));

export const withTexts = (texts) => Object.entries(texts).map(([id, optionText], i) => ({
  id, optionText, displaySeqNumber: i + 1, math: false,
}));

export const send = (page) => page.getByRole('button', { name: 'Send answer' });
export const sent = (page) => page.getByText('Your answer is sent.').waitFor();
