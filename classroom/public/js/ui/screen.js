const main = document.getElementById('main');

/** Puts a screen on the page and the focus on its heading, from where a screen reader goes on. */
export function showScreen(element, pageTitle, { focus = true } = {}) {
  main.replaceChildren(element);
  document.title = `${pageTitle} – Classroom`;
  scrollTo(0, 0);
  if (focus) element.querySelector('h1')?.focus({ preventScroll: true });
}
