import { el, setText } from '../ui/dom.js';
import { announce } from '../ui/announcer.js';
import { textOf } from '../model/text.js';
import { t } from '../words/words.js';

const LAST_MINUTE = 60;

function clock(seconds) {
  const two = (number) => String(number).padStart(2, '0');
  const [hours, minutes] = [Math.floor(seconds / 3600), Math.floor((seconds % 3600) / 60)];
  return hours > 0 ? `${hours}:${two(minutes)}:${two(seconds % 60)}` : `${minutes}:${two(seconds % 60)}`;
}

/** Where the learner is in an assessment: above the screen for as long as it lasts. */
export class AssessmentBar {
  #lesson;
  #assessment = null;
  #place = el('p', { class: 'bar-place' });
  #time = el('p', { class: 'bar-time' });
  #progress = el('progress', { 'aria-label': t('Questions answered') });
  #list = el('ol');
  #navigation = el('nav', { 'aria-label': t('Questions') }, this.#list);
  #toldLastMinute = false;
  element = el('section', { class: 'bar', 'aria-label': t('Assessment'), hidden: true });

  constructor(lesson) {
    this.#lesson = lesson;
  }

  update() {
    const { assessment } = this.#lesson;
    this.element.hidden = !assessment || assessment.over;
    if (this.element.hidden) return;
    if (assessment !== this.#assessment) this.#begin(assessment);
    this.#place.textContent = t('Question %1 of %2', assessment.current, assessment.count);
    this.#progress.value = assessment.answered;
    this.#navigation.hidden = !this.#lesson.mayNavigate;
    [...this.#list.children].forEach((item, i) => this.#mark(item.firstChild, i + 1));
    this.tick();
  }

  /** Shows the time that is left, once a second. */
  tick() {
    const { remaining } = this.#assessment ?? { remaining: null };
    setText(this.#time, remaining === null ? '' : t('Time left %1', clock(Math.ceil(remaining / 1000))));
    if (remaining === null || remaining === 0 || remaining > LAST_MINUTE * 1000 || this.#toldLastMinute) return;
    this.#toldLastMinute = true;
    announce(t('Less than a minute is left.'));
  }

  #begin(assessment) {
    this.#assessment = assessment;
    this.#toldLastMinute = assessment.allowed <= LAST_MINUTE;
    this.#progress.max = assessment.count;
    this.#list.replaceChildren(...Array.from({ length: assessment.count }, (_, i) => el('li', {},
      el('button', { type: 'button', onclick: () => this.#lesson.goTo(i + 1) }))));
    const about = textOf(assessment.options.description).trim();
    this.element.replaceChildren(
      el('p', { class: 'bar-title' }, assessment.title), this.#place, this.#time, this.#progress,
      ...(about ? [el('details', { class: 'more' }, el('summary', {}, t('About this assessment')), el('p', {}, about))] : []),
      this.#navigation);
  }

  #mark(item, number) {
    const isAnswered = Boolean(this.#assessment.at(number)?.answer);
    item.textContent = String(number);
    item.classList.toggle('answered', isAnswered);
    item.setAttribute('aria-label', isAnswered ? t('Question %1, answered', number) : t('Question %1', number));
    if (number === this.#assessment.current) item.setAttribute('aria-current', 'step');
    else item.removeAttribute('aria-current');
  }
}
