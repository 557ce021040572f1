import assert from 'node:assert/strict';

const RULES = ['wcag2a', 'wcag2aa', 'wcag21a', 'wcag21aa', 'wcag22aa', 'best-practice'];
const SIZES = [{ width: 1024, height: 768 }, { width: 320, height: 640 }];

async function findings(page) {
  const { violations } = await page.evaluate(
    (tags) => globalThis.axe.run(document, { runOnly: tags, resultTypes: ['violations'] }), RULES);
  return violations.filter(({ impact }) => ['serious', 'critical'].includes(impact))
    .flatMap(({ id, nodes }) => nodes.map(({ html, failureSummary }) => `${id}: ${html}\n${failureSummary}`));
}

// What sticks out to the right of the page.
const stickingOut = () => [...document.querySelectorAll('body *')]
  .filter((element) => element.checkVisibility() && !element.closest('.unseen, math'))
  .filter((element) => element.getBoundingClientRect().right > document.documentElement.clientWidth + 0.5)
  .map((element) => element.outerHTML.slice(0, 200));

/** Asserts that axe finds nothing serious or critical in light and in dark, on a desktop and on a small telephone. */
export async function assertAccessible(page) {
  const before = page.viewportSize();
  for (const size of SIZES) {
    await page.setViewportSize(size);
    assert.deepEqual(await page.evaluate(stickingOut), [], `nothing sticks out at ${size.width}`);
    assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= document.documentElement.clientWidth));
    for (const colorScheme of ['light', 'dark']) {
      await page.emulateMedia({ colorScheme });
      assert.deepEqual(await findings(page), [], `${colorScheme}, ${size.width} wide`);
    }
  }
  await page.setViewportSize(before);
}
