const middle = (row) => {
  const { top, height } = row.getBoundingClientRect();
  return top + height / 2;
};

/** Lets the rows of a list be dragged by their handles, with a mouse, a finger or a pen; `settled(row)` at the end. */
export function dragRows(list, handles, settled) {
  let dragged = null;

  list.addEventListener('pointerdown', (event) => {
    const handle = event.target.closest(handles);
    if (!handle || event.button !== 0 || list.closest('fieldset')?.disabled) return;
    event.preventDefault();
    dragged = handle.closest('li');
    dragged.classList.add('dragged');
    list.setPointerCapture(event.pointerId);
  });

  list.addEventListener('pointermove', ({ clientY }) => {
    if (!dragged) return;
    const { previousElementSibling: before, nextElementSibling: after } = dragged;
    if (before && clientY < middle(before)) before.before(dragged);
    else if (after && clientY > middle(after)) after.after(dragged);
  });

  const end = () => {
    if (!dragged) return;
    const row = dragged;
    dragged = null;
    row.classList.remove('dragged');
    settled(row);
  };
  list.addEventListener('pointerup', end);
  list.addEventListener('pointercancel', end);
}
