// Columns that line up on a terminal.

const WIDE = /\p{Script=Han}|\p{Emoji_Presentation}/u;

const widthOf = (text) => [...text].reduce((width, character) => width + (WIDE.test(character) ? 2 : 1), 0);

/** Rows of texts as lines: two blanks before each column, none at a line's end. */
export function tableLines(rows) {
  const columns = Math.max(...rows.map((row) => row.length));
  const widths = Array.from({ length: columns }, (_, i) => Math.max(...rows.map((row) => widthOf(row[i] ?? ''))));
  const cell = (text, i) => `  ${text}${' '.repeat(widths[i] - widthOf(text))}`;
  return rows.map((row) => row.map(cell).join('').trimEnd());
}
