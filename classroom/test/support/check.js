import { test } from 'node:test';

const WATCHDOG_MS = 180000;

/** A test that fails rather than hang. */
export const check = (name, options, run) => (typeof options === 'function'
  ? test(name, { timeout: WATCHDOG_MS }, options)
  : test(name, { timeout: WATCHDOG_MS, ...options }, run));
