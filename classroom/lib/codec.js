// Payloads of the event bus: text, LZMA-compressed into a stand-alone block, base64.

import lzma from 'lzma';
import { MAX_BLOCK_TEXT, MAX_CACHED_CHARS, MAX_CACHED_PAYLOADS } from './limits.js';
import { PayloadCache } from './payload-cache.js';

const HEADER_BYTES = 13;
const SIZE_OFFSET = 5;
const UNKNOWN_SIZE = 0xffffffffffffffffn;
// The smallest dictionary of the codec, 64 KiB: payloads are small, and a large one costs every block.
const MODE = 1;

const utf8 = new TextDecoder('utf-8', { fatal: true, ignoreBOM: true });

// The block as the codec gets it, mended in two places. Its size is blanked out: given one, the codec stops
// there, and neither a size that is too small nor a missing end marker would be noticed. And past the end the
// codec reads on as if there were more, and makes gigabytes out of nothing: an element beyond the last one
// that throws when it is read ends that.
function codecInput(block) {
  const input = Array.from(block).fill(0xff, SIZE_OFFSET, HEADER_BYTES);
  input.length += 1;
  const end = { get: () => { throw new Error('the block ends early'); } };
  return Object.setPrototypeOf(input, Object.create(Array.prototype, { [block.length]: end }));
}

function claimedSize(block) {
  if (block.length <= HEADER_BYTES) throw new Error('shorter than a block');
  const size = block.readBigUInt64LE(SIZE_OFFSET);
  if (size === UNKNOWN_SIZE) return undefined;
  if (size > MAX_BLOCK_TEXT) throw new Error('claims too large a text');
  return Number(size);
}

/** The block for a text. The codec is given bytes: from text it takes the Basic Multilingual Plane only. */
export function compressBlock(text) {
  return Buffer.from(lzma.compress(Buffer.from(text, 'utf8'), MODE));
}

/** The text in a block; throws when it is cut, corrupt, without an end marker or not of the size that it claims. */
export function decompressBlock(block) {
  const size = claimedSize(block);
  // Text where the bytes are plain UTF-8 without characters beyond the BMP, bytes in every other case.
  const output = lzma.decompress(codecInput(block));
  const bytes = typeof output === 'string' ? Buffer.from(output, 'utf8') : Buffer.from(output);
  if (size !== undefined && bytes.length !== size) throw new Error('not of the size that the block claims');
  return typeof output === 'string' ? output : utf8.decode(bytes);
}

const decoded = new PayloadCache(MAX_CACHED_PAYLOADS, MAX_CACHED_CHARS);
const encoded = new PayloadCache(MAX_CACHED_PAYLOADS, MAX_CACHED_CHARS);

/** A value as the "data" of a message: a list that holds one base64 block. */
export function encodeData(value) {
  const text = JSON.stringify(value);
  return [encoded.get(text, () => compressBlock(text).toString('base64'))];
}

function decodeChunk(chunk) {
  if (!/^[A-Za-z0-9+/]+={0,2}$/.test(chunk)) throw new Error('not base64');
  return decompressBlock(Buffer.from(chunk, 'base64'));
}

/**
 * The value in the "data" of a message: a base64 block, or a list of them whose texts are put together.
 * Throws when it is neither. What is returned is shared by all who get the same payload: not to be changed.
 */
export function decodeData(data) {
  const chunks = Array.isArray(data) ? data : [data];
  if (chunks.length === 0 || !chunks.every((chunk) => typeof chunk === 'string')) throw new Error('no base64 data');
  return decoded.get(chunks.join('\n'), () => JSON.parse(chunks.map(decodeChunk).join('')));
}
