import assert from 'node:assert/strict';
import { BoundedMap } from '../lib/bounded.js';
import { LOGIN_IDLE_MS } from '../lib/limits.js';
import { Logins } from '../lib/logins.js';
import { PayloadCache } from '../lib/payload-cache.js';
import { Sessions } from '../lib/sessions.js';
import { MAX_SESSIONS } from '../lib/limits.js';
import { MAX_STORED_UPLOADS } from '../lib/limits.js';
import { Uploads } from '../lib/uploads.js';
import { check } from './support/check.js';

check('a bounded map forgets the entry that was set longest ago', () => {
  const map = new BoundedMap(2);
  map.set('a', 1).set('b', 2).set('a', 3).set('c', 4);
  assert.deepEqual([...map], [['a', 3], ['c', 4]]);
});

check('a payload cache makes a value once, and drops what is unused for longest', () => {
  const made = [];
  const make = (text) => {
    made.push(text);
    return text.toUpperCase();
  };
  const cache = new PayloadCache(2, 100);
  for (const text of ['a', 'b', 'a', 'c', 'a', 'b']) assert.equal(cache.get(text, make), text.toUpperCase());
  assert.deepEqual(made, ['a', 'b', 'c', 'b']);
});

check('a payload cache keeps to its characters too, and never a failure', () => {
  let made = 0;
  const count = () => { made += 1; };
  const cache = new PayloadCache(10, 8);
  cache.get('12345', count);
  cache.get('6789', count);
  cache.get('12345', count);
  assert.equal(made, 3);
  cache.get('longer than all', count);
  cache.get('longer than all', count);
  assert.equal(made, 5);
  assert.throws(() => cache.get('x', () => { throw new Error('no'); }));
  assert.equal(cache.get('x', () => 'yes'), 'yes');
});

check('a login ends when it is not used for half an hour, and use prolongs it', () => {
  let now = 0;
  const logins = new Logins(() => now);
  const cookie = logins.open({ headers: {} }, 'ann').split(';')[0];
  const request = { headers: { cookie: `other=1; ${cookie}` } };
  now += LOGIN_IDLE_MS;
  assert.equal(logins.of(request).userId, 'ann');
  now += LOGIN_IDLE_MS;
  assert.equal(logins.of(request).userId, 'ann');
  now += LOGIN_IDLE_MS + 1;
  assert.equal(logins.of(request), undefined);
  assert.equal(logins.of({ headers: {} }), undefined);
});

check('a full house gives up sessions that never started, then idle ones, then refuses', () => {
  const ANN = { id: 'a login', userId: 'ann' };
  const sessions = new Sessions(new Logins());
  const codes = Array.from({ length: MAX_SESSIONS }, () => sessions.create(ANN).code);
  assert.equal(new Set(codes).size, MAX_SESSIONS);
  codes.slice(1).forEach((code) => sessions.start(code, ANN));
  codes.slice(2).forEach((code) => sessions.byCode(code).connections.add({}));
  const stopped = [];
  sessions.on('stopped', (session) => stopped.push(session.code));
  const extra = sessions.create(ANN);
  assert.throws(() => sessions.byCode(codes[0]), { key: 'session.error.unknownCode' });
  assert.deepEqual(stopped, []);
  sessions.start(extra.code, ANN);
  extra.connections.add({});
  sessions.byToken(sessions.create(ANN) && extra.token);
  assert.deepEqual(stopped, [codes[1]]);
  const last = sessions.list().find(({ started }) => !started);
  sessions.start(last.code, ANN);
  sessions.byCode(last.code).connections.add({});
  assert.throws(() => sessions.create(ANN), { status: 429, key: 'session.error.tooMany' });
});

check('the oldest upload makes room for a new one', () => {
  const uploads = new Uploads();
  const ids = Array.from({ length: MAX_STORED_UPLOADS + 1 }, (_, i) => uploads.add(`${i}.png`, Buffer.from([i & 255])));
  assert.throws(() => uploads.get(ids[0]), { key: 'resource.error.unknown' });
  assert.deepEqual(uploads.get(ids[1]), { content: Buffer.from([1]), type: 'image/png' });
});
