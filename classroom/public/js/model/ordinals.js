// How the schemes label the options of a question: a symbol, words, or both.

import { textOf } from './text.js';

const letter = (first) => (i) => (i < 26 ? String.fromCharCode(first.charCodeAt(0) + i) : `${i + 1}`);

const SYMBOLS = {
  'alpha-upper': letter('A'),
  'alpha-lower': letter('a'),
};

const WORDS = {
  'true-false': ['True', 'False', 'Don’t know'],
  'yes-no': ['Yes', 'No', 'Don’t know'],
  'yes-no-maybe': ['Yes', 'No', 'Maybe'],
  'yes-no-unsure': ['Yes', 'No', 'Unsure'],
  'yes-no-other': ['Yes', 'No', 'Other'],
};

// From the lowest to the highest, by how many there are.
const SCALES = {
  agreement: {
    2: ['Disagree', 'Agree'],
    3: ['Disagree', 'Neither', 'Agree'],
    4: ['Strongly disagree', 'Disagree', 'Agree', 'Strongly agree'],
    5: ['Strongly disagree', 'Disagree', 'Neither', 'Agree', 'Strongly agree'],
  },
  confidence: {
    2: ['Not confident', 'Confident'],
    3: ['Not confident', 'Somewhat confident', 'Very confident'],
    4: ['Not confident', 'Slightly confident', 'Confident', 'Very confident'],
    5: ['Not confident', 'Slightly confident', 'Fairly confident', 'Confident', 'Very confident'],
  },
};

// The words that presenters send for the fixed options.
const SENT = { TRUE: 'True', FALSE: 'False', YES: 'Yes', NO: 'No' };

const FIXED_TYPES = ['true-false', 'yes-no-other'];

function scaleWord(scheme, i, count) {
  const words = SCALES[scheme][count];
  if (words) return words[i];
  if (i === 0) return SCALES[scheme][2][0];
  return i === count - 1 ? SCALES[scheme][2][1] : '';
}

function schemeWord(scheme, i, count) {
  if (Object.hasOwn(WORDS, scheme)) return WORDS[scheme][Math.min(i, 2)];
  return Object.hasOwn(SCALES, scheme) ? scaleWord(scheme, i, count) : '';
}

// The third is what the scheme calls it, or the type.
function sentWord(text, scheme, type) {
  if (text === 'DONTKNOW') return (WORDS[scheme] ?? WORDS[type])[2];
  return SENT[text] ?? text;
}

function symbolOf(scheme, i, id, text) {
  if (Object.hasOwn(SYMBOLS, scheme)) return SYMBOLS[scheme](i);
  if (Object.hasOwn(WORDS, scheme) || (Object.hasOwn(SCALES, scheme) && text !== '')) return '';
  return scheme === 'number' || text === '' ? id : '';
}

/** The label of option i of `count`: {symbol, text}, of which at least one says something. */
export function labelOf({ id, optionText }, { type, scheme, i, count }) {
  const isFixed = FIXED_TYPES.includes(type);
  const sent = textOf(optionText);
  const text = isFixed ? sentWord(sent, scheme, type) : sent;
  // "True" needs no letter before it, although its id is one.
  if (isFixed && text !== '') return { symbol: '', text };
  const words = text || schemeWord(scheme, i, count);
  return { symbol: symbolOf(scheme, i, textOf(id), words), text: words };
}
