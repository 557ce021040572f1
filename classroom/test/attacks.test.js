// What somebody in the same network may try, from another loopback address: each attack by itself, and what does not come of it.

import assert from 'node:assert/strict';
import { once } from 'node:events';
import { readFileSync } from 'node:fs';
import net from 'node:net';
import { ALLOWED_FRAMES, MAX_EXPECTED_USERS, MAX_NAME_LENGTH } from '../lib/limits.js';
import { BusClient } from './support/bus-client.js';
import { check } from './support/check.js';
import { Host, assertRefused, startClassroom, startSession } from './support/classroom.js';
import { ask } from './support/elsewhere.js';
import { Presenter } from './support/presenter.js';
import { runServer } from './support/program.js';

const DENIED = { type: 'err', body: 'access_denied' };
const MIB = 1024 * 1024;
const AWAY_MS = 61000;
const JSON_TYPE = { 'content-type': 'application/json' };

// The SockJS server's clock for a device that is away holds no test that has ended.
const { setTimeout: start } = globalThis;
globalThis.setTimeout = (run, ms, ...more) => (ms === AWAY_MS ? start(run, ms, ...more).unref() : start(run, ms, ...more));

async function lessonOf(t, options) {
  const { url, classroom } = await startClassroom(t, options);
  const presenter = await Presenter.open(t, url);
  const device = async (mode, busOptions) => {
    const { userToken } = await presenter.host.join(presenter.code, mode);
    const own = `${presenter.token}.user.${userToken}`;
    return { own, from: userToken, bus: await BusClient.open(t, url, [own, presenter.token], busOptions) };
  };
  return { url, classroom, presenter, token: presenter.token, toPresenter: `${presenter.token}.presenter`, device };
}

check('what is meant for others does not come as a reply', async (t) => {
  const { presenter, token, toPresenter, device } = await lessonOf(t);
  const [thief, learner] = [await device('learner'), await device('learner')];
  for (const replyAddress of [toPresenter, token, `${token}.learner`, learner.own, '', 5]) {
    thief.bus.send({ type: 'send', address: toPresenter, replyAddress, body: { from: thief.from, type: 'join' } });
    assert.deepEqual(await thief.bus.next(), DENIED, replyAddress);
  }
  learner.bus.publish(toPresenter, { from: learner.from, type: 'answer' });
  assert.equal((await presenter.bus.nextBody(({ type }) => type === 'answer')).from, learner.from);
  presenter.publish('question', 1);
  for (const { bus } of [learner, thief]) assert.equal((await bus.nextBody()).type, 'question');
});

check('a reply is given by whoever was asked, and its address is waited at once', async (t) => {
  const { presenter, toPresenter, device } = await lessonOf(t);
  const [asker, liar] = [await device('learner'), await device('learner')];
  const question = ({ from }) => ({ type: 'send', address: toPresenter, replyAddress: 'a reply', body: { from, type: 'ask' } });
  asker.bus.send(question(asker));
  await presenter.bus.nextBody(({ type }) => type === 'ask');
  for (const frame of [question(liar), { type: 'publish', address: 'a reply', body: 'a lie' }]) {
    liar.bus.send(frame);
    assert.deepEqual(await liar.bus.next(), DENIED);
  }
  presenter.bus.publish('a reply', 'the truth');
  assert.equal(await asker.bus.nextBody(), 'the truth');
});

check('a learner gives no commands and reports nobody', async (t) => {
  const { presenter, toPresenter, device } = await lessonOf(t);
  const [learner, controller, other] = [await device('learner'), await device('controller'), await device('learner')];
  const gone = { action: 'unregister', client: { token: other.from, type: 'user' } };
  for (const body of [{ type: 'stopSession' }, { type: 'lockAll' }, { type: 'presenterActive' }, gone, { ...gone, type: 'join' }]) {
    learner.bus.publish(toPresenter, { from: learner.from, ...body });
    assert.deepEqual(await learner.bus.next(), DENIED, JSON.stringify(body));
  }
  controller.bus.publish(toPresenter, { from: controller.from, ...gone });
  assert.deepEqual(await controller.bus.next(), DENIED);
  controller.bus.publish(toPresenter, { from: controller.from, type: 'lockAll' });
  assert.equal((await presenter.bus.nextBody(({ type }) => type === 'lockAll')).from, controller.from);
});

const memoryOf = ({ pid }) => Number(/VmRSS:\s+(\d+)/.exec(readFileSync(`/proc/${pid}/status`, 'utf8'))[1]) / 1024;

/** Writes to a connection of its own until that is cut, or all is written; it stays open. */
async function pour(t, url, head, bytes) {
  const { hostname, port } = new URL(url);
  const socket = net.connect({ host: hostname, port, localAddress: '127.0.0.2' });
  t.after(() => socket.destroy());
  const cut = new Promise((resolve) => { socket.on('error', resolve).on('close', resolve); });
  socket.resume().write(head);
  const block = Buffer.alloc(MIB / 4, 'x');
  for (let sent = 0; sent < bytes && !socket.destroyed; sent += block.length) {
    if (!socket.write(block)) await Promise.race([once(socket, 'drain').catch(() => {}), cut]);
  }
}

const post = (path, length, more = '') => `POST ${path} HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Length: ${length}\r\n${more}\r\n`;
const UPGRADE = 'GET /eventbus/119/pouring/websocket HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: Upgrade\r\nUpgrade: websocket\r\n'
  + 'Sec-WebSocket-Version: 13\r\nSec-WebSocket-Key: AAAAAAAAAAAAAAAAAAAAAA==\r\n\r\n';
// The head of a masked text frame of 15 MiB.
const FRAME = Buffer.from([0x81, 0xff, 0, 0, 0, 0, 0, 0xf0, 0, 0, 0, 0, 0, 0]);

for (const [what, head, count, megabytes] of [
  ['uploads', post('/tavisto/resource/uploadResourceFile', 31 * MIB), 20, 15],
  ['logins', post('/tavisto/login/submit', MIB, 'Content-Type: application/json\r\n'), 400, 0.9],
  ['messages to no session', post('/eventbus/119/nobody/xhr_send', 15 * MIB), 20, 14],
  ['frames of a WebSocket', Buffer.concat([Buffer.from(UPGRADE), FRAME]), 20, 14],
]) {
  check(`a stranger’s ${what} that never end fill no memory`, async (t) => {
    const { child, url } = await runServer(t, ['--quiet']);
    const before = memoryOf(child);
    await Promise.all(Array.from({ length: count }, () => pour(t, url, head, megabytes * MIB)));
    assert.ok(memoryOf(child) - before < 100, `from ${before} to ${memoryOf(child)} MiB`);
    await new Host(url).logIn();
  });
}

check('joins that nobody comes from take no learner’s place', async (t) => {
  const { classroom, presenter, device } = await lessonOf(t);
  const learner = await device('learner');
  for (let i = 0; i < MAX_EXPECTED_USERS + 50; i += 50) {
    await Promise.all(Array.from({ length: 50 }, () => presenter.host.join(presenter.code, 'learner')));
  }
  assert.equal(classroom.sessions.list()[0].users.learner, MAX_EXPECTED_USERS + 1);
  const { users } = await presenter.host.data('/tavisto/session/getusers', { sessionToken: presenter.token });
  assert.ok(users.some(({ userToken }) => userToken === learner.from));
  const join = { sessionCode: presenter.code, mode: 'learner', deviceName: 'x', deviceType: 'x', userName: 'x'.repeat(MAX_NAME_LENGTH + 1) };
  assertRefused(await presenter.host.post('/tavisto/classroom/session/join', join), 400, 'session.error.userName');
});

for (const [what, size, count] of [['large', 15 * MIB, 6], ['fitting', 3 * MIB, 30]]) {
  check(`a flood of ${what} frames costs the learner its connection, not a presenter that does not read`, async (t) => {
    const { url, presenter, device, token, toPresenter } = await lessonOf(t, { awayMs: AWAY_MS });
    const raw = (path, body) => fetch(`${url}/eventbus/119/slow${size}${path}`, { method: 'POST', body });
    await (await raw('/xhr')).text();
    await raw('/xhr_send', JSON.stringify([JSON.stringify({ type: 'register', address: toPresenter })]));
    const flood = await device('learner', { transports: ['websocket'] });
    const body = { from: flood.from, type: 'answer', data: 'x'.repeat(size) };
    for (let i = 0; i < count; i += 1) flood.bus.publish(toPresenter, body);
    await flood.bus.closed;
    await presenter.bus.settled(token);
    const heard = JSON.parse((await (await raw('/xhr')).text()).slice(1)).map((text) => JSON.parse(text).body);
    assert.deepEqual([heard[0].action, heard.at(-1).action], ['register', 'unregister']);
  });
}

check('a learner that comes and goes 25,000 times is cut off', async (t) => {
  const { presenter, device } = await lessonOf(t);
  const { bus, own, from } = await device('learner');
  for (let i = 0; i < 25000; i += 1) {
    bus.unregister(own);
    bus.register(own);
  }
  assert.equal((await bus.closed).reason, 'too much');
  await presenter.bus.settled(presenter.token);
  assert.ok(presenter.bus.frames.length <= ALLOWED_FRAMES.burst + ALLOWED_FRAMES.perSecond * 60);
  assert.equal(presenter.bus.frames.at(-1).body.client.token, from);
});

check('off loopback there is no account that everybody knows', async (t) => {
  const server = await runServer(t, ['--quiet', '--host', '0.0.0.0']);
  const [, password] = /^password of teacher: (\S{12})$/.exec(await server.line(1));
  const host = new Host(`http://127.0.0.1:${new URL(server.url).port}`);
  const logIn = (value) => host.post('/tavisto/login/submit', { userId: 'teacher', password: value, sourceSystem: 'Lumora' });
  assertRefused(await logIn('chalk'), 403, 'login.error.badCredentials');
  assert.equal((await logIn(password)).status, 200);
  const oauth = { code: 'teacher-code', callbackUrl: 'http://host/back', sourceSystem: 'Lumora' };
  assertRefused(await host.post('/tavisto/login/oauth/schoolid/callback', oauth), 403, 'login.oauth.error.badCode');
});

check('a session belongs to one login while that holds a lesson in it', async (t) => {
  const { url, presenter } = await lessonOf(t);
  const { code: sessionCode, token: sessionToken } = presenter;
  const headers = { ...JSON_TYPE };
  const elsewhere = async (path, value) => {
    const { status, headers: { 'set-cookie': [cookie] = [] }, text } = await ask(url, path, { headers, body: JSON.stringify(value) });
    if (cookie) [headers.cookie] = cookie.split(';');
    return { status, value: JSON.parse(text) };
  };
  await elsewhere('/tavisto/login/submit', { userId: 'teacher', password: 'chalk', sourceSystem: 'Lumora' });
  const start = { sessionCode, serverUrl: url, sourceSystem: 'Lumora', version: '3.0.0' };
  for (const [path, value] of [
    ['/tavisto/session/start', start], ['/tavisto/session/getusers', { sessionToken }], ['/tavisto/session/stop', { sessionToken }],
  ]) assertRefused(await elsewhere(path, value), 403, 'session.error.otherLogin');
  // On the same machine a host may have logged in anew.
  await (await startSession(url)).host.start(sessionCode);
  presenter.bus.unregister(`${sessionToken}.presenter`);
  await presenter.bus.settled(sessionToken);
  assert.equal((await elsewhere('/tavisto/session/start', start)).status, 200, 'a host that has died');
});

for (const [what, headers, key] of [
  ['a page of another site', { origin: 'http://evil.example' }, 'request.error.origin'],
  ['a page without an origin', { origin: 'null' }, 'request.error.origin'],
  ['a name that is not its own', { host: 'evil.example' }, 'request.error.host'],
  ['a name with one of its own in it', { host: 'localhost.evil.example:80' }, 'request.error.host'],
]) {
  check(`${what} gets nothing`, async (t) => {
    const { url, token } = { ...await startClassroom(t), token: 'x' };
    for (const [method, path] of [['POST', '/tavisto'], ['GET', '/'], ['GET', '/eventbus/info'], ['POST', '/eventbus/119/stranger/xhr']]) {
      const { status, text } = await ask(url, path, { method, headers });
      assert.deepEqual([status, JSON.parse(text).errorMsgKeys], [403, [key]], path);
    }
    const upgrade = { connection: 'Upgrade', upgrade: 'websocket', 'sec-websocket-version': '13', 'sec-websocket-key': 'A'.repeat(22) + '==' };
    const { status } = await ask(url, `/eventbus/119/${token}/websocket`, { method: 'GET', headers: { ...upgrade, ...headers } });
    assert.equal(status, 403);
  });
}

check('names and origins of its own are taken', async (t) => {
  const { url } = await startClassroom(t, { names: ['Class.Example'] });
  const { host } = new URL(url);
  for (const headers of [
    {}, { host: 'localhost' }, { host: 'class.example:1' }, { host: '[::1]:80' }, { origin: url }, { host: 'localhost', origin: 'https://localhost' },
    { host, origin: `http://${host}` },
  ]) assert.equal((await ask(url, '/tavisto', { headers })).status, 200, JSON.stringify(headers));
});

check('a text that another site posts is not read as JSON', async (t) => {
  const { url } = await startClassroom(t);
  const body = JSON.stringify({ userId: 'teacher', password: 'chalk', sourceSystem: 'Lumora' });
  for (const type of ['text/plain', 'application/x-www-form-urlencoded', '', 'text/plain; application/json']) {
    const { status } = await ask(url, '/tavisto/login/submit', { body, headers: type ? { 'content-type': type } : {} });
    assert.equal(status, 415, type);
  }
});

check('transports for the pages of other sites are not served', async (t) => {
  const { url } = await startClassroom(t);
  for (const path of ['/iframe.html', '/119/stranger/jsonp?c=x', '/119/stranger/htmlfile?c=x', '/119/stranger/jsonp_send', '/websocket']) {
    assert.equal((await ask(url, `/eventbus${path}`, { method: 'GET' })).status, 404, path);
  }
});

check('a session over XHR is where it was opened only, and with the cookie that it was given', async (t) => {
  const { url } = await startClassroom(t);
  const frames = JSON.stringify([JSON.stringify({ type: 'shout', address: 'x' })]);
  const at = (from, what, headers, body) => ask(url, `/eventbus/119/guessed1${what}`, { from, headers, body });
  assert.equal((await at('127.0.0.3', '/xhr_send', {}, frames)).status, 404, 'not opened');
  const opened = await at('127.0.0.3', '/xhr');
  assert.equal(opened.text, 'o\n');
  const [cookie] = opened.headers['set-cookie'][0].split(';');
  const stranger = async (from, headers) => {
    for (const what of ['/xhr', '/xhr_streaming', '/xhr_send']) assert.equal((await at(from, what, headers, frames)).status, 403, what);
  };
  await stranger('127.0.0.2', {});
  await stranger('127.0.0.2', { cookie });
  assert.equal((await at('127.0.0.3', '/xhr_send', {}, frames)).status, 204, 'a client that keeps no cookies');
  assert.equal((await at('127.0.0.3', '/xhr_send', { cookie: `a=b; ${cookie}` }, frames)).status, 204);
  await stranger('127.0.0.3', {});
  await stranger('127.0.0.3', { cookie: `${cookie}x` });
  assert.equal((await at('127.0.0.3', '/xhr', { cookie })).text.match(/unknown_type/g).length, 2);
});
