import { el, freshId } from '../ui/dom.js';
import { formula } from '../ui/formula.js';
import { t } from '../words/words.js';

// What a key says, what it is called, what it writes, and where in that the cursor goes.
const KEYS = [
  ['a⁄b', t('Fraction'), '\\frac{}{}', 6],
  ['√', t('Root'), '\\sqrt{}', 6],
  ['xⁿ', t('Power'), '^{}', 2],
  ['xₙ', t('Index'), '_{}', 2],
  ['π', t('Pi'), '\\pi ', 4],
  ['×', t('Times'), '\\times ', 7],
  ['≤', t('Less or equal'), '\\le ', 4],
  ['≥', t('Greater or equal'), '\\ge ', 4],
];

function insert(input, text, cursor) {
  const { selectionStart, selectionEnd } = input;
  input.setRangeText(text, selectionStart, selectionEnd);
  input.setSelectionRange(selectionStart + cursor, selectionStart + cursor);
  input.focus();
}

/** A formula as LaTeX, with keys for what is tedious to type, and a look at how it will read. */
export function formulaControl({ start, changed }) {
  const id = freshId('formula');
  const preview = el('div', { class: 'preview', role: 'group', 'aria-label': t('How it reads') });
  const show = () => {
    preview.replaceChildren(input.value.trim() === '' ? el('span', { class: 'hint' }, t('Your formula shows here.'))
      : formula(input.value));
  };
  const edited = () => {
    show();
    changed();
  };
  const input = el('input', {
    id, class: 'field code', type: 'text', autocomplete: 'off', autocapitalize: 'none', spellcheck: 'false', oninput: edited,
  });
  input.value = start?.text ?? '';
  const keys = KEYS.map(([sign, name, text, cursor]) => el('button', {
    type: 'button',
    class: 'key',
    title: name,
    onclick: () => {
      insert(input, text, cursor);
      edited();
    },
  }, el('span', { 'aria-hidden': 'true' }, sign), el('span', { class: 'unseen' }, name)));
  show();
  return {
    element: el('div', { class: 'write' }, el('label', { for: id }, t('Your formula')), preview, input,
      el('div', { class: 'keys', role: 'group', 'aria-label': t('Insert') }, ...keys)),
    hint: '',
    draft: () => ({ text: input.value }),
    read: () => (input.value.trim() === '' ? { problem: t('Write a formula first.') }
      : { answer: { text: input.value.trim() } }),
    focus: () => input.focus(),
  };
}
