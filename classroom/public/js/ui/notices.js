import { el } from './dom.js';

const place = document.getElementById('notices');
let shown = '';

/** The sentences above the screen, {text, kind}, or false for one that does not hold. Said as they come. */
export function showNotices(notices) {
  const now = notices.filter(Boolean);
  const key = now.map(({ text }) => text).join('\n');
  if (key === shown) return;
  shown = key;
  place.replaceChildren(...now.map(({ text, kind }) => el('p', { class: `notice ${kind}` }, text)));
}
