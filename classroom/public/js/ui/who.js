import { t } from '../words/words.js';
import { button, el, grouped } from './dom.js';

const place = document.getElementById('who');

/** Who this device is, and its way out; nothing for null. */
export function showWho(who, leave) {
  if (!who) {
    place.replaceChildren();
    return;
  }
  place.replaceChildren(
    el('p', {}, el('span', { class: 'who-name' }, who.userName), el('span', { class: 'who-code' }, grouped(who.code))),
    button(t('Leave'), leave, { class: 'quiet' }));
}
