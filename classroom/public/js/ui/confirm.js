import { t } from '../words/words.js';
import { button, el, freshId } from './dom.js';

/** Asks before something that cannot be undone; resolves with the answer. */
export function confirmed(question, yes) {
  const id = freshId('question');
  const dialog = el('dialog', { class: 'dialog', 'aria-labelledby': id });
  return new Promise((resolve) => {
    const answer = (value) => () => {
      dialog.close();
      resolve(value);
    };
    dialog.append(
      el('p', { id }, question),
      el('div', { class: 'actions' },
        button(t('Cancel'), answer(false), { class: 'secondary', autofocus: true }),
        button(yes, answer(true), { class: 'danger' })),
    );
    dialog.addEventListener('cancel', () => resolve(false));
    dialog.addEventListener('close', () => dialog.remove());
    document.body.append(dialog);
    dialog.showModal();
  });
}
