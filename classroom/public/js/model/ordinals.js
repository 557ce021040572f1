// How the schemes label the options of a question: a symbol, words, or both.

import { t } from '../words/words.js';
import { textOf } from './text.js';

const letter = (first) => (i) => (i < 26 ? String.fromCharCode(first.charCodeAt(0) + i) : `${i + 1}`);

const SYMBOLS = {
  'alpha-upper': letter('A'),
  'alpha-lower': letter('a'),
};

const WORDS = {
  'true-false': [t('True'), t('False'), t('Don’t know')],
  'yes-no': [t('Yes'), t('No'), t('Don’t know')],
  'yes-no-maybe': [t('Yes'), t('No'), t('Maybe')],
  'yes-no-unsure': [t('Yes'), t('No'), t('Unsure')],
  'yes-no-other': [t('Yes'), t('No'), t('Other')],
};

// From the lowest to the highest, by how many there are.
const SCALES = {
  agreement: {
    2: [t('Disagree'), t('Agree')],
    3: [t('Disagree'), t('Neither'), t('Agree')],
    4: [t('Strongly disagree'), t('Disagree'), t('Agree'), t('Strongly agree')],
    5: [t('Strongly disagree'), t('Disagree'), t('Neither'), t('Agree'), t('Strongly agree')],
  },
  confidence: {
    2: [t('Not confident'), t('Confident')],
    3: [t('Not confident'), t('Somewhat confident'), t('Very confident')],
    4: [t('Not confident'), t('Slightly confident'), t('Confident'), t('Very confident')],
    5: [t('Not confident'), t('Slightly confident'), t('Fairly confident'), t('Confident'), t('Very confident')],
  },
};

// The words that presenters send for the fixed options.
const SENT = { TRUE: t('True'), FALSE: t('False'), YES: t('Yes'), NO: t('No') };

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
