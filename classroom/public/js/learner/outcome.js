import { button, el } from '../ui/dom.js';
import { feedbackOf } from '../model/feedback.js';
import { t } from '../words/words.js';

/** What stands below an answer that has gone out: that it has, what is said about it, and what can be done next. */
export class Outcome {
  #lesson;
  #title = el('p', { class: 'outcome-title', tabindex: '-1' });
  #feedback = el('div', { class: 'feedback' });
  #change;
  element;

  constructor(lesson, change) {
    this.#lesson = lesson;
    this.#change = button(t('Change answer'), change, { class: 'secondary' });
    this.element = el('div', { class: 'outcome', hidden: true }, this.#title, this.#feedback,
      el('div', { class: 'actions' }, this.#change));
  }

  update(isShown) {
    const { activity } = this.#lesson;
    this.element.hidden = !isShown;
    this.#change.hidden = !this.#lesson.mayChangeAnswer || this.#lesson.paused;
    this.#title.textContent = activity.wasAnsweredBefore ? t('You have answered this before.') : t('Your answer is sent.');
    this.#feedback.replaceChildren(...feedbackOf(activity).map((line) => el('p', {}, line)));
  }

  focus() {
    this.#title.focus();
  }
}
