import { explain } from '../device/service.js';
import { t } from '../words/words.js';
import { button, el, grouped, setText, title } from './dom.js';

const digitsOf = (text) => text.replace(/\D/g, '');

/** A field with its label and a place for what is wrong with it. */
function fieldOf({ id, label, check, ...attributes }) {
  const problem = el('p', { id: `${id}-problem`, class: 'problem', hidden: true });
  const input = el('input', { id, class: 'field', 'aria-describedby': problem.id, required: true, ...attributes });
  return {
    input,
    element: el('div', { class: 'write' }, el('label', { for: id }, label), input, problem),
    isFine() {
      const text = check(input.value);
      setText(problem, text);
      input.setAttribute('aria-invalid', String(text !== ''));
      return text === '';
    },
  };
}

const codeField = (code) => fieldOf({
  id: 'code', label: t('Session code'), type: 'text', inputmode: 'numeric', autocomplete: 'off', value: code,
  check: (value) => (digitsOf(value).length === 6 ? '' : t('The code has six digits.')),
});

const nameField = (name) => fieldOf({
  id: 'name', label: t('Your name'), type: 'text', autocomplete: 'nickname', maxlength: 60, value: name,
  check: (value) => (value.trim() === '' ? t('Your teacher needs a name to call you by.') : ''),
});

/**
 * The form with which a device joins. settings: heading, text; code and name to begin with; asksName; last, a place
 * to go back to; join({code, userName, userToken}), which may reject.
 */
export function joinForm({ heading, text, code = '', name = '', asksName = true, last, join }) {
  const fields = [codeField(code), ...(asksName ? [nameField(name)] : [])];
  const problem = el('p', { class: 'problem', role: 'alert', hidden: true });
  const submit = el('button', { type: 'submit', class: 'primary' }, t('Join'));
  const again = last && button(t('Go on as %1 in %2', last.userName, grouped(last.code)), () => attempt(last), { class: 'secondary' });
  const attempt = async (place) => {
    for (const one of [submit, again]) one?.setAttribute('aria-disabled', 'true');
    setText(problem, '');
    try {
      await join(place);
    } catch (error) {
      setText(problem, explain(error));
      for (const one of [submit, again]) one?.removeAttribute('aria-disabled');
    }
  };
  const onsubmit = (event) => {
    event.preventDefault();
    const wrong = fields.filter((field) => !field.isFine());
    wrong[0]?.input.focus();
    if (wrong.length > 0 || submit.hasAttribute('aria-disabled')) return;
    attempt({ code: digitsOf(fields[0].input.value), userName: fields[1]?.input.value.trim() ?? heading });
  };
  return el('form', { class: 'sheet join', novalidate: true, onsubmit },
    title(heading), el('p', { class: 'hint' }, text), ...fields.map(({ element }) => element), problem,
    el('div', { class: 'actions' }, submit, again));
}
