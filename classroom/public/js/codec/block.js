// LZMA blocks and the text in them. The same for the browser and for Node.js: typed arrays only.

const HEADER_BYTES = 13;
const SIZE_OFFSET = 5;
const UNKNOWN_SIZE = 0xffffffffffffffffn;
// The smallest dictionary of the codec, 64 KiB: payloads are small, and a large one costs every block.
const MODE = 1;

const utf8 = new TextDecoder('utf-8', { fatal: true, ignoreBOM: true });
const toUtf8 = new TextEncoder();

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

function claimedSize(block, maxText) {
  if (block.length <= HEADER_BYTES) throw new Error('shorter than a block');
  const size = new DataView(block.buffer, block.byteOffset).getBigUint64(SIZE_OFFSET, true);
  if (size === UNKNOWN_SIZE) return undefined;
  if (size > maxText) throw new Error('claims too large a text');
  return Number(size);
}

export class BlockCodec {
  #lzma;
  #maxText;

  constructor(lzma, maxText) {
    this.#lzma = lzma;
    this.#maxText = maxText;
  }

  /** The block for a text. The codec is given bytes: from text it takes the Basic Multilingual Plane only. */
  compress(text) {
    return Uint8Array.from(this.#lzma.compress(toUtf8.encode(text), MODE));
  }

  /** The text in a block; throws when it is cut, corrupt, without an end marker or not of the size that it claims. */
  decompress(block) {
    const size = claimedSize(block, this.#maxText);
    // Text where the bytes are plain UTF-8 without characters beyond the BMP, bytes in every other case.
    const output = this.#lzma.decompress(codecInput(block));
    const bytes = typeof output === 'string' ? toUtf8.encode(output) : Uint8Array.from(output);
    if (size !== undefined && bytes.length !== size) throw new Error('not of the size that the block claims');
    return typeof output === 'string' ? output : utf8.decode(bytes);
  }
}
