// Payloads of the event bus: text, LZMA-compressed into a stand-alone block, base64.

import lzma from 'lzma';
import { BlockCodec } from '../public/js/codec/block.js';
import { MAX_BLOCK_TEXT, MAX_CACHED_CHARS, MAX_CACHED_PAYLOADS } from './limits.js';
import { PayloadCache } from './payload-cache.js';

const blocks = new BlockCodec(lzma, MAX_BLOCK_TEXT);

export const compressBlock = (text) => Buffer.from(blocks.compress(text));
export const decompressBlock = (block) => blocks.decompress(block);

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
