import { field } from './class.js';
import { openContext, openPage } from './browser.js';

export const command = (page, name) => page.getByRole('button', { name, exact: true });

/** The remote control's page in a window of its own, joined by hand: {page, context}. */
export async function joinController(t, url, code, { prepare, ...options } = {}) {
  const context = await openContext(t, options);
  await prepare?.(context);
  const page = await openPage(t, context);
  await page.goto(`${url}/controller?code=${code}`);
  await page.getByRole('button', { name: 'Join' }).click();
  await command(page, 'Next').waitFor();
  return { page, context };
}

/** What stands beside a name in the presenter's state: "Card" or "Presenter". */
export const stateOf = (page, name, text) => page.locator('dt', { hasText: name }).locator('+ dd', { hasText: text }).waitFor();

/** The sentence about the command that was given last. */
export const told = (page, text) => page.locator('.sent', { hasText: text }).waitFor();

export const codeField = (page) => field(page, 'Session code');
