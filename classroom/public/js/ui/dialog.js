import { t } from '../words/words.js';
import { button, el } from './dom.js';

/**
 * A dialog over the page. One that cannot be dismissed stays until it is closed from here: Escape is taken away
 * from it, and where a browser closes it all the same it is opened again.
 */
export class Dialog {
  #element = el('dialog', { class: 'dialog', 'aria-labelledby': 'dialog-text' });
  #notice = null;
  #dismissed;

  constructor(dismissed) {
    this.#dismissed = dismissed;
    this.#element.addEventListener('keydown', (event) => this.#key(event));
    this.#element.addEventListener('cancel', (event) => this.#cancel(event));
    this.#element.addEventListener('close', () => this.#closed());
  }

  /** Shows {text, dismissible}, or closes for null. */
  show(notice) {
    if (notice === this.#notice) return;
    this.#notice = notice;
    if (!notice) {
      this.#element.close();
      return;
    }
    const text = el('p', { id: 'dialog-text', tabindex: '-1', autofocus: true }, notice.text);
    this.#element.replaceChildren(text, notice.dismissible ? button(t('OK'), () => this.#dismissed(), { class: 'primary' })
      : el('p', { class: 'hint' }, t('Your teacher will go on from here.')));
    if (!this.#element.isConnected) document.body.append(this.#element);
    if (!this.#element.open) this.#element.showModal();
    text.focus();
  }

  remove() {
    this.show(null);
    this.#element.remove();
  }

  get isOpen() {
    return this.#notice !== null;
  }

  #key(event) {
    if (event.key === 'Escape' && !this.#notice?.dismissible) event.preventDefault();
  }

  #cancel(event) {
    event.preventDefault();
    if (this.#notice?.dismissible) this.#dismissed();
  }

  #closed() {
    if (this.#notice && this.#element.isConnected) this.#element.showModal();
  }
}
