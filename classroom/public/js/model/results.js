// How a poll came out, when the presenter tells it.

import { isObject, listOf, textOf, wholeNumber } from './text.js';

const MOST_BARS = 50;

/** {text, bars: [{title, count, isCorrect}]}; null when there is nothing to draw. */
export function resultsFrom(data) {
  if (!isObject(data)) return null;
  const bars = listOf(data.bars).filter(isObject).slice(0, MOST_BARS).map(({ title, count, isCorrect }) => ({
    title: textOf(title), count: wholeNumber(count, 0, Number.MAX_SAFE_INTEGER), isCorrect: isCorrect === true,
  }));
  return bars.length > 0 ? { text: textOf(data.text), bars } : null;
}
