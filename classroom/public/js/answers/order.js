import { button, el } from '../ui/dom.js';
import { announce } from '../ui/announcer.js';
import { richText } from '../ui/formula.js';
import { nameOf } from '../model/options.js';
import { t } from '../words/words.js';
import { dragRows } from './drag-rows.js';

// A button at its end of the list stays where it is, and keeps the focus: it only says that it does nothing now.
function markEnds(list) {
  const rows = [...list.children];
  rows.forEach((row, i) => {
    row.querySelector('.up').setAttribute('aria-disabled', String(i === 0));
    row.querySelector('.down').setAttribute('aria-disabled', String(i === rows.length - 1));
  });
}

function orderRow(option, i, move) {
  const name = nameOf(option);
  const row = el('li', { class: 'order-row', 'data-option': i });
  row.append(
    el('span', { class: 'handle', 'aria-hidden': 'true' }),
    el('span', { class: 'order-text' },
      option.symbol !== '' && el('span', { class: 'option-symbol' }, option.symbol),
      option.text !== '' && el('span', {}, ...richText(option.text, option.math))),
    button('', () => move(row, -1), { class: 'move up', 'aria-label': t('Move %1 up', name) }),
    button('', () => move(row, 1), { class: 'move down', 'aria-label': t('Move %1 down', name) }),
  );
  return row;
}

/** All options in the learner's order: moved with two buttons each, or dragged. */
export function orderControl({ options, start, changed }) {
  const list = el('ol', { class: 'order' });
  const settled = (row) => {
    markEnds(list);
    const place = [...list.children].indexOf(row) + 1;
    announce(t('%1 is now %2 of %3.', nameOf(options[row.dataset.option]), place, options.length));
    changed();
  };
  const move = (row, by) => {
    const rows = [...list.children];
    const other = rows[rows.indexOf(row) + by];
    if (!other) return;
    // The other row moves, so that the button that was pressed stays in the page and keeps the focus.
    if (by < 0) row.after(other);
    else row.before(other);
    settled(row);
  };
  const order = start?.picked?.length === options.length ? start.picked : options.map((_, i) => i);
  list.append(...order.map((i) => orderRow(options[i], i, move)));
  markEnds(list);
  dragRows(list, '.handle', settled);
  const picked = () => [...list.children].map((row) => Number(row.dataset.option));
  return {
    element: list,
    hint: t('From the first to the last: use the arrows, or drag.'),
    draft: () => ({ picked: picked() }),
    read: () => ({ answer: { picked: picked() } }),
    focus: () => list.querySelector('.down')?.focus(),
  };
}
