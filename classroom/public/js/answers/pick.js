import { el, freshId } from '../ui/dom.js';
import { richText } from '../ui/formula.js';
import { count, t } from '../words/words.js';

// Short words stand beside each other, symbols alone make a scale, everything else is a list.
function layoutOf(options) {
  if (options.every(({ text }) => text === '')) return 'scale';
  const short = options.length <= 3 && options.every(({ text, math }) => text.length <= 12 && !math);
  return short ? 'tiles' : 'list';
}

function optionRow(option, input) {
  const { symbol, text, math } = option;
  return el('label', { class: 'option' }, input,
    symbol !== '' && el('span', { class: 'option-symbol' }, symbol),
    text !== '' && el('span', { class: 'option-text' }, ...richText(text, math)));
}

/** One option of several, or (several: true) any number of them up to a limit. */
export function pickControl({ options, several = false, limit = 0, start, changed }) {
  const name = freshId('pick');
  const type = several ? 'checkbox' : 'radio';
  const inputs = options.map((_, i) => el('input', {
    type, name, value: i, checked: start?.picked?.includes(i), onchange: changed,
  }));
  const picked = () => inputs.flatMap(({ checked }, i) => (checked ? [i] : []));
  return {
    element: el('div', { class: `options ${layoutOf(options)}` },
      ...options.map((option, i) => optionRow(option, inputs[i]))),
    hint: several ? severalHint(limit) : '',
    draft: () => ({ picked: picked() }),
    read: () => readPicked(picked(), limit),
    focus: () => inputs[0]?.focus(),
  };
}

const severalHint = (limit) => (limit > 1 ? t('Pick up to %1.', limit) : t('Pick one or more.'));

function readPicked(picked, limit) {
  if (picked.length === 0) return { problem: t('Pick an option first.') };
  if (limit > 1 && picked.length > limit) {
    return { problem: t('Pick up to %1: you have picked %2.', limit, count(picked.length, '%1 option', '%1 options')) };
  }
  return { answer: { picked } };
}
