import assert from 'node:assert/strict';
import http from 'node:http';
import { BusClient } from './support/bus-client.js';
import { check } from './support/check.js';
import { Host, assertRefused, startClassroom } from './support/classroom.js';
import { ask } from './support/elsewhere.js';

const CLIENT = '192.0.2.7';

/** A reverse proxy, as bare as they come: {url}. It says for whom it asks, after what its client has said. */
async function startProxy(t, target) {
  const forward = (request) => {
    const said = request.headers['x-forwarded-for'];
    const headers = { ...request.headers, 'x-forwarded-for': said ? `${said}, ${CLIENT}` : CLIENT };
    return http.request(target + request.url, { method: request.method, headers, agent: false });
  };
  const proxy = http.createServer((request, response) => {
    const onward = forward(request).on('error', () => response.destroy());
    onward.on('response', (reply) => reply.pipe(response.writeHead(reply.statusCode, reply.headers)));
    response.on('close', () => onward.destroy());
    request.pipe(onward);
  });
  proxy.on('upgrade', (request, near) => {
    near.on('error', () => {});
    forward(request).on('upgrade', ({ rawHeaders }, far, head) => {
      const lines = rawHeaders.map((text, i) => (i % 2 ? `${text}\r\n` : `${text}: `)).join('');
      near.write(`HTTP/1.1 101 Switching Protocols\r\n${lines}\r\n`);
      near.write(head);
      near.pipe(far).pipe(near).on('close', () => far.destroy());
      far.on('error', () => near.destroy());
    }).on('error', () => near.destroy()).end();
  });
  await new Promise((resolve) => { proxy.listen(0, '127.0.0.1', resolve); });
  t.after(() => proxy.close() && proxy.closeAllConnections());
  return `http://127.0.0.1:${proxy.address().port}`;
}

async function openProxied(t) {
  const { classroom, url: inside } = await startClassroom(t, {
    proxy: '127.0.0.1', users: [{ userId: 'ann', password: 'x' }, { userId: 'bob', password: 'y' }],
  });
  return { classroom, inside, url: await startProxy(t, inside) };
}

for (const transport of ['websocket', 'xhr-streaming', 'xhr-polling']) {
  check(`behind a proxy the presenter is known by the path that its account was told, over ${transport}`, async (t) => {
    const { url } = await openProxied(t);
    const [ann, bob] = [new Host(url), new Host(url)];
    await ann.logIn('ann', 'x');
    await bob.logIn('bob', 'y');
    const token = await ann.start(await ann.createSession());
    const pathOf = async (host) => (await host.data('/tavisto/session/getcollabserverurl', {})).url;
    const place = await pathOf(ann);
    assert.equal(place, await pathOf(ann), 'the same after a lost login');
    const options = { transports: [transport] };
    const register = async (base) => {
      const bus = await BusClient.open(t, base, [], options);
      bus.register(`${token}.presenter`);
      return bus;
    };
    for (const stranger of [url, await pathOf(bob), `${url}/presenter/undefined`]) {
      const bus = await register(stranger).catch(() => null);
      if (bus) assert.deepEqual(await bus.next(), { type: 'err', body: 'access_denied' }, stranger);
    }
    const presenter = await register(place);
    await presenter.settled(token);
    presenter.publish(`${token}.presenter`, 'to myself');
    assert.equal((await presenter.next()).body, 'to myself');
  });
}

check('behind a proxy nobody is on this machine but who is, and the built-in accounts are closed', async (t) => {
  const { classroom, url, inside } = await openProxied(t);
  assertRefused(await new Host(url).send('GET', '/classroom/sessions'), 403, 'classroom.error.loopbackOnly');
  const claimed = await new Host(url).send('GET', '/classroom/sessions', undefined, { 'x-forwarded-for': '127.0.0.1' });
  assertRefused(claimed, 403, 'classroom.error.loopbackOnly');
  assert.equal((await new Host(inside).send('GET', '/classroom/sessions')).status, 200, 'a tool that asks directly');
  const elsewhere = await ask(inside, '/classroom/sessions', { method: 'GET', headers: { 'x-forwarded-for': '192.0.2.1' } });
  assert.equal(elsewhere.status, 200, 'who is not the proxy is not believed');
  assertRefused(await new Host(url).post('/tavisto/login/submit', { userId: 'teacher', password: 'chalk', sourceSystem: 'Lumora' }),
    403, 'login.error.badCredentials');
  assert.equal(classroom.madeAccount, null);
});
