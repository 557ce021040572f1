import { button, el } from './dom.js';

const place = document.getElementById('who');

/** Who this device is, and its way out; nothing for null. */
export function showWho(who, leave) {
  if (!who) {
    place.replaceChildren();
    return;
  }
  const code = `${who.code.slice(0, 3)}\u00a0${who.code.slice(3)}`;
  place.replaceChildren(
    el('p', {}, el('span', { class: 'who-name' }, who.userName), el('span', { class: 'who-code' }, code)),
    button('Leave', leave, { class: 'quiet' }));
}
