'use strict';

// The answers that servers send and clients count, as devices publish them.

const path = require('path');
const { LZMA } = require(path.join(__dirname, '../../classroom/node_modules/lzma/src/lzma_worker.js'));

const DIFFERENT = 1000;

function message(number) {
  const payload = JSON.stringify({
    pollId: '0b6c7e0e-3f6a-4d0e-9d5b-0f3c7b1f9a55',
    responseTime: 2500 + number,
    blob: { pick: ['B'] },
  });
  const data = Buffer.from(LZMA.compress(Buffer.from(payload), 1)).toString('base64');
  return JSON.stringify({
    type: 'rec',
    address: '6f1c0a52-session',
    body: { from: `device-${number}`, type: 'pollResponse', data: [data] },
  });
}

exports.messages = () => Array.from({ length: DIFFERENT }, (_, number) => message(number));

exports.read = (text) => {
  const { body } = JSON.parse(text);
  const bytes = Buffer.from(body.data[0], 'base64');
  const payload = JSON.parse(LZMA.decompress(bytes));
  return [body.from, payload.pollId, payload.responseTime, payload.blob.pick.join(',')];
};
