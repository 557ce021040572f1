import assert from 'node:assert/strict';
import { requestJson } from '../lib/rest.js';
import { check } from './support/check.js';
import { startClassroom } from './support/classroom.js';

const FILES = [
  ['/', 'text/html; charset=UTF-8', '<!doctype html>'],
  ['/controller', 'text/html; charset=UTF-8', '<!doctype html>'],
  ['/css/base.css', 'text/css; charset=UTF-8', ''],
  ['/icon.svg', 'image/svg+xml', '<svg'],
  ['/js/codec/block.js', 'text/javascript; charset=UTF-8', ''],
  ['/vendor/lzma.js', 'text/javascript; charset=UTF-8', ''],
  ['/vendor/sockjs.js', 'text/javascript; charset=UTF-8', ''],
  ['/vendor/eventbus.js', 'text/javascript; charset=UTF-8', ''],
];

check('pages are served with their types, and with nothing allowed from elsewhere', async (t) => {
  const { url } = await startClassroom(t);
  for (const [path, type, beginning] of FILES) {
    const reply = await fetch(`${url}${path}?code=123456`);
    assert.equal(reply.status, 200, path);
    assert.equal(reply.headers.get('content-type'), type);
    assert.match(reply.headers.get('content-security-policy'), /^default-src 'none'; script-src 'self';/);
    assert.equal(reply.headers.get('x-content-type-options'), 'nosniff');
    const text = await reply.text();
    assert.ok(text.length > 100 && text.startsWith(beginning), path);
  }
});

check('a page that has not changed is not sent again', async (t) => {
  const { url } = await startClassroom(t);
  const first = await fetch(url);
  const again = await fetch(url, { headers: { 'if-none-match': first.headers.get('etag') } });
  assert.deepEqual([again.status, await again.text()], [304, '']);
});

check('a HEAD request gets the headers alone', async (t) => {
  const { url } = await startClassroom(t);
  const reply = await fetch(url, { method: 'HEAD' });
  assert.equal(reply.status, 200);
  assert.ok(Number(reply.headers.get('content-length')) > 100);
  assert.equal(await reply.text(), '');
});

check('nothing else can be had, and pages take no POST', async (t) => {
  const { url } = await startClassroom(t);
  for (const path of ['/server.js', '/../server.js', '/js/../../package.json', '/js', '/vendor/', '/%2e%2e/server.js']) {
    assert.equal((await requestJson('GET', `${url}${path}`)).status, 404, path);
  }
  assert.equal((await requestJson('POST', `${url}/controller`, { body: '{}' })).status, 404);
});
