import assert from 'node:assert/strict';
import { createRequire } from 'node:module';
import { fileURLToPath } from 'node:url';
import { chromium } from 'playwright-core';

const { resolve } = createRequire(import.meta.url);

const FLAGS = [
  // As root in a container: without a sandbox, a graphics processor or much shared memory.
  '--headless', '--no-sandbox', '--disable-gpu', '--disable-dev-shm-usage',
  '--disable-quic', '--no-first-run', '--disable-background-networking', '--disable-component-update', '--disable-sync',
  '--no-proxy-server',
  // Whatever a page asks for: it gets loopback or nothing.
  '--host-resolver-rules=MAP * ~NOTFOUND, EXCLUDE 127.0.0.1',
];

// Longer than anything takes, shorter than the watchdog: so that the message is that of the step that failed.
const STEP_MS = 60000;

export const DESKTOP = { viewport: { width: 1024, height: 768 } };
export const PHONE = { viewport: { width: 320, height: 640 }, hasTouch: true, isMobile: true, deviceScaleFactor: 2 };

// By the fonts that they have.
const launched = new Map();

const launch = (env) => chromium.launch({ executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium', args: FLAGS, env });

function browserWith(fonts) {
  const env = fonts ? { ...process.env, FONTCONFIG_FILE: fileURLToPath(new URL(fonts, import.meta.url)) } : process.env;
  if (!launched.has(fonts)) launched.set(fonts, launch(env));
  return launched.get(fonts);
}

/** To be called once when the tests of a file are over. */
export async function closeBrowser() {
  await Promise.all([...launched.values()].map(async (browser) => (await browser).close()));
}

/** A browser's window of its own, with nothing remembered; closed with the test. fonts: a file beside this one, or null for the machine's. */
export async function openContext(t, { fonts = 'fonts.conf', ...options } = {}) {
  const browser = await browserWith(fonts);
  const context = await browser.newContext({ ...DESKTOP, reducedMotion: 'reduce', ...options });
  context.setDefaultTimeout(STEP_MS);
  await context.addInitScript({ path: resolve('axe-core/axe.min.js') });
  t.after(() => context.close());
  return context;
}

/** A page that fails its test when it reports an error that was not announced with `page.mayFail`. */
export async function openPage(t, context) {
  const page = await context.newPage();
  const errors = [];
  page.mayFail = false;
  const note = (text) => { if (!page.mayFail) errors.push(text); };
  page.on('pageerror', (error) => note(String(error.stack)));
  page.on('console', (message) => {
    if (['error', 'warning'].includes(message.type())) note(`${message.text()} (${message.location().url})`);
  });
  t.after(() => assert.deepEqual(errors, [], 'the page reports nothing'));
  return page;
}
