// What a screen reader says while the focus stays where it is.

const region = document.getElementById('announcer');

export function announce(text) {
  // The same text again is no change, and would not be said.
  region.textContent = region.textContent === text ? `${text}\u00a0` : text;
}
