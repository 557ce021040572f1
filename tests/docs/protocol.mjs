// What docs/protocol.md shows must be true: each frame decodes to the data beside it (with a codec that others wrote), and
// looks as what the programs send today. Argument: calyx-presenter.
import assert from 'node:assert/strict';
import { isDeepStrictEqual } from 'node:util';
import { dataIn, isFrame, messageIn, nameOf, shapeOf } from './support/frames.mjs';
import { withPrograms } from './support/programs.mjs';
import { readBlocks } from './support/protocol-document.mjs';
import { record } from './support/recording.mjs';

const blocks = readBlocks();
const frames = new Map(blocks.filter(({ kind }) => kind === 'frame').map(({ name, text }) => [name, text]));
const data = new Map(blocks.filter(({ kind }) => kind === 'data').map(({ name, text }) => [name, text]));
const hasData = (frame) => messageIn(frame).body?.data !== undefined;

// The first line with the ids left out, and the names of the headers.
function httpShape(text) {
  const [line, ...rest] = text.split('\n\n')[0].split('\n');
  return [line.replace(/119\/\w{8}/, '119/ID'), ...rest.map((header) => header.split(':')[0].toLowerCase()).sort()];
}

function shape(name, text) {
  if (isFrame(name)) return [shapeOf(messageIn(text)), hasData(text) && shapeOf(dataIn(text))];
  if (name.startsWith('xhr')) return httpShape(text);
  return text.startsWith('{') ? shapeOf(JSON.parse(text)) : text;
}

function decodeAll() {
  for (const [name, text] of frames) {
    if (!isFrame(name)) continue;
    const [way] = name.split(' ');
    assert.equal(nameOf({ way, text }), name);
    assert.equal(data.has(name), hasData(text), `${name}: its data must stand beside it`);
    if (hasData(text)) assert.deepEqual(dataIn(text), JSON.parse(data.get(name)), name);
  }
}

function compare(recorded) {
  for (const [name, text] of frames) {
    assert.ok(recorded.has(name), `${name} is shown, but is not sent any more`);
    const form = shape(name, text);
    const isSent = recorded.get(name).some((one) => isDeepStrictEqual(shape(name, one), form));
    assert.ok(isSent, `${name} is not sent in this form any more, but as:\n${recorded.get(name)[0]}`);
  }
  // What comes back to its sender is shown once.
  const isEcho = (name) => name.startsWith('in ') && recorded.has(name.replace('in ', 'out '));
  for (const name of recorded.keys()) {
    if (isFrame(name) && !isEcho(name)) assert.ok(frames.has(name), `${name} is sent, but not shown`);
  }
}

assert.ok(frames.size > 0 && data.size > 0, 'the document shows nothing');
decodeAll();
await withPrograms(async () => compare(await record(process.argv[2])));
