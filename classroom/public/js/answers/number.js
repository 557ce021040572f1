import { button, el, freshId } from '../ui/dom.js';
import { decimalsOf, readNumber } from '../model/number.js';
import { count, t } from '../words/words.js';

const negated = (text) => (/^\s*[-\u2212]/.test(text) ? text.replace(/[-\u2212]/, '') : `-${text.trimStart()}`);

/** A number, with as many decimals as are wanted. */
export function numberControl({ document, start, changed }) {
  const decimals = decimalsOf(document.noOfDecimals);
  const id = freshId('number');
  const input = el('input', {
    id, class: 'field number', type: 'text', inputmode: 'decimal', autocomplete: 'off', oninput: changed,
  });
  input.value = start?.text ?? '';
  // The number keyboards of some telephones have no minus.
  const sign = button('±', () => {
    input.value = negated(input.value);
    changed();
  }, { class: 'secondary square', 'aria-label': t('Change the sign') });
  return {
    element: el('div', { class: 'write' }, el('label', { for: id }, t('Your number')), el('div', { class: 'beside' }, input, sign)),
    hint: decimals === 0 ? t('A whole number.') : count(decimals, 'With up to %1 decimal.', 'With up to %1 decimals.'),
    draft: () => ({ text: input.value }),
    read: () => {
      const { text, problem } = readNumber(input.value, decimals);
      return problem ? { problem } : { answer: { text } };
    },
    focus: () => input.focus(),
  };
}
