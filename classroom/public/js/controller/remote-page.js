import { announce } from '../ui/announcer.js';
import { confirmed } from '../ui/confirm.js';
import { button, el, freshId, setText } from '../ui/dom.js';
import { t } from '../words/words.js';
import { ADD_IMAGE, GROUPS, STOP } from './commands.js';
import { pictureFrom } from './image.js';
import { Outcome } from './outcome.js';

const PRESENCE = {
  unknown: t('not known'),
  asked: t('asking …'),
  active: t('is there'),
  silent: t('does not answer'),
};

/** The page of the remote control: what the presenter is at, and a button for each command. */
export class RemotePage {
  #state;
  #send;
  #lesson = el('h1', { tabindex: '-1' });
  #card = el('dd');
  #presence = el('dd');
  // By their commands.
  #buttons = new Map();
  #sent = el('p', { class: 'sent', hidden: true });
  #outcome = new Outcome((text) => this.#tell(text));
  #picker = el('input', { type: 'file', accept: 'image/*', class: 'unseen', tabindex: '-1', 'aria-hidden': 'true' });
  element;

  /** send(command, data) resolves with whether it has gone out. */
  constructor(state, send) {
    this.#state = state;
    this.#send = send;
    this.#picker.addEventListener('change', () => this.#addImage());
    this.element = el('div', { class: 'remote' }, this.#status(), ...GROUPS.map((group) => this.#group(group)), this.#rest(),
      this.#sent);
    this.render();
  }

  #status() {
    return el('section', { class: 'sheet status', 'aria-label': t('Presenter') },
      el('p', { class: 'kind' }, t('Lesson')), this.#lesson,
      el('dl', {},
        el('div', {}, el('dt', {}, t('Card')), this.#card),
        el('div', {}, el('dt', {}, t('Presenter')), this.#presence)));
  }

  #group({ name, commands }) {
    const id = freshId('group');
    return el('section', { class: 'group', 'aria-labelledby': id }, el('h2', { id }, name),
      el('div', { class: 'commands' }, ...commands.map((command) => this.#button(command))));
  }

  #button(command) {
    return this.#made(command, () => this.#give(command), `command ${command.kind ?? ''}`);
  }

  // A button that cannot work keeps the focus, and says why.
  #made(command, act, look) {
    const attempt = () => {
      const obstacle = this.#state.obstacle(command);
      if (obstacle) this.#tell(obstacle);
      else act();
    };
    const made = button(command.label, attempt, { class: look });
    this.#buttons.set(command, made);
    return made;
  }

  #rest() {
    const id = freshId('group');
    return el('section', { class: 'group', 'aria-labelledby': id }, el('h2', { id }, t('Lesson')),
      el('div', { class: 'commands' },
        this.#made(ADD_IMAGE, () => this.#picker.click(), 'command wide'), this.#picker,
        this.#made(STOP, () => this.#stop(), 'command wide danger')));
  }

  /** The state has changed, by a message or otherwise. */
  changed(message) {
    this.render();
    if (message) this.#outcome.heard(message, this.#state);
  }

  /** The page is no longer shown. */
  end() {
    this.#outcome.end();
  }

  render() {
    const { lesson, card, presence } = this.#state;
    this.#set(this.#lesson, lesson ? lesson.name || t('A lesson without a name') : t('No lesson yet'));
    for (const [command, made] of this.#buttons) made.setAttribute('aria-disabled', String(this.#state.obstacle(command) !== ''));
    this.#set(this.#card, cardInWords(card));
    this.#set(this.#presence, PRESENCE[presence]);
    this.#presence.className = `presence ${presence}`;
  }

  // Says what has changed, and only that.
  #set(element, text) {
    if (element.textContent === text) return;
    if (element.textContent !== '') announce(text);
    element.textContent = text;
  }

  #tell(text) {
    setText(this.#sent, text);
    announce(text);
  }

  async #give(command, data = {}) {
    this.#outcome.given(command, this.#state);
    if (!await this.#send(command, data)) this.#outcome.notSent(command);
  }

  async #stop() {
    if (await confirmed(t('End the session for everyone?'), STOP.label)) await this.#give(STOP);
  }

  async #addImage() {
    const [file] = this.#picker.files;
    this.#picker.value = '';
    if (!file) return;
    this.#tell(t('%1: on its way …', ADD_IMAGE.said));
    try {
      await this.#give(ADD_IMAGE, await pictureFrom(file));
    } catch {
      this.#tell(t('This file is no picture that can be read.'));
    }
  }
}

function cardInWords(card) {
  if (!card) return t('not told yet');
  if (card.total === 0) return t('no cards');
  const name = card.name && card.name !== String(card.current) ? `: ${card.name}` : '';
  return t('%1 of %2', card.current, card.total) + name;
}
