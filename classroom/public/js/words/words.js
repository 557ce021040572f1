// What people read stands in English where it is said, and in other languages in the tables beside this file: in the first of
// the browser's languages that there is.

import de from './de.js';
import fr from './fr.js';

const TABLES = { en: {}, de, fr };
const wanted = (globalThis.navigator?.languages ?? []).map((tag) => tag.split('-')[0].toLowerCase());

export const language = wanted.find((one) => Object.hasOwn(TABLES, one)) ?? 'en';
const table = TABLES[language];
const plurals = new Intl.PluralRules(language);

/** A text in the page's language, with the values in its places %1, %2 and so on. */
export const t = (text, ...values) => (table[text] ?? text).replace(/%(\d)/g, (place, i) => values[i - 1] ?? place);

/** The text for one thing, or that for more: %1 is their number, the values follow. */
export const count = (number, one, more, ...values) => t(plurals.select(number) === 'one' ? one : more, number, ...values);
