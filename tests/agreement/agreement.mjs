// agreement.mjs PROGRAM PROGRAM: gives both the same cases, made from a seed, from the inputs that the fuzz targets keep, and
// from recorded answers, and compares what they write, line by line.

import assert from 'node:assert/strict';
import { execFileSync, spawnSync } from 'node:child_process';
import { existsSync, mkdtempSync, readFileSync, readdirSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { gzipSync } from 'node:zlib';

import { compressBlock, encodeData } from '../../classroom/lib/codec.js';
import { handMade } from '../fuzz/seeds.mjs';

const programs = process.argv.slice(2);
const INBOUND = 20000;
const OUTBOUND = 2000;
const FAULTS = 500;
const seed = Number(process.env.AGREEMENT_SEED ?? 20);

const missing = programs.find((program) => !existsSync(program));
if (missing) {
  console.log(`SKIPPED: there is no ${missing} to compare with; build it with the other Qt first`);
  process.exit(77);
}

// Numbers that are the same for the same seed (a xorshift).
let state = (seed * 2654435761 + 1) >>> 0;
function below(limit) {
  state ^= state << 13;
  state ^= state >>> 17;
  state ^= state << 5;
  return (state >>> 0) % limit;
}
const oneOf = (list) => list[below(list.length)];
const bytesOf = (input) => (Buffer.isBuffer(input) ? input : Buffer.from(input));

const TEXTS = ['', 'a', '0', '-1', 'ash, elm', 'é€😀', '"\\/', '%1 %2', '[ { } ]', 'null', '1e400', 'data:image/png;base64,AA==', 'x'.repeat(300),
  'http://h/?a=b&c', 'line\nline', '\u0000', '\u2028'];
const NUMBERS = [0, 1, -1, 2, 5, 100, 2147483647, 2147483648, -2147483649, 0.5, 1e15, 9007199254740993, 1e300, -0.1];
const value = (depth = 2) => oneOf([
  () => oneOf(TEXTS), () => oneOf(NUMBERS), () => null, () => oneOf([true, false]),
  () => (depth ? [...Array(below(4))].map(() => value(depth - 1)) : []),
  () => (depth ? Object.fromEntries([...Array(below(4))].map(() => [oneOf(TEXTS), value(depth - 1)])) : {}),
])();
const KEYS = ['pollId', 'responseTime', 'blob', 'questionNumber', 'userName', 'deviceType', 'questionId', 'answer', 'optionAnswers', 'type'];
const answers = [...Array(400)].map(() => encodeData(Object.fromEntries([...Array(1 + below(6))].map(() => [oneOf(KEYS),
  oneOf([() => value(), () => ({ pick: value(), input: value() }), () => [{ activityOptionId: value() }]])()]))));
// What is no JSON, or text with a NUL in it.
answers.push(...['a\u0000b', '{"a":1}\u0000', '\u0000', '["\u0000"]', 'no JSON', '5', 'null', '"text"', '[1,2]'].map((text) =>
  [compressBlock(text).toString('base64')]), [compressBlock('{"a":').toString('base64'), compressBlock('\u00001}').toString('base64')]);
const TYPES = ['join', 'pollResponse', 'questionResponse', 'questionGet', 'stopSession', 'addImageCard', 'nextCard', 'chat'];

// Some bytes are changed, left out, or stand twice.
function damaged(input) {
  let bytes = Buffer.from(input);
  for (let times = 1 + below(3); times > 0 && bytes.length > 0; --times) {
    const at = below(bytes.length);
    const end = Math.min(bytes.length, at + 1 + below(8));
    bytes = oneOf([
      () => Buffer.concat([bytes.subarray(0, at), Buffer.from([below(256)]), bytes.subarray(at + 1)]),
      () => Buffer.concat([bytes.subarray(0, at), bytes.subarray(end)]),
      () => Buffer.concat([bytes.subarray(0, end), bytes.subarray(at)]),
      () => bytes.subarray(0, at),
    ])();
  }
  return bytes;
}

const message = () => JSON.stringify({ type: 'publish', address: 'T', body: oneOf([
  () => ({ type: oneOf(TYPES), from: value(1), data: oneOf([oneOf(answers), oneOf(answers)[0], oneOf(answers.slice(-11)), value()]) }),
  () => ({ type: oneOf(TYPES), from: 'd', data: oneOf(answers) }),
  () => ({ action: oneOf(['register', 'unregister', 'other']), client: { type: oneOf(['user', 'controller', value()]), token: value(1) } }),
  () => value(),
])() });
function inbound() {
  const input = below(4) ? message() : oneOf(handMade.Message);
  return ['message', below(3) ? input : damaged(input)];
}

const outbound = () => ['send', JSON.stringify([below(11), below(10), below(11), below(12), below(3), oneOf(TEXTS), below(2), oneOf(TEXTS)])];

const recorded = new URL('../support/recorded/', import.meta.url);
const recordings = readdirSync(recorded).filter((name) => name.endsWith('.http')).map((name) => readFileSync(new URL(name, recorded)));
const pieces = () => Buffer.from([oneOf([0x73, 0x70]), below(256), below(256), below(8), below(64)]);
const answer = () => Buffer.concat([pieces(), oneOf(recordings)]);
function fault() {
  if (below(2)) return ['http', damaged(answer())];
  const reply = bytesOf(oneOf(handMade.Reply));
  const body = below(2) ? damaged(reply.subarray(2)) : reply.subarray(2);
  const isPacked = below(3) === 0;
  const packed = isPacked ? gzipSync(body) : body;
  const bits = (below(4) ? 0 : 1) | (isPacked ? 2 : 0) | (below(5) ? 0 : 4);
  return ['reply', Buffer.concat([Buffer.from([below(256), bits]), below(3) ? packed : damaged(packed)])];
}

// What the fuzz targets keep, and what was made for them by hand.
const KINDS = { Message: 'message', SockJSFrame: 'frame', HttpResponse: 'http', Payload: 'payload', Block: 'block', Gzip: 'gzip', Json: 'json',
  Serializer: 'json', Reply: 'reply' };
function kept() {
  const cases = [];
  for (const [name, kind] of Object.entries(KINDS)) {
    const folder = mkdtempSync(join(tmpdir(), 'corpus-'));
    execFileSync('tar', ['-xzf', new URL(`../fuzz/corpus/${name}.tar.gz`, import.meta.url).pathname, '-C', folder]);
    for (const file of readdirSync(folder, { recursive: true, withFileTypes: true }))
      if (file.isFile()) cases.push([kind, readFileSync(join(file.path ?? folder, file.name))]);
    rmSync(folder, { recursive: true });
    for (const input of handMade[name] ?? []) cases.push([kind, bytesOf(input)]);
  }
  return cases;
}

function outcomes(program, cases) {
  const input = cases.map(([kind, bytes]) => `${kind} ${bytesOf(bytes).toString('base64')}\n`).join('');
  const { status, signal, stdout, stderr } = spawnSync(program, { input, maxBuffer: 2 ** 30, encoding: 'utf8' });
  assert.deepEqual([status, signal], [0, null], `${program}: ${stderr}`);
  const lines = stdout.split('\n').slice(0, -1);
  assert.equal(lines.length, cases.length, `${program} has not written a line for each case`);
  return lines;
}

const many = (count, make) => [...Array(count)].map(make);
const cases = [...many(INBOUND, inbound), ...many(OUTBOUND, outbound), ...many(FAULTS, fault),
  ...recordings.map((bytes) => ['http', Buffer.concat([pieces(), bytes])]), ...kept()];
const [before, now] = programs.map((program) => outcomes(program, cases));
const others = cases.flatMap(([kind, input], i) => (before[i] === now[i] ? [] : [`${kind} ${bytesOf(input).toString('latin1').slice(0, 600)}
  ${before[i].slice(0, 3000)}\n  ${now[i].slice(0, 3000)}\n`]));
console.log(`seed ${seed}: ${cases.length} cases, ${new Set(before).size} outcomes, ${others.length} differ`);
console.log(others.slice(0, Number(process.env.AGREEMENT_SHOWN ?? 20)).join('\n'));
assert.equal(others.length, 0);
assert.ok(new Set(before).size > cases.length / 4, 'the cases are too much alike to tell anything');
