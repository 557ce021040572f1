import assert from 'node:assert/strict';
import http from 'node:http';
import EventBus from 'vertx3-eventbus-client';
import { MAX_ADDRESSES_PER_CONNECTION, MAX_ADDRESS_LENGTH } from '../lib/limits.js';
import { BusClient } from './support/bus-client.js';
import { check } from './support/check.js';
import { Host, startClassroom, startSession } from './support/classroom.js';

async function lesson(t, options) {
  const { url, classroom } = await startClassroom(t, options);
  return { url, classroom, ...await startSession(url) };
}

for (const transport of ['websocket', 'xhr-streaming', 'xhr-polling']) {
  check(`a publish reaches everyone at the address, the sender too, over ${transport}`, async (t) => {
    const { url, token } = await lesson(t);
    const address = `${token}.learner`;
    const open = (addresses) => BusClient.open(t, url, addresses, { transports: [transport] });
    const [sender, learner, other] = [await open([address, `${token}.presenter`]), await open([address]), await open([token])];
    const body = { from: 'x', type: 'heavy', data: ['Öl 🌱'], nested: [1, null, true] };
    sender.publish(address, body);
    const frame = { type: 'rec', address, body };
    assert.deepEqual(await sender.next(), frame);
    assert.deepEqual(await learner.next(), frame);
    await other.settled(token);
    assert.deepEqual(other.frames, []);
  });
}

check('a bus at a fixed server and session id is served, as hosts address it', async (t) => {
  const { url, token } = await lesson(t);
  const options = { server: '119', sessionId: () => 'abcd1234', transports: ['websocket'] };
  const client = await BusClient.open(t, url, [token], options);
  client.publish(token, 'a text');
  assert.deepEqual(await client.next(), { type: 'rec', address: token, body: 'a text' });
});

check('headers travel with a message when there are any', async (t) => {
  const { url, token } = await lesson(t);
  const client = await BusClient.open(t, url, [token]);
  client.publish(token, 1, { a: 'b' });
  client.publish(token, 2, {});
  assert.deepEqual(await client.next(), { type: 'rec', address: token, body: 1, headers: { a: 'b' } });
  assert.deepEqual(await client.next(), { type: 'rec', address: token, body: 2 });
});

check('a send reaches one listener, each in its turn', async (t) => {
  const { url, token } = await lesson(t);
  const first = await BusClient.open(t, url, [`${token}.x`]);
  const second = await BusClient.open(t, url, [`${token}.x`]);
  const presenter = await BusClient.open(t, url, [`${token}.presenter`]);
  for (let i = 0; i < 4; i += 1) presenter.send({ type: 'send', address: `${token}.x`, body: i });
  assert.deepEqual([await first.nextBody(), await first.nextBody()], [0, 2]);
  assert.deepEqual([await second.nextBody(), await second.nextBody()], [1, 3]);
});

function openEventBus(t, url) {
  const bus = new EventBus(`${url}/eventbus`);
  t.after(() => bus.close());
  return new Promise((resolve) => { bus.onopen = () => resolve(bus); });
}

check('an event-bus client gets its reply, or hears that nobody is there', async (t) => {
  const { url, token } = await lesson(t);
  const [asker, answerer] = [await openEventBus(t, url), await openEventBus(t, url)];
  asker.registerHandler(`${token}.presenter`, () => {}); // who may talk to others
  const ask = (body) => new Promise((resolve) => {
    asker.send(`${token}.ask`, body, (error, message) => resolve({ error, body: message?.body }));
  });
  assert.equal((await ask('anybody?')).error.failureType, 'NO_HANDLERS');
  const listens = new Promise((resolve) => { answerer.registerHandler(`${token}.ready`, resolve); });
  answerer.registerHandler(`${token}.ask`, (error, message) => message.reply(`${message.body} yes`));
  answerer.publish(`${token}.ready`, '');
  await listens;
  assert.deepEqual(await ask('you?'), { error: null, body: 'you? yes' });
});

check('an address that is unregistered gets nothing more', async (t) => {
  const { url, token } = await lesson(t);
  const client = await BusClient.open(t, url, [token, `${token}.learner`]);
  client.unregister(`${token}.learner`);
  client.publish(`${token}.learner`, 'not for us');
  client.publish(token, 'for us');
  assert.equal(await client.nextBody(), 'for us');
});

check('a ping is taken without an answer', async (t) => {
  const { url, token } = await lesson(t);
  const client = await BusClient.open(t, url, [token]);
  client.send('{"type":"ping"}');
  await client.settled(token);
  assert.deepEqual(client.frames, []);
});

check('a bad frame is answered with an error, and the connection goes on', async (t) => {
  const { url, token } = await lesson(t);
  const client = await BusClient.open(t, url, [token]);
  const long = `${token}.${'x'.repeat(MAX_ADDRESS_LENGTH)}`;
  for (const [frame, reason] of [
    ['', 'invalid_json'], ['{', 'invalid_json'], ['null', 'invalid_json'], ['[]', 'invalid_json'], ['5', 'invalid_json'],
    ['{}', 'missing_type'], ['{"type":5}', 'missing_type'],
    ['{"type":"shout","address":"x"}', 'unknown_type'], ['{"type":"constructor","address":"x"}', 'unknown_type'],
    ['{"type":"publish"}', 'missing_address'], ['{"type":"publish","address":""}', 'missing_address'],
    ['{"type":"register","address":{}}', 'missing_address'],
    [JSON.stringify({ type: 'register', address: long }), 'address_too_long'],
  ]) {
    client.send(frame);
    assert.deepEqual(await client.next(), { type: 'err', body: reason }, frame);
  }
  client.publish(token, 'still here');
  assert.equal(await client.nextBody(), 'still here');
});

check('only addresses of a live session are allowed', async (t) => {
  const { url, token, host } = await lesson(t);
  const client = await BusClient.open(t, url, [token]);
  const created = await host.createSession();
  for (const address of ['x', `${token}x`, `x.${token}`, `.${token}`, '.', created, '__proto__', `${token.slice(1)}.x`]) {
    for (const type of ['register', 'unregister', 'publish', 'send']) {
      client.send({ type, address, body: 1 });
      assert.deepEqual(await client.next(), { type: 'err', body: 'access_denied' }, `${type} ${address}`);
    }
  }
});

check('a connection registers only so many addresses', async (t) => {
  const { url, token } = await lesson(t);
  const client = await BusClient.open(t, url, []);
  for (let i = 0; i <= MAX_ADDRESSES_PER_CONNECTION; i += 1) client.register(`${token}.${i}`);
  assert.deepEqual(await client.next(), { type: 'err', body: 'max_handlers_reached' });
});

check('SockJS messages that are no text, and broken framing, do not end the service', async (t) => {
  const { url, token } = await lesson(t);
  const raw = (path, body) => fetch(`${url}/eventbus/119/rawrawra${path}`, { method: 'POST', body });
  assert.equal(await (await raw('/xhr')).text(), 'o\n');
  assert.equal((await raw('/xhr_send', '[null,5,{"a":1},["x"]]')).status, 204);
  assert.equal(await (await raw('/xhr')).text(), `a${JSON.stringify(Array(4).fill('{"type":"err","body":"invalid_json"}'))}\n`);
  for (const body of ['{', '{}', '"x"', '', '{"__proto__":null}', 'null']) {
    assert.equal((await raw('/xhr_send', body)).status, 500, body);
  }
  await BusClient.open(t, url, [token]);
});

// An upgrade as a client writes it, and whatever comes back until the connection ends.
function upgrade(url, path) {
  return new Promise((resolve) => {
    const request = http.get(`${url}${path}`, {
      headers: {
        connection: 'Upgrade', upgrade: 'websocket', 'sec-websocket-version': '13', 'sec-websocket-key': 'AAAAAAAAAAAAAAAAAAAAAA==',
      },
    });
    request.on('response', (response) => resolve(response.statusCode));
    request.on('upgrade', (response, socket) => {
      socket.destroy();
      resolve(101);
    });
  });
}

check('an upgrade anywhere but at the bus is turned away', async (t) => {
  const { url } = await lesson(t);
  assert.equal(await upgrade(url, '/eventbus/119/abcdefgh/websocket'), 101);
  for (const path of ['/', '/tavisto', '/tavisto/websocket', '/eventbus/119/abcdefgh/xhr']) {
    assert.equal(await upgrade(url, path), 400, path);
  }
});

check('WebSockets can be refused; the other transports then serve', async (t) => {
  const { url, token } = await lesson(t, { websocket: false });
  assert.equal(await upgrade(url, '/eventbus/119/abcdefgh/websocket'), 404);
  const client = await BusClient.open(t, url, [token]);
  client.publish(token, 'hello');
  assert.equal(await client.nextBody(), 'hello');
});

check('an image card of eight megabytes passes over every transport', async (t) => {
  const { url, token } = await lesson(t);
  // 8 MB of image are 10.7 MB of base64 in the card, and 14.3 MB were that compressed in vain and base64 again.
  const card = 'A'.repeat(14_400_000);
  for (const transport of ['websocket', 'xhr-streaming', 'xhr-polling']) {
    // As the presenter: one that streamed before may be taken for another listener for 5 s after it has closed.
    const client = await BusClient.open(t, url, [token, `${token}.presenter`], { transports: [transport] });
    client.publish(token, { type: 'showCard', data: [card] });
    assert.equal((await client.nextBody()).data[0].length, card.length, transport);
    client.socket.close();
    await client.closed;
  }
});

check('a frame above the limit ends its connection, not the service', async (t) => {
  const { url, token } = await lesson(t);
  const huge = 'A'.repeat(17 * 1024 * 1024);
  const client = await BusClient.open(t, url, [token], { transports: ['websocket'] });
  client.publish(token, huge);
  await client.closed;
  await fetch(`${url}/eventbus/119/toolarge/xhr`, { method: 'POST' });
  await assert.rejects(fetch(`${url}/eventbus/119/toolarge/xhr_send`, { method: 'POST', body: JSON.stringify([huge]) }));
  await BusClient.open(t, url, [token]);
});

// --- who comes and goes ---

async function presenterAt(t, url, token) {
  return BusClient.open(t, url, [`${token}.presenter`]);
}

const came = (token, type) => ({ action: 'register', client: { token, type } });
const went = (token, type) => ({ action: 'unregister', client: { token, type } });

for (const transport of ['websocket', 'xhr-streaming', 'xhr-polling']) {
  check(`the presenter hears that a learner has come and that its connection is lost, over ${transport}`, async (t) => {
    const { url, host, code, token } = await lesson(t);
    const presenter = await presenterAt(t, url, token);
    const { userToken } = await host.join(code, 'learner');
    const learner = await BusClient.open(t, url, [`${token}.user.${userToken}`], { transports: [transport] });
    assert.deepEqual(await presenter.next(), { type: 'rec', address: `${token}.presenter`, body: came(userToken, 'user') });
    learner.socket.close();
    assert.deepEqual(await presenter.nextBody(), went(userToken, 'user'));
    assert.deepEqual((await host.data('/tavisto/session/getusers', { sessionToken: token })).users, []);
  });
}

check('a learner that unregisters its own address has gone, once', async (t) => {
  const { url, host, code, token } = await lesson(t);
  const presenter = await presenterAt(t, url, token);
  const { userToken } = await host.join(code, 'learner');
  const own = `${token}.user.${userToken}`;
  const learner = await BusClient.open(t, url, [own, token]);
  await presenter.nextBody();
  learner.unregister(token);
  learner.unregister(own);
  assert.deepEqual(await presenter.nextBody(), went(userToken, 'user'));
  learner.socket.close();
  await learner.closed;
  await presenter.settled(token);
  assert.deepEqual(presenter.frames, []);
});

check('a controller is known by the address that all controllers share while it is alone', async (t) => {
  const { url, host, code, token } = await lesson(t);
  const presenter = await presenterAt(t, url, token);
  const { userToken } = await host.join(code, 'controller');
  const controller = await BusClient.open(t, url, [`${token}.controller`]);
  assert.deepEqual(await presenter.nextBody(), came(userToken, 'controller'));
  controller.socket.close();
  assert.deepEqual(await presenter.nextBody(), went(userToken, 'controller'));
});

check('one of several controllers is known by its own address', async (t) => {
  const { url, host, code, token } = await lesson(t);
  const presenter = await presenterAt(t, url, token);
  await host.join(code, 'controller');
  const { userToken } = await host.join(code, 'controller');
  const controller = await BusClient.open(t, url, [`${token}.controller`, `${token}.user.${userToken}`]);
  assert.deepEqual(await presenter.nextBody(), came(userToken, 'controller'));
  controller.socket.close();
  assert.deepEqual(await presenter.nextBody(), went(userToken, 'controller'));
});

check('a device that is back over a new connection is not gone when the old one ends', async (t) => {
  const { url, host, code, token } = await lesson(t);
  const presenter = await presenterAt(t, url, token);
  const { userToken } = await host.join(code, 'learner');
  const own = `${token}.user.${userToken}`;
  const before = await BusClient.open(t, url, [own]);
  assert.deepEqual(await presenter.nextBody(), came(userToken, 'user'));
  const after = await BusClient.open(t, url, [own]);
  before.socket.close();
  await before.closed;
  await after.settled(token);
  await presenter.settled(token);
  assert.deepEqual(presenter.frames, []);
  after.socket.close();
  assert.deepEqual(await presenter.nextBody(), went(userToken, 'user'));
});

check('presenters, strangers and made-up tokens come and go unreported', async (t) => {
  const { url, host, code, token } = await lesson(t);
  const presenter = await presenterAt(t, url, token);
  const { userToken } = await host.join(code, 'presenter');
  const addresses = [`${token}.user.${userToken}`, `${token}.user.made-up`, `${token}.controller`, `${token}.user.`];
  const client = await BusClient.open(t, url, addresses);
  client.socket.close();
  await client.closed;
  await presenter.settled(token);
  assert.deepEqual(presenter.frames, []);
});

check('a presenter is listening from its register until it unregisters or its connection ends', async (t) => {
  const { url, token, classroom } = await lesson(t);
  const listening = () => classroom.sessions.list()[0].listening;
  const presenter = await BusClient.open(t, url, [token]);
  assert.equal(listening(), false);
  for (const end of [() => presenter.unregister(`${token}.presenter`), () => presenter.socket.close()]) {
    presenter.register(`${token}.presenter`);
    await presenter.settled(token);
    assert.equal(listening(), true);
    const other = await BusClient.open(t, url, [token]);
    end();
    while (listening()) await other.settled(token);
    assert.equal(listening(), false);
  }
});

// --- the end of a session ---

for (const transport of ['websocket', 'xhr-streaming', 'xhr-polling']) {
  check(`the end of a session closes its connections after what was published before, over ${transport}`, async (t) => {
    const { url, host, token } = await lesson(t);
    const learner = await BusClient.open(t, url, [token], { transports: [transport] });
    const presenter = await BusClient.open(t, url, [`${token}.presenter`]);
    for (let i = 0; i < 20; i += 1) presenter.publish(token, i);
    await presenter.settled(token);
    await host.stop(token);
    const { code, reason } = await learner.closed;
    assert.deepEqual([code, reason], [3001, 'session ended']);
    assert.deepEqual(learner.frames.map(({ body }) => body), Array.from({ length: 20 }, (_, i) => i));
    await presenter.closed;
  });
}

check('the end of one session leaves another alone, and its own addresses are denied', async (t) => {
  const { url, host, token } = await lesson(t);
  const other = await startSession(url);
  const client = await BusClient.open(t, url, [other.token]);
  await host.stop(token);
  client.publish(token, 'too late');
  assert.deepEqual(await client.next(), { type: 'err', body: 'access_denied' });
  client.register(`${token}.learner`);
  assert.deepEqual(await client.next(), { type: 'err', body: 'access_denied' });
  client.publish(other.token, 'going on');
  assert.equal(await client.nextBody(), 'going on');
});

check('all that a class of thousands has said waits for the next poll', async (t) => {
  const { url, code, token, host } = await lesson(t);
  const presenter = await presenterAt(t, url, token);
  const { userToken } = await host.join(code, 'learner');
  const raw = (path, body) => fetch(`${url}/eventbus/119/resting${path}`, { method: 'POST', body });
  await (await raw('/xhr')).text();
  const register = (address) => JSON.stringify({ type: 'register', address });
  await raw('/xhr_send', JSON.stringify([register(token), register(`${token}.user.${userToken}`)]));
  assert.deepEqual(await presenter.nextBody(), came(userToken, 'user'));
  for (let i = 0; i < 10000; i += 1) presenter.publish(token, i);
  await presenter.settled(token);
  const messages = JSON.parse((await (await raw('/xhr')).text()).slice(1));
  assert.deepEqual(
    messages.map((message) => JSON.parse(message).body),
    Array.from({ length: 10000 }, (_, i) => i),
  );
});

check('a device that does not read is cut off, and the others are served', async (t) => {
  const { url, host, code, token } = await lesson(t, { maxQueued: 1024 * 1024 });
  const presenter = await presenterAt(t, url, token);
  const { userToken } = await host.join(code, 'learner');
  // A polling session that polls once to open and then sends, but never polls again.
  const raw = (path, body) => fetch(`${url}/eventbus/119/sleeping${path}`, { method: 'POST', body });
  await (await raw('/xhr')).text();
  const register = (address) => JSON.stringify({ type: 'register', address });
  await raw('/xhr_send', JSON.stringify([register(token), register(`${token}.user.${userToken}`)]));
  assert.deepEqual(await presenter.nextBody(), came(userToken, 'user'));
  const block = 'x'.repeat(64 * 1024);
  for (let i = 0; i < 17; i += 1) presenter.publish(token, block);
  await presenter.settled(token);
  presenter.publish(token, 'after the cut');
  await presenter.settled(token);
  const messages = JSON.parse((await (await raw('/xhr')).text()).slice(1));
  assert.equal(messages.length, 16, 'as many blocks as exceed 1 MiB with what is around them');
  assert.equal(await (await raw('/xhr')).text(), 'c[3002,"too slow"]\n');
  assert.deepEqual(await presenter.nextBody(), went(userToken, 'user'));
});
