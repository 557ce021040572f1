import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import { compressBlock, decodeData, decompressBlock, encodeData } from '../lib/codec.js';
import { check } from './support/check.js';

const TEXTS = {
  'the empty text': '',
  'ASCII text': '{"type":"ping"}',
  'text of the Basic Multilingual Plane': 'Öl свет 葉 ﷺ',
  'text beyond the Basic Multilingual Plane': 'leaf 🌱 and clef 𝄞',
  'a NUL inside': 'before\0after',
  'a byte order mark in front': '\ufefftext',
  'a repetitive text': 'photosynthesis '.repeat(20000),
  'a long text of all kinds': Array.from({ length: 30000 }, (_, i) => String.fromCodePoint(32 + (i * 7919) % 0xd000)).join(''),
};

for (const [kind, text] of Object.entries(TEXTS)) {
  check(`${kind} comes back through a block`, () => {
    assert.equal(decompressBlock(compressBlock(text)), text);
  });
}

check('a block begins with the properties and the size in bytes', () => {
  const block = compressBlock('Öl🌱');
  assert.equal(block[0], 0x5d);
  assert.equal(block.readBigUInt64LE(5), BigInt(Buffer.byteLength('Öl🌱')));
});

check('a block that is cut anywhere is refused, and soon', () => {
  const block = compressBlock('one leaf, two leaves, 葉');
  for (let length = 0; length < block.length; length += 1) {
    assert.throws(() => decompressBlock(block.subarray(0, length)), /shorter|early|corrupted/, `${length} bytes`);
  }
});

check('a block that claims another size is refused', () => {
  for (const claim of [1n, 12n, 14n, 1n << 40n]) {
    const block = compressBlock('thirteen text');
    block.writeBigUInt64LE(claim, 5);
    assert.throws(() => decompressBlock(block), /size|large|early|corrupted/, `claim ${claim}`);
  }
});

check('bytes that are not UTF-8 are refused', () => {
  const lone = Buffer.from(compressBlock('abc'));
  assert.throws(() => decompressBlock(Buffer.concat([lone.subarray(0, 13), Buffer.alloc(20, 0xff)])));
});

const hasXz = spawnSync('xz', ['--version']).status === 0;
const xz = (args, input) => {
  const { status, stdout, stderr } = spawnSync('xz', ['--format=lzma', ...args], { input, maxBuffer: 1 << 28 });
  assert.equal(status, 0, String(stderr));
  return stdout;
};

for (const [kind, text] of Object.entries(TEXTS)) {
  check(`xz reads our block of ${kind}`, { skip: !hasXz }, () => {
    assert.equal(xz(['-dc'], compressBlock(text)).toString('utf8'), text);
  });

  check(`we read xz's block of ${kind}, with and without its size`, { skip: !hasXz }, () => {
    const block = xz(['-c'], Buffer.from(text));
    assert.equal(block.readBigUInt64LE(5), 0xffffffffffffffffn);
    assert.equal(decompressBlock(block), text);
    block.writeBigUInt64LE(BigInt(Buffer.byteLength(text)), 5);
    assert.equal(decompressBlock(block), text);
  });
}

check('data is a list of one base64 block, and comes back as the value', () => {
  const value = { word: 'Öl 🌱', list: [1, null, 'x'] };
  const data = encodeData(value);
  assert.equal(data.length, 1);
  assert.match(data[0], /^[A-Za-z0-9+/]+=*$/);
  assert.deepEqual(decodeData(data), value);
  assert.deepEqual(decodeData(data[0]), value);
});

check('chunks are decompressed one by one, then put together and parsed', () => {
  const text = JSON.stringify({ passage: 'ein längerer Text 葉'.repeat(50) });
  const chunks = [text.slice(0, 100), text.slice(100, 101), text.slice(101)]
    .map((part) => compressBlock(part).toString('base64'));
  assert.deepEqual(decodeData(chunks), JSON.parse(text));
});

check('what is not such data throws', () => {
  const good = encodeData({ a: 1 })[0];
  const notJson = compressBlock('not JSON').toString('base64');
  for (const data of [undefined, null, 5, {}, [], [good, 5], ['!'], [''], [good.slice(0, 8)], [notJson]]) {
    assert.throws(() => decodeData(data), `${JSON.stringify(data)}`);
  }
});

check('the same payload is decoded once', () => {
  const data = encodeData({ some: 'question' });
  assert.equal(decodeData(data), decodeData([...data]));
});
