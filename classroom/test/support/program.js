import { spawn } from 'node:child_process';
import { createInterface } from 'node:readline';
import { fileURLToPath } from 'node:url';

/** One of our programs as a child process, ended with the test: {lines, stderr(), exited, child}. */
export function runProgram(t, script, args) {
  const child = spawn(process.execPath, [fileURLToPath(new URL(`../../${script}`, import.meta.url)), ...args]);
  let errors = '';
  child.stderr.on('data', (text) => { errors += text; });
  const lines = [];
  const waiting = [];
  createInterface({ input: child.stdout }).on('line', (line) => {
    lines.push(line);
    waiting.splice(0).forEach((wake) => wake());
  });
  const exited = new Promise((resolve) => {
    child.on('close', (code, signal) => resolve({ code, signal }));
  });
  t.after(async () => {
    child.kill('SIGKILL');
    await exited;
  });
  return { child, lines, exited, stderr: () => errors, line: (n) => untilLine(lines, waiting, exited, n) };
}

async function untilLine(lines, waiting, exited, n) {
  let over = false;
  exited.then(() => { over = true; });
  while (lines.length <= n) {
    if (over) throw new Error(`ended before line ${n}: ${lines.join(' / ')}`);
    await Promise.race([new Promise((wake) => { waiting.push(wake); }), exited]);
  }
  return lines[n];
}

/** The server as a child process, listening: also {url}. */
export async function runServer(t, args = []) {
  const server = runProgram(t, 'server.js', args);
  const url = /^listening (http:\/\/\S+)$/.exec(await server.line(0))?.[1];
  if (!url) throw new Error(`not an address: ${server.lines[0]}`);
  return { ...server, url };
}
