import assert from 'node:assert/strict';

const MOST_STEPS = 40;

const isFocused = (locator) => locator.evaluate((element) => element === document.activeElement);

// What has the focus by the keyboard can be seen to have it: it or what holds it has an outline.
const hasOutline = (locator) => locator.evaluate((element) => {
  const holder = element.closest('label') ?? element;
  return [element, holder].some((one) => getComputedStyle(one).outlineStyle !== 'none');
});

/** Goes to an element with the tab key alone, and asserts that one sees where one is. */
export async function tabTo(page, locator) {
  await locator.waitFor();
  for (let step = 0; step < MOST_STEPS; step += 1) {
    if (await isFocused(locator)) {
      assert.ok(await hasOutline(locator), `the focus shows on ${locator}`);
      return;
    }
    await page.keyboard.press('Tab');
  }
  assert.fail(`${locator} is not reached with the tab key`);
}

export async function press(page, key, times = 1) {
  for (let i = 0; i < times; i += 1) await page.keyboard.press(key);
}
