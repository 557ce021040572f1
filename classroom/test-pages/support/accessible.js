import assert from 'node:assert/strict';

const RULES = ['wcag2a', 'wcag2aa', 'wcag21a', 'wcag21aa', 'wcag22aa', 'best-practice'];
const NARROW = { width: 320, height: 640 };

async function findings(page) {
  const { violations } = await page.evaluate(
    (tags) => globalThis.axe.run(document, { runOnly: tags, resultTypes: ['violations'] }), RULES);
  return violations.filter(({ impact }) => ['serious', 'critical'].includes(impact))
    .flatMap(({ id, nodes }) => nodes.map(({ html, failureSummary }) => `${id}: ${html}\n${failureSummary}`));
}

// What sticks out to the right of a page that is as narrow as a small telephone.
const stickingOut = () => [...document.querySelectorAll('body *')]
  .filter((element) => element.checkVisibility() && !element.closest('.unseen, math'))
  .filter((element) => element.getBoundingClientRect().right > document.documentElement.clientWidth + 0.5)
  .map((element) => element.outerHTML.slice(0, 200));

/** Asserts that axe finds nothing serious or critical in light and in dark, and that 320 pixels are wide enough. */
export async function assertAccessible(page) {
  for (const colorScheme of ['light', 'dark']) {
    await page.emulateMedia({ colorScheme });
    assert.deepEqual(await findings(page), [], colorScheme);
  }
  const size = page.viewportSize();
  await page.setViewportSize(NARROW);
  assert.deepEqual(await page.evaluate(stickingOut), [], 'nothing sticks out');
  assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= document.documentElement.clientWidth));
  await page.setViewportSize(size);
}
