import assert from 'node:assert/strict';
import { requestJson } from '../lib/rest.js';
import { BusClient } from './support/bus-client.js';
import { check } from './support/check.js';
import { Host, startSession } from './support/classroom.js';
import { runProgram, runServer } from './support/program.js';

for (const signal of ['SIGTERM', 'SIGINT']) {
  check(`${signal} ends the server with 0, whatever is connected`, async (t) => {
    const server = await runServer(t);
    const { token } = await startSession(server.url);
    const clients = [];
    for (const transport of ['websocket', 'xhr-streaming', 'xhr-polling']) {
      clients.push(await BusClient.open(t, server.url, [token], { transports: [transport] }));
    }
    // Not with fetch, whose promise is at times never settled when the server goes away.
    const waiting = assert.rejects(requestJson('GET', `${server.url}/classroom/sessions?wait=started&since=1`));
    // Once this is answered, the request before it has been taken.
    await new Host(server.url).post('/tavisto', '');
    server.child.kill(signal);
    assert.deepEqual(await server.exited, { code: 0, signal: null });
    await Promise.all([waiting, ...clients.map((client) => client.closed)]);
    assert.deepEqual(server.lines, [`listening ${server.url}`]);
  });
}

check('requests are logged on stderr, a line each, without what is secret', async (t) => {
  const server = await runServer(t);
  const host = new Host(server.url);
  await host.logIn();
  await host.send('GET', '/tavisto/resource/downloadResourceFile?resourceId=secret');
  server.child.kill('SIGTERM');
  await server.exited;
  assert.match(server.stderr(), /^POST \/tavisto\/login\/submit 200 \d+ms\nGET \/tavisto\/resource\/downloadResourceFile 404 \d+ms\n$/);
});

for (const everywhere of ['0.0.0.0', '::']) {
  check(`a server that listens at ${everywhere} says an address that others can open`, async (t) => {
    const server = await runServer(t, ['--quiet', '--host', everywhere]);
    assert.match(server.url, /^http:\/\/(?!0\.0\.0\.0)\d+(\.\d+){3}:\d+$/);
  });
}

check('a quiet server says its address and nothing more', async (t) => {
  const server = await runServer(t, ['--quiet', '--host', 'localhost']);
  assert.match(server.url, /^http:\/\/localhost:\d+$/);
  await new Host(server.url).logIn();
  server.child.kill('SIGTERM');
  await server.exited;
  assert.equal(server.stderr(), '');
});

check('the options reach the service', async (t) => {
  const args = ['--gzip', '--sockjs-transports', 'xhr-polling,websocket', '--disable-websocket', '--quiet',
    '--user', 'ann:a:b', '--user', 'bob:c'];
  const { url } = await runServer(t, args);
  const host = new Host(url);
  await host.logIn('ann', 'a:b');
  await host.logIn('bob', 'c');
  const reply = await host.post('/tavisto/config/findTenantFeatureDetails', {});
  assert.deepEqual(reply.value.data.sockJSProtocols, ['xhr-polling', 'websocket']);
  assert.equal(reply.headers['content-encoding'], 'gzip');
  assert.equal((await (await fetch(`${url}/eventbus/info`)).json()).websocket, false);
});

for (const [script, args, message] of [
  ['server.js', ['--nonsense'], /nonsense/],
  ['server.js', ['--port', '70000'], /--port takes/],
  ['server.js', ['--port', '-1'], /--port|port/],
  ['server.js', ['--port'], /port/],
  ['server.js', ['--user', 'nopassword'], /NAME:PASSWORD/],
  ['server.js', ['--proxy', 'nginx'], /--proxy takes/],
  ['server.js', ['stray'], /stray/],
  ['learners.js', ['--nonsense'], /nonsense/],
  ['learners.js', [], /--url is missing/],
  ['learners.js', ['--url', 'x', '--session', 'auto', '--count', '1'], /--url takes/],
  ['learners.js', ['--url', 'http://h', '--session', '12345', '--count', '1'], /--session takes/],
  ['learners.js', ['--url', 'http://h', '--session', 'auto', '--count', '0'], /--count takes/],
  ['learners.js', ['--url', 'http://h', '--session', 'auto', '--count', '1', '--answer-after', 'x'], /--answer-after takes/],
]) {
  check(`${script} ${args.join(' ')} is refused with 2 and the usage on stderr`, async (t) => {
    const program = runProgram(t, script, args);
    assert.deepEqual(await program.exited, { code: 2, signal: null });
    assert.match(program.stderr().split('\n')[0], message);
    assert.match(program.stderr(), /usage: node/);
    assert.deepEqual(program.lines, []);
  });
}

for (const script of ['server.js', 'learners.js']) {
  check(`${script} --help explains itself on stdout`, async (t) => {
    const program = runProgram(t, script, ['--help']);
    assert.deepEqual(await program.exited, { code: 0, signal: null });
    assert.match(program.lines[0], new RegExp(`^usage: node ${script}`));
    assert.equal(program.stderr(), '');
  });
}

check('a port that is taken ends the server with 1 and a message', async (t) => {
  const { url } = await runServer(t);
  const second = runProgram(t, 'server.js', ['--port', new URL(url).port]);
  assert.deepEqual(await second.exited, { code: 1, signal: null });
  assert.match(second.stderr(), /EADDRINUSE/);
});
