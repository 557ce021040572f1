import { fileURLToPath } from 'node:url';

const FOLDER = fileURLToPath(new URL('../../../docs/images/', import.meta.url));

/** Takes a picture of the page for the documents. */
export async function takePicture(page, name) {
  // Another code each time.
  await page.evaluate(() => document.querySelectorAll('.who-code').forEach((code) => { code.textContent = '482\u00a0913'; }));
  await page.evaluate(() => document.fonts.ready);
  await page.mouse.move(0, 0);
  await page.screenshot({ path: `${FOLDER}${name}.png`, animations: 'disabled', caret: 'hide', fullPage: true });
}
