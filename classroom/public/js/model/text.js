/** Any value as a text: what comes from elsewhere may be missing, or a number. */
export const textOf = (value) => (value === undefined || value === null ? '' : String(value));

export const listOf = (value) => (Array.isArray(value) ? value : []);

export const isObject = (value) => value !== null && typeof value === 'object' && !Array.isArray(value);

/** A whole number within bounds, whatever has come. */
export function wholeNumber(value, lowest, highest, otherwise = lowest) {
  const number = Math.trunc(Number(value));
  return Number.isFinite(number) ? Math.min(Math.max(number, lowest), highest) : otherwise;
}
