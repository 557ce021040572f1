import { existsSync, mkdirSync, readFileSync, writeFileSync } from 'node:fs';
import { fileURLToPath } from 'node:url';

const FOLDER = fileURLToPath(new URL('../../../docs/images/', import.meta.url));

// What two makers of the same picture may differ by: how far a colour may be off (of 255), and for how many of
// 10,000 points it may be farther.
const TOLERANCE = 48;
const STRAY = 5;

// Runs in a page. The part of the points, in 10,000, that differ by more than the tolerance; all of them where the
// sizes do.
async function difference({ pictures, tolerance }) {
  const [a, b] = await Promise.all(pictures.map(async (base64) => {
    const image = new Image();
    image.src = `data:image/png;base64,${base64}`;
    await image.decode();
    const { naturalWidth: width, naturalHeight: height } = image;
    const context = Object.assign(document.createElement('canvas'), { width, height }).getContext('2d');
    context.drawImage(image, 0, 0);
    return { width, height, bytes: context.getImageData(0, 0, width, height).data };
  }));
  if (a.width !== b.width || a.height !== b.height) return 10000;
  const strays = new Set();
  a.bytes.forEach((value, i) => { if (Math.abs(value - b.bytes[i]) > tolerance) strays.add(i >> 2); });
  return (10000 * strays.size) / (a.width * a.height);
}

async function looksLike(page, one, other) {
  const blank = await page.context().newPage();
  const pictures = [one, other].map((bytes) => bytes.toString('base64'));
  const found = await blank.evaluate(difference, { pictures, tolerance: TOLERANCE });
  await blank.close();
  return found <= STRAY;
}

/** A picture of the page for the documents; one that shows no change is left as it is. Resolves with true when it was written. */
export async function takePicture(page, name, folder = FOLDER) {
  // Another code each time, and each time another picture.
  await page.evaluate(() => document.querySelectorAll('.who-code').forEach((code) => { code.textContent = '482\u00a0913'; }));
  await page.evaluate(() => document.fonts.ready);
  await page.mouse.move(0, 0);
  const taken = await page.screenshot({ animations: 'disabled', caret: 'hide', fullPage: true });
  const file = `${folder}${name}.png`;
  if (existsSync(file) && await looksLike(page, readFileSync(file), taken)) return false;
  mkdirSync(folder, { recursive: true });
  writeFileSync(file, taken);
  return true;
}
