import { controlFor } from '../answers/control.js';
import { nameOfType, promptFor } from '../model/prompts.js';
import { cardPictures } from '../model/picture.js';
import { textOf } from '../model/text.js';
import { announce } from '../ui/announcer.js';
import { button, el, freshId, setText, title } from '../ui/dom.js';
import { richText } from '../ui/formula.js';
import { picture } from '../ui/picture.js';
import { t } from '../words/words.js';
import { Outcome } from './outcome.js';

const NOT_SENT = t('Your answer has not gone out: there is no connection. Send it again in a moment.');

function headOf(activity) {
  const { document } = activity;
  const asked = textOf(document.instructions).trim();
  const passage = textOf(document.passage).trim();
  const hint = textOf(document.hint).trim();
  const heading = title(...(asked ? richText(asked, document.math === true) : [promptFor(activity)]));
  const parts = [
    asked !== '' && el('p', { class: 'kind' }, nameOfType(document)),
    heading,
    passage !== '' && el('p', { class: 'passage' }, ...richText(passage)),
    ...cardPictures(document.card).map((one) => picture(one, t('Picture to this question'))),
    hint !== '' && el('details', { class: 'more' }, el('summary', {}, t('Hint')), el('p', {}, ...richText(hint))),
  ];
  return { heading, parts };
}

/** A question or a poll, with its way of answering, from being asked to having been answered. */
export class QuestionScreen {
  #lesson;
  #activity;
  #control;
  #heading;
  #fieldset;
  #problem = el('p', { id: freshId('problem'), class: 'problem', role: 'alert', hidden: true });
  #send = el('button', { type: 'submit', class: 'primary' }, t('Send answer'));
  #closing = el('p', { class: 'closing', role: 'timer', hidden: true });
  #closesAt;
  #goOn;
  #outcome;
  #focused = null;
  #wasAnswered = false;
  element;

  constructor(lesson) {
    this.#lesson = lesson;
    this.#activity = lesson.activity;
    this.#control = controlFor(this.#activity, this.#activity.draft ?? this.#activity.answer, () => this.#edited());
    const { heading, parts } = headOf(this.#activity);
    this.#heading = heading;
    this.#goOn = button('', () => lesson.goOn());
    this.#outcome = new Outcome(lesson, () => this.#changeAnswer());
    this.#wasAnswered = this.#activity.answer !== null;
    const form = this.#form();
    this.element = el('article', { class: 'sheet question' }, ...parts, this.#closing, form);
    this.update();
  }

  #form() {
    this.#heading.id = freshId('question');
    const hint = el('p', { id: freshId('hint'), class: 'hint', hidden: this.#control.hint === '' }, this.#control.hint);
    this.#fieldset = el('fieldset', {
      'aria-labelledby': this.#heading.id, 'aria-describedby': `${hint.id} ${this.#problem.id}`,
    }, hint, this.#control.element);
    const onsubmit = (event) => {
      event.preventDefault();
      this.#submit();
    };
    return el('form', { novalidate: true, onsubmit }, this.#fieldset, this.#problem, this.#outcome.element,
      el('div', { class: 'actions' }, this.#send, this.#goOn));
  }

  #edited() {
    this.#lesson.keepDraft(this.#control.draft());
    setText(this.#problem, '');
  }

  #submit() {
    if (!this.#lesson.mayAnswer) return;
    const { answer, problem } = this.#control.read();
    setText(this.#problem, problem ?? '');
    if (problem) this.#control.focus();
    else this.#lesson.answer(answer);
  }

  #changeAnswer() {
    this.#lesson.changeAnswer();
    this.#control.focus();
  }

  update() {
    const { mayAnswer, paused } = this.#lesson;
    const { answer, changing, sending, failed } = this.#activity;
    const isAnswered = answer !== null && !changing;
    this.#setEnabled(mayAnswer);
    this.#send.hidden = isAnswered;
    this.#send.disabled = paused || !(mayAnswer || sending);
    this.#send.textContent = sending ? t('Sending …') : t('Send answer');
    if (failed) setText(this.#problem, NOT_SENT);
    this.#outcome.update(isAnswered);
    this.#updateGoOn(isAnswered);
    if (isAnswered && !this.#wasAnswered) this.#outcome.focus();
    this.#wasAnswered = isAnswered;
    this.tick();
  }

  /** Shows how long the question is open still, once a second; said aloud once. */
  tick() {
    const { closesIn } = this.#lesson;
    setText(this.#closing, closesIn === null ? '' : closesIn > 0 ? t('Closes in %1 s', closesIn) : t('Closing …'));
    if (closesIn === null || this.#closesAt === this.#activity.closesAt) return;
    this.#closesAt = this.#activity.closesAt;
    announce(t('This question closes in %1 seconds.', closesIn));
  }

  #updateGoOn(isAnswered) {
    const { assessment, mayGoOn, mayNavigate } = this.#lesson;
    this.#goOn.hidden = !mayGoOn;
    this.#goOn.className = isAnswered ? 'primary' : 'secondary';
    const last = assessment?.current === assessment?.count;
    const next = last ? t('Finish') : t('Next question');
    this.#goOn.textContent = isAnswered || mayNavigate ? next : t('Skip');
  }

  // What is disabled loses the focus: it waits at the heading, and goes back where it was.
  #setEnabled(enabled) {
    if (this.#fieldset.disabled === !enabled) return;
    const { activeElement } = document;
    const hadFocus = this.#fieldset.contains(activeElement);
    this.#fieldset.disabled = !enabled;
    if (!enabled && hadFocus) {
      this.#focused = activeElement;
      this.#heading.focus({ preventScroll: true });
    } else if (enabled && this.#focused && activeElement === this.#heading) {
      this.#focused.focus();
      this.#focused = null;
    }
  }
}
