'use strict';

// The npm package's codec on all files of a folder: N.txt to N.lzma ("compress"), N.lzma to N.out ("decompress"). A block
// that it refuses gives no file. Bytes in, bytes out: from text it takes the Basic Multilingual Plane only.
//
// node lzma-files.js compress|decompress FOLDER

const fs = require('fs');
const path = require('path');
const lzma = require(path.join(__dirname, '../../../classroom/node_modules/lzma'));

const MODE = 1;
const [operation, folder] = process.argv.slice(2);

function decompressed(block) {
  const output = lzma.decompress(block);
  return typeof output === 'string' ? Buffer.from(output) : Buffer.from(Uint8Array.from(output));
}

const work = {
  compress: ['.txt', '.lzma', (text) => Buffer.from(Uint8Array.from(lzma.compress(text, MODE)))],
  decompress: ['.lzma', '.out', decompressed],
};
const [from, to, convert] = work[operation];

for (const name of fs.readdirSync(folder).filter((each) => each.endsWith(from))) {
  const file = path.join(folder, name);
  try {
    fs.writeFileSync(file.slice(0, -from.length) + to, convert(fs.readFileSync(file)));
  } catch (error) {
    if (!(error instanceof Error) || error.code) throw error; // not what the codec says of a block
  }
}
