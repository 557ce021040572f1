// Encodes and decodes payloads off the page's own thread: a large picture takes seconds on a telephone.
// A classic worker, because the LZMA codec is no module.

importScripts('/vendor/lzma.js');

const MAX_TEXT = 256 * 1024 * 1024;
const CHARS_AT_ONCE = 0x8000;

const ready = import('/js/codec/block.js').then(({ BlockCodec }) => new BlockCodec(self.LZMA, MAX_TEXT));

function toBase64(bytes) {
  let text = '';
  for (let at = 0; at < bytes.length; at += CHARS_AT_ONCE) {
    text += String.fromCharCode(...bytes.subarray(at, at + CHARS_AT_ONCE));
  }
  return btoa(text);
}

const fromBase64 = (text) => Uint8Array.from(atob(text), (char) => char.charCodeAt(0));

const JOBS = {
  encode: (codec, value) => [toBase64(codec.compress(JSON.stringify(value)))],
  decode: (codec, data) => {
    const chunks = Array.isArray(data) ? data : [data];
    return JSON.parse(chunks.map((chunk) => codec.decompress(fromBase64(chunk))).join(''));
  },
};

// Takes the place of the handler that the LZMA codec has set for itself.
self.onmessage = async ({ data: { id, job, input } }) => {
  try {
    self.postMessage({ id, output: JOBS[job](await ready, input) });
  } catch (error) {
    self.postMessage({ id, error: error.message });
  }
};
