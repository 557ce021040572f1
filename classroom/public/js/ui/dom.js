/**
 * An element with its attributes, its listeners (names that begin with "on") and its children. Texts become text
 * nodes, never markup; that this is the only way in which the pages make elements keeps it so.
 */
export function el(tag, attributes = {}, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (name.startsWith('on')) element.addEventListener(name.slice(2), value);
    else if (value === true) element.setAttribute(name, '');
    else if (value !== false && value !== undefined && value !== null) element.setAttribute(name, value);
  }
  element.append(...children.filter((child) => child !== undefined && child !== null && child !== false));
  return element;
}

export const button = (text, onclick, attributes = {}) => el('button', { type: 'button', onclick, ...attributes }, text);

/** The heading of a screen: what gets the focus when the screen comes. */
export const title = (...children) => el('h1', { tabindex: '-1' }, ...children);

/** Sets a text, or hides the element when there is none. */
export function setText(element, text) {
  if (element.textContent !== text) element.textContent = text;
  element.hidden = text === '';
}

/** A session's code as it is shown everywhere. */
export const grouped = (code) => `${code.slice(0, 3)}\u00a0${code.slice(3)}`;

let count = 0;

/** An id for elements that refer to each other. */
export const freshId = (word) => `${word}-${count += 1}`;
