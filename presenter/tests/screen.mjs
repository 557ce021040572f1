// What a terminal shows: takes what is written to it in lines of base64, or "resize COLUMNS ROWS", and answers each with its
// screen in JSON.
//
// node screen.mjs COLUMNS ROWS
import { createRequire } from 'node:module';
import { createInterface } from 'node:readline';

const { Terminal } = createRequire(new URL('../../classroom/package.json', import.meta.url))('@xterm/headless');
const [cols, rows] = process.argv.slice(2).map(Number);
const terminal = new Terminal({ cols, rows, scrollback: 0, allowProposedApi: true });

for await (const line of createInterface({ input: process.stdin })) {
  const [, columns, height] = /^resize (\d+) (\d+)$/.exec(line) ?? [];
  if (columns) terminal.resize(Number(columns), Number(height));
  else await new Promise((done) => { terminal.write(Buffer.from(line, 'base64'), done); });
  const { active } = terminal.buffer;
  const lines = Array.from({ length: terminal.rows }, (_, y) => active.getLine(y).translateToString(true).trimEnd());
  console.log(JSON.stringify({ lines, column: active.cursorX }));
}
