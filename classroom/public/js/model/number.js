// Numbers as learners type them, and the one form in which equal numbers are equal answers.

import { count, t } from '../words/words.js';

const MOST_DECIMALS = 20;

export const decimalsOf = (noOfDecimals) => Math.min(Math.max(Math.trunc(Number(noOfDecimals)) || 0, 0), MOST_DECIMALS);

const decimalsProblem = (decimals) => (decimals === 0 ? t('Enter a whole number, without decimals.')
  : count(decimals, 'Enter at most %1 decimal.', 'Enter at most %1 decimals.'));

/** {text}: the number with exactly the decimals wanted, after a point; or {problem}. Digits only: nothing is rounded. */
export function readNumber(typed, decimals) {
  const match = /^([+\-\u2212]?)(\d*)(?:[.,](\d*))?$/.exec(typed.replace(/[\s\u00a0\u202f]/g, ''));
  if (!match || !(match[2] || match[3])) return { problem: t('Enter a number, such as 12 or −3.') };
  const [, sign, whole, fraction = ''] = match;
  if (fraction.replace(/0+$/, '').length > decimals) return { problem: decimalsProblem(decimals) };
  const padded = fraction.slice(0, decimals).padEnd(decimals, '0');
  const digits = (whole.replace(/^0+(?=\d)/, '') || '0') + (decimals > 0 ? `.${padded}` : '');
  const isNegative = sign !== '' && sign !== '+' && /[1-9]/.test(digits);
  return { text: isNegative ? `-${digits}` : digits };
}
