import { language, t } from '../words/words.js';

const main = document.getElementById('main');
const brand = document.querySelector('.brand-name');

document.documentElement.lang = language;
brand.textContent = t(brand.textContent);

/** Puts a screen on the page and the focus on its heading, from where a screen reader goes on. */
export function showScreen(element, pageTitle, { focus = true } = {}) {
  main.replaceChildren(element);
  document.title = t('%1 – Classroom', pageTitle);
  scrollTo(0, 0);
  if (focus) element.querySelector('h1')?.focus({ preventScroll: true });
}
