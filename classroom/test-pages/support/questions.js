// One question or poll of every kind, how a learner answers it by hand and by the keyboard alone, and what the
// presenter then has to receive.

import { field, options, withTexts } from './class.js';
import { press, tabTo } from './keyboard.js';

const chosen = (...ids) => ({ optionAnswers: ids.map((activityOptionId) => ({ activityOptionId })) });

const radio = (page, name) => page.getByRole('radio', { name, exact: true });
const checkbox = (page, name) => page.getByRole('checkbox', { name, exact: true });

const byRadio = (first, name, steps) => ({
  hand: (page) => radio(page, name).check(),
  keys: async (page) => {
    await tabTo(page, radio(page, first));
    await press(page, 'Space');
    await press(page, 'ArrowDown', steps);
  },
});

const byCheckboxes = (...names) => ({
  hand: async (page) => {
    for (const name of names) await checkbox(page, name).check();
  },
  keys: async (page) => {
    for (const name of names) {
      await tabTo(page, checkbox(page, name));
      await press(page, 'Space');
    }
  },
});

const byTyping = (label, text) => ({
  hand: (page) => field(page, label).fill(text),
  keys: async (page) => {
    await tabTo(page, field(page, label));
    await page.keyboard.type(text);
  },
});

const mover = (page, name) => page.getByRole('button', { name, exact: true });

// From A, B, C to C, A, B: C goes up twice.
const byMoving = {
  hand: async (page) => {
    await mover(page, 'Move C Root up').click();
    await mover(page, 'Move C Root up').click();
  },
  keys: async (page) => {
    await tabTo(page, mover(page, 'Move C Root up'));
    await press(page, 'Enter');
    await press(page, 'Space');
  },
};

// One half: the key for a fraction puts the cursor where the numerator goes.
const byKeys = {
  hand: async (page) => {
    await page.getByRole('button', { name: 'Fraction' }).click();
    await page.keyboard.type('1');
    await field(page, 'Your formula').press('End');
    await field(page, 'Your formula').press('ArrowLeft');
    await page.keyboard.type('2');
  },
  keys: async (page) => {
    await tabTo(page, field(page, 'Your formula'));
    await page.keyboard.type('\\frac{1}{2}');
  },
};

export const QUESTIONS = [
  {
    name: 'true or false', ...byRadio('True', 'False', 1), expected: chosen('B'),
    document: { type: 'true-false', activityOptions: withTexts({ A: 'TRUE', B: 'FALSE', '?': 'DONTKNOW' }), metadata: { ordinalType: 'alpha-upper', options: [] } },
  },
  {
    name: 'yes, no or other', ...byRadio('Yes', 'Other', 2), expected: chosen('?'),
    document: { type: 'yes-no-other', activityOptions: withTexts({ A: 'YES', B: 'NO', '?': 'DONTKNOW' }), metadata: { ordinalType: 'yes-no-other', options: [0, 1, 2] } },
  },
  {
    name: 'a choice by letters', ...byRadio('A', 'C', 2), expected: chosen('C'),
    document: { type: 'multiple', numberOfCorrectOptions: 1, activityOptions: options('A', 'B', 'C', 'D'), metadata: { ordinalType: 'alpha-upper', options: [] } },
  },
  {
    name: 'a choice of two texts', ...byCheckboxes('A Oxygen', 'C Water'), expected: chosen('A', 'C'),
    document: {
      type: 'multiple', numberOfCorrectOptions: 2, instructions: 'Which two does a leaf take in?',
      activityOptions: withTexts({ A: 'Oxygen', B: 'Sugar', C: 'Water' }), metadata: { ordinalType: 'alpha-upper', options: [] },
    },
  },
  {
    name: 'a scale of numbers', ...byRadio('0', '3', 3), expected: chosen('3'),
    document: { type: 'scale', activityOptions: options('0', '1', '2', '3', '4'), metadata: { ordinalType: 'number', options: [] } },
  },
  {
    name: 'a scale of agreement', ...byRadio('Strongly disagree', 'Agree', 3), expected: chosen('3'),
    document: { type: 'scale', activityOptions: options('0', '1', '2', '3', '4'), metadata: { ordinalType: 'agreement', options: [0, 1, 2, 3, 4] } },
  },
  {
    name: 'a scale of confidence', ...byRadio('Not confident', 'Very confident', 2), expected: chosen('2'),
    document: { type: 'scale', activityOptions: options('0', '1', '2'), metadata: { ordinalType: 'confidence', options: [0, 1, 2] } },
  },
  {
    name: 'an order', ...byMoving, expected: chosen('C', 'A', 'B'),
    document: { type: 'sort', activityOptions: withTexts({ A: 'Light', B: 'Sugar', C: 'Root' }), metadata: { ordinalType: 'alpha-upper', options: [] } },
  },
  {
    name: 'a text', ...byTyping('Your answer', 'свет, 葉 🌱'), expected: { answer: 'свет, 葉 🌱' },
    document: { type: 'text', maxChars: 40 },
  },
  {
    name: 'a number with decimals', ...byTyping('Your number', '-2,5'), expected: { answer: '-2.50' },
    document: { type: 'number', noOfDecimals: 2 },
  },
  { name: 'a formula', ...byKeys, expected: { answer: '\\frac{1}{2}' }, document: { type: 'math formula' } },
  {
    name: 'a creative question', ...byTyping('Your note, or what you have drawn', 'a leaf in the sun'),
    expected: { answer: 'a leaf in the sun' }, document: { type: 'creative', activityOptions: [] },
  },
  {
    name: 'a word-seed question', ...byTyping('Your word or short phrase', 'chlorophyll'),
    expected: { answer: 'chlorophyll' }, document: { type: 'word-seed' },
  },
  {
    name: 'true or false without options', ...byRadio('True', 'True', 0), expected: { answer: 'TRUE' },
    document: { type: 'true-false' },
  },
  {
    name: 'a poll of words', kind: 'poll', ...byCheckboxes('A', 'C'), expected: { pick: ['0', '2'] },
    document: { type: 'word-seed', metadata: { ordinalType: 'alpha-upper', options: [0, 1, 2] } },
  },
  {
    name: 'a word poll', kind: 'poll', ...byTyping('Your word or short phrase', 'light'), expected: { input: 'light' },
    document: { type: 'word-seed', metadata: { ordinalType: 'generic', options: [] } },
  },
  {
    name: 'a creative poll', kind: 'poll', ...byTyping('Your note, or what you have drawn', 'one line\nand another'),
    expected: { input: 'one line\nand another' }, document: { type: 'creative', metadata: { ordinalType: 'generic', options: [] } },
  },
];

/** Puts a question of the table to everyone, as its kind travels. */
export function put(presenter, { kind, document }, id) {
  if (kind === 'poll') presenter.publish('poll', { id, ...document });
  else presenter.ask({ id, ...document });
}

/** What the presenter has to receive for it, but for the response time. */
export const responseFor = ({ kind, expected }, id) => (kind === 'poll'
  ? { type: 'pollResponse', value: { pollId: id, blob: expected } }
  : { type: 'questionResponse', value: { questionId: id, questionSetMode: 'Poll', ...expected } });
