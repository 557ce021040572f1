// What the pages say: in the browser's language, all of it.

import assert from 'node:assert/strict';
import { readdirSync, readFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';
import { fileURLToPath } from 'node:url';

import de from '../public/js/words/de.js';
import fr from '../public/js/words/fr.js';

const SCRIPTS = fileURLToPath(new URL('../public/js/', import.meta.url));
const sources = readdirSync(SCRIPTS, { recursive: true })
  .filter((name) => name.endsWith('.js') && !/^(words|codec)/.test(name))
  .map((name) => ({ name, text: readFileSync(join(SCRIPTS, name), 'utf8').replace(/^ *(\/\/|\/?\*).*$/gm, '') }));

const SAID = /\bt\('((?:\\.|[^'])*)'|\bcount\([^']*'((?:\\.|[^'])*)', '((?:\\.|[^'])*)'/g;
// What stands in the pages themselves.
const IN_MARKUP = ['Classroom', 'Remote control'];
const said = new Set([...IN_MARKUP, ...sources.flatMap(({ text }) => [...text.matchAll(SAID)].flatMap((match) => match.slice(1)))]
  .filter(Boolean));

let loaded = 0;
async function wordsFor(t, ...languages) {
  const before = Object.getOwnPropertyDescriptor(globalThis, 'navigator');
  Object.defineProperty(globalThis, 'navigator', { value: { languages }, configurable: true });
  t.after(() => (before ? Object.defineProperty(globalThis, 'navigator', before) : delete globalThis.navigator));
  return import(`../public/js/words/words.js?${loaded += 1}`);
}

for (const [name, table] of Object.entries({ de, fr })) {
  test(`all that the pages say is there in ${name}, with the same places`, () => {
    assert.deepEqual(Object.keys(table).sort(), [...said].sort());
    for (const [text, translation] of Object.entries(table)) {
      assert.deepEqual(translation.match(/%\d/g)?.sort(), text.match(/%\d/g)?.sort(), text);
      assert.notEqual(translation, '', text);
    }
  });
}

test('no text for people stands outside the tables', () => {
  // Two words of which the first begins like a sentence, or words that become the content of an element.
  const left = sources.flatMap(({ name, text }) => [...text.replaceAll(SAID, '')
    .matchAll(/'[^'\n]*\p{Lu}\p{Ll}+,? \p{L}[^'\n]*'|`[^`\n]*\p{Ll}{2,} \p{Ll}+[^`\n]*`|'\p{Lu}\p{Ll}{2,}[.!?…]?'(?=[,);\]}])/gu)]
    .map(([found]) => `${name}: ${found}`));
  const free = ['device/device.js: `A "${type}" cannot be sent:`', 'device/device.js: `A "${type}" cannot be read:`', // the log
    'device/device.js: \'The bus reports\'',
    "controller/main.js: 'Remote control'", // the device's name on the wire
    "model/ordinals.js: 'True'", "model/lesson.js: 'Assessment'", "ui/dialog.js: 'Escape'"];
  assert.deepEqual(left.filter((one) => !free.includes(one)), []);
});

test('the first language of the browser that there is, counts', async (t) => {
  const texts = { 'de-CH': 'Beitreten', fr: 'Rejoindre', en: 'Join' };
  for (const [language, text] of Object.entries(texts)) {
    const words = await wordsFor(t, 'it', language, 'de', 'fr');
    assert.equal(words.t('Join'), text);
    assert.equal(words.language, language.slice(0, 2));
  }
  assert.equal((await wordsFor(t, 'it')).language, 'en');
});

test('one and many are told apart as the language does, and values are taken as they are', async (t) => {
  const english = await wordsFor(t, 'en');
  assert.equal(english.count(0, '%1 option', '%1 options'), '0 options');
  assert.equal(english.count(1, '%1 option', '%1 options'), '1 option');
  const french = await wordsFor(t, 'fr');
  assert.equal(french.count(0, '%1 option', '%1 options'), '0 réponse');
  assert.equal(french.t('Go on as %1 in %2', '%2', '123'), 'Continuer en tant que %2 dans 123');
});
