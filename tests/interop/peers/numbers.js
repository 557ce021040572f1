'use strict';

// The same texts as in support/NumberedText.cpp.

const ALPHABET = [
  'a', 'Ä', 'ж', '€', '漢', '😀', '"', '\\', '\n', '<', '\u2028', '%1', '\u0301', ']', '\t', '🏫',
];

function size(number) {
  const spread = number * 7919;
  if (number % 1000 === 999) return 60000;
  if (number % 50 === 49) return 2000 + (spread % 4000);
  return 20 + (spread % 280);
}

function text(number) {
  let result = `${String(number).padStart(6, '0')}:`;
  let left = size(number) - result.length;
  for (let i = number; ; i += 1) {
    const character = ALPHABET[i % ALPHABET.length];
    const bytes = Buffer.byteLength(character);
    if (bytes > left) break;
    result += character;
    left -= bytes;
  }
  return result + '.'.repeat(left);
}

module.exports = { text };
