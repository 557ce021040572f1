// Which way of answering an activity wants. Each control is {element, hint, draft(), read(), focus()}: draft() is what
// is there now, read() is {answer} or {problem}; both in the form of model/answer.js.

import { optionsOf } from '../model/options.js';
import { wholeNumber } from '../model/text.js';
import { t } from '../words/words.js';
import { formulaControl } from './formula.js';
import { numberControl } from './number.js';
import { orderControl } from './order.js';
import { pickControl } from './pick.js';
import { writeControl } from './write.js';

const MOST_CHARS = 1000000;

const PICKED = {
  sort: orderControl,
  multiple: (settings) => {
    const limit = wholeNumber(settings.document.numberOfCorrectOptions, 0, settings.options.length, 0);
    return pickControl({ ...settings, several: limit !== 1, limit });
  },
};

const WRITTEN = {
  number: numberControl,
  'math formula': formulaControl,
  'word-seed': (settings) => writeControl({ ...settings, label: t('Your word or short phrase') }),
  creative: (settings) => writeControl({ ...settings, label: t('Your note, or what you have drawn'), rows: 6 }),
};

const writeText = (settings) => writeControl({
  ...settings, label: t('Your answer'), rows: 4, maxChars: wholeNumber(settings.document.maxChars, 0, MOST_CHARS, 0),
});

const own = (table, type) => (Object.hasOwn(table, type) ? table[type] : undefined);

/** The control for an activity, beginning with a draft or an answer; `changed()` when something has been done. */
export function controlFor(activity, start, changed) {
  const { kind, document } = activity;
  const options = optionsOf(activity);
  const settings = { document, options, start, changed };
  if (options.length === 0) return (own(WRITTEN, document.type) ?? writeText)(settings);
  if (kind === 'poll') return pickControl({ ...settings, several: true });
  return (own(PICKED, document.type) ?? pickControl)(settings);
}
