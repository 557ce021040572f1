import { test } from 'node:test';

// For the slowest of machines: a test of pages waits for many steps, and each has a limit of its own.
const WATCHDOG_MS = 300000;

async function endAll(endings) {
  const end = endings.pop();
  if (!end) return;
  try {
    await end();
  } finally {
    await endAll(endings);
  }
}

/** A test of pages: it fails rather than hang, and what began last ends first: pages go before what they talk to. */
export const check = (name, run) => test(name, { timeout: WATCHDOG_MS }, async (t) => {
  const endings = [];
  t.after(() => endAll(endings));
  await run({ after: (end) => endings.push(end) });
});
