import { el, freshId } from '../ui/dom.js';
import { count, t } from '../words/words.js';

const lengthOf = (text) => [...text].length;

function readText(typed, maxChars) {
  const text = typed.trim();
  if (text === '') return { problem: t('Write something first.') };
  const over = lengthOf(text) - maxChars;
  if (maxChars > 0 && over > 0) return { problem: count(over, 'That is %1 character too many.', 'That is %1 characters too many.') };
  return { answer: { text } };
}

/** A text of one line or of several, with its label; maxChars 0: as long as one likes. */
export function writeControl({ label, rows = 1, maxChars = 0, start, changed }) {
  const id = freshId('text');
  const counter = el('p', { class: 'counter', id: `${id}-counter`, hidden: maxChars <= 0 });
  const input = el(rows > 1 ? 'textarea' : 'input', {
    id, class: 'field', rows: rows > 1 ? rows : undefined, type: rows > 1 ? undefined : 'text', autocomplete: 'off',
    'aria-describedby': maxChars > 0 ? counter.id : undefined,
    oninput: () => {
      show();
      changed();
    },
  });
  const show = () => { counter.textContent = count(maxChars, '%2 of %1 character', '%2 of %1 characters', lengthOf(input.value.trim())); };
  input.value = start?.text ?? '';
  show();
  return {
    element: el('div', { class: 'write' }, el('label', { for: id }, label), input, counter),
    hint: '',
    draft: () => ({ text: input.value }),
    read: () => readText(input.value, maxChars),
    focus: () => input.focus(),
  };
}
