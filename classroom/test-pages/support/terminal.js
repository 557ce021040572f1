// A terminal with a lesson on it: the host runs on a real one, and xterm.js shows what it has written.

import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import { createRequire } from 'node:module';

const { resolve } = createRequire(import.meta.url);

const SIZE = { cols: 84, rows: 38 };
const COLOURS = { background: '#101418', foreground: '#d8dee4' };

/** Runs a command on a terminal of its own; resolves with the bytes that it has written there, once it has ended well. */
export async function runOnTerminal(t, command, env) {
  // A shell's word: what is in it stays as it is.
  const quoted = command.map((word) => `'${word.replaceAll("'", "'\\''")}'`).join(' ');
  const sized = `stty cols ${SIZE.cols} rows ${SIZE.rows}; exec ${quoted}`;
  const child = spawn('script', ['--quiet', '--flush', '--return', '--command', sized, '/dev/null'], {
    env: { ...process.env, TERM: 'xterm-256color', LC_ALL: 'C.UTF-8', ...env }, stdio: ['ignore', 'pipe', 'pipe'],
  });
  t.after(() => child.kill('SIGKILL'));
  const written = [];
  const complaints = [];
  child.stdout.on('data', (bytes) => written.push(bytes));
  child.stderr.on('data', (bytes) => complaints.push(bytes));
  const [code] = await once(child, 'close');
  const bytes = Buffer.concat(written);
  assert.equal(code, 0, `the program on the terminal has ended with ${code}: ${Buffer.concat([...complaints, bytes])}`);
  return bytes.toString();
}

/** Shows what was written on a terminal that fills the page. */
export async function showTerminal(page, text) {
  await page.setContent('<!doctype html><title>Terminal</title><div id="terminal"></div>');
  await page.addStyleTag({ content: `body { margin: 0; padding: 12px; background: ${COLOURS.background} }` });
  await page.addStyleTag({ path: resolve('@xterm/xterm/css/xterm.css') });
  await page.addScriptTag({ path: resolve('@xterm/xterm/lib/xterm.js') });
  await page.evaluate(({ size, colours, content }) => new Promise((shown) => {
    const terminal = new globalThis.Terminal({
      ...size, convertEol: false, fontFamily: 'DejaVu Sans Mono', fontSize: 14, scrollback: 0, cursorInactiveStyle: 'none',
      theme: colours,
    });
    terminal.open(document.getElementById('terminal'));
    // Parsed, and then drawn with the next frame.
    terminal.write(content, () => requestAnimationFrame(() => requestAnimationFrame(shown)));
  }), { size: SIZE, colours: COLOURS, content: text });
}
