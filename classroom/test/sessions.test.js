import assert from 'node:assert/strict';
import { BusClient } from './support/bus-client.js';
import { check } from './support/check.js';
import { Host, assertRefused, startClassroom, startSession } from './support/classroom.js';

const START = '/tavisto/session/start';
const JOIN = '/tavisto/classroom/session/join';

check('a session goes from its creation to its end', async (t) => {
  const { url } = await startClassroom(t);
  const host = new Host(url);
  await host.logIn();
  const sessionCode = await host.createSession();
  assert.match(sessionCode, /^[1-9]\d{5}$/);
  assert.deepEqual(await host.data('/tavisto/session/getcollabserverurl', {}), { url });
  const start = `{"sessionCode": "${sessionCode}","serverUrl":"${url}","sourceSystem":"Lumora","version":"3.0.0"}`;
  const { sessionToken } = await host.data(START, start);
  assert.match(sessionToken, /^[^.]+$/, 'a token without a point: addresses continue with one');
  const join = '{"userName":"SessionStarter","sessionCode":"CODE","mode":"presenter",'
    + '"deviceName":"teacher_SessionStarter","deviceType":"presenter"}';
  const joined = await host.data(JOIN, join.replace('CODE', sessionCode));
  assert.equal(joined.sessionToken, sessionToken);
  assert.equal(joined.serverUrl, url);
  const { users } = await host.data('/tavisto/session/getusers', { sessionToken });
  assert.deepEqual(users, [{
    userToken: joined.userToken,
    userName: 'SessionStarter',
    mode: 'presenter',
    deviceName: 'teacher_SessionStarter',
    deviceType: 'presenter',
  }]);
  await host.stop(sessionToken);
  const gone = await host.post('/tavisto/session/getusers', { sessionToken });
  assertRefused(gone, 404, 'session.error.unknownSession');
  assertRefused(await host.post('/tavisto/session/stop', { sessionToken }), 404, 'session.error.unknownSession');
});

check('the transports of the tenant are those of the option, word for word', async (t) => {
  for (const [options, expected] of [
    [{}, ['websocket', 'xhr-streaming', 'xhr-polling']],
    [{ sockjsTransports: ['xhr-polling', 'pigeon'] }, ['xhr-polling', 'pigeon']],
    [{ sockjsTransports: [] }, []],
  ]) {
    const { url } = await startClassroom(t, options);
    const host = new Host(url);
    await host.logIn();
    const { sockJSProtocols } = await host.data('/tavisto/config/findTenantFeatureDetails', {});
    assert.deepEqual(sockJSProtocols, expected);
  }
});

check('what a presenter does needs a login', async (t) => {
  const { url } = await startClassroom(t);
  const { token, code } = await startSession(url);
  const stranger = new Host(url);
  for (const [path, body] of [
    ['/tavisto/session/create', {}],
    ['/tavisto/session/getcollabserverurl', {}],
    ['/tavisto/config/findTenantFeatureDetails', {}],
    [START, { sessionCode: code, serverUrl: url, sourceSystem: 'Lumora', version: '3.0.0' }],
    ['/tavisto/session/getusers', { sessionToken: token }],
    ['/tavisto/session/stop', { sessionToken: token }],
    [JOIN, { userName: 'x', sessionCode: code, mode: 'presenter', deviceName: 'x', deviceType: 'x' }],
  ]) {
    assertRefused(await stranger.post(path, body), 403, 'login.error.required');
  }
});

check('a learner and a controller join with the code alone', async (t) => {
  const { url } = await startClassroom(t);
  const { host, code, token } = await startSession(url);
  const device = new Host(url);
  const learner = await device.join(code, 'learner', { userName: 'Zoë 🌱' });
  const controller = await device.join(code, 'controller');
  assert.equal(learner.sessionToken, token);
  assert.equal(learner.serverUrl, url);
  assert.notEqual(learner.userToken, controller.userToken);
  const { users } = await host.data('/tavisto/session/getusers', { sessionToken: token });
  assert.deepEqual(users.map(({ mode, userToken }) => [mode, userToken]), [
    ['learner', learner.userToken], ['controller', controller.userToken]]);
  assert.equal(users[0].userName, 'Zoë 🌱');
  assert.deepEqual(device.cookie, '');
});

check('a join that cannot be is refused', async (t) => {
  const { url } = await startClassroom(t);
  const { host, code, token } = await startSession(url);
  const full = { userName: 'Ann', sessionCode: code, mode: 'learner', deviceName: 'x', deviceType: 'tablet' };
  for (const key of Object.keys(full)) {
    assertRefused(await host.post(JOIN, { ...full, [key]: '' }), 400, `session.error.${key}`);
  }
  assertRefused(await host.post(JOIN, { ...full, mode: 'Learner' }), 400, 'session.error.mode');
  assertRefused(await host.post(JOIN, { ...full, sessionCode: '000000' }), 404, 'session.error.unknownCode');
  const created = await host.createSession();
  assertRefused(await host.post(JOIN, { ...full, sessionCode: created }), 409, 'session.error.notStarted');
  await host.stop(token);
  assertRefused(await host.post(JOIN, full), 404, 'session.error.unknownCode');
});

check('a start that cannot be is refused', async (t) => {
  const { url } = await startClassroom(t);
  const host = new Host(url);
  await host.logIn();
  const full = { sessionCode: await host.createSession(), serverUrl: url, sourceSystem: 'Lumora', version: '3.0.0' };
  for (const key of Object.keys(full)) {
    assertRefused(await host.post(START, { ...full, [key]: '' }), 400, `session.error.${key}`);
  }
  assertRefused(await host.post(START, { ...full, version: '2.9.0' }), 400, 'session.error.version');
  assertRefused(await host.post(START, { ...full, sessionCode: '000000' }), 404, 'session.error.unknownCode');
});

check('a started session can be started again by its owner, and keeps its token', async (t) => {
  const { url } = await startClassroom(t);
  const { host, code, token } = await startSession(url);
  assert.equal(await host.start(code), token);
});

check('a session is started and stopped by its owner only', async (t) => {
  const { url } = await startClassroom(t);
  const { host, token } = await startSession(url);
  const code = await host.createSession();
  const other = new Host(url);
  await other.logIn('assistant', 'sponge');
  const start = { sessionCode: code, serverUrl: url, sourceSystem: 'Lumora', version: '3.0.0' };
  assertRefused(await other.post(START, start), 403, 'session.error.notOwner');
  assertRefused(await other.post('/tavisto/session/stop', { sessionToken: token }), 403, 'session.error.notOwner');
  assertRefused(await other.post('/tavisto/session/getusers', { sessionToken: token }), 403, 'session.error.notOwner');
});

check('sessions are listed with who is in them', async (t) => {
  const { url } = await startClassroom(t);
  const { host, code } = await startSession(url);
  const created = await host.createSession();
  await host.join(code, 'presenter');
  await host.join(code, 'learner');
  await host.join(code, 'learner');
  const { value } = await host.send('GET', '/classroom/sessions');
  assert.deepEqual(value, [
    { code, started: true, listening: false, sequence: 1, users: { learner: 2, presenter: 1, controller: 0 } },
    { code: created, started: false, listening: false, sequence: 0, users: { learner: 0, presenter: 0, controller: 0 } },
  ]);
});

check('a wait for a started session ends with the start, and finds one that is there', async (t) => {
  const { url } = await startClassroom(t);
  const waiting = new Host(url).send('GET', '/classroom/sessions?wait=started');
  const first = await startSession(url);
  assert.deepEqual((await waiting).value.map(({ code }) => code), [first.code]);
  const found = await new Host(url).send('GET', '/classroom/sessions?wait=started&since=0');
  assert.deepEqual(found.value.map(({ code }) => code), [first.code]);
  const next = new Host(url).send('GET', '/classroom/sessions?wait=started&since=1');
  const second = await startSession(url);
  assert.deepEqual((await next).value.map(({ code }) => code), [second.code]);
  assertRefused(await new Host(url).send('GET', '/classroom/sessions?wait=started&since=x'), 400, 'classroom.error.since');
});

check('a wait for a listening presenter does not end with the start', async (t) => {
  const { url } = await startClassroom(t);
  const waiting = new Host(url).send('GET', '/classroom/sessions?wait=listening');
  const { code, token } = await startSession(url);
  await startSession(url);
  await BusClient.open(t, url, [`${token}.presenter`]);
  assert.deepEqual((await waiting).value.map((session) => session.code), [code]);
  assertRefused(await new Host(url).send('GET', '/classroom/sessions?wait=x'), 400, 'classroom.error.wait');
});

check('whoever gives up waiting is forgotten', async (t) => {
  const { url, classroom } = await startClassroom(t);
  const waits = new Promise((resolve) => {
    classroom.sessions.on('newListener', (event) => event === 'started' && resolve());
  });
  const forgotten = new Promise((resolve) => {
    classroom.sessions.on('removeListener', (event) => event === 'started' && resolve());
  });
  const abort = new AbortController();
  const wait = fetch(`${url}/classroom/sessions?wait=started`, { signal: abort.signal });
  await waits;
  abort.abort();
  await assert.rejects(wait);
  await forgotten;
});

check('a device that names its token joins again as the user that it was', async (t) => {
  const { url } = await startClassroom(t);
  const { host, code, token } = await startSession(url);
  const first = await host.join(code, 'learner', { userName: 'Ann' });
  const again = await host.join(code, 'learner', { userName: 'Ann B.', userToken: first.userToken });
  assert.deepEqual(again, first);
  const { users } = await host.data('/tavisto/session/getusers', { sessionToken: token });
  assert.deepEqual(users.map(({ userToken, userName }) => [userToken, userName]), [[first.userToken, 'Ann B.']]);
});

check('a token of another mode, of another session or of nobody makes a new user', async (t) => {
  const { url } = await startClassroom(t);
  const { host, code } = await startSession(url);
  const { userToken } = await host.join(code, 'learner');
  const { code: elsewhere } = await startSession(url);
  const tokens = [
    await host.join(code, 'controller', { userToken }),
    await host.join(elsewhere, 'learner', { userToken }),
    await host.join(code, 'learner', { userToken: 'nobody' }),
    await host.join(code, 'learner', { userToken: { not: 'a text' } }),
  ].map((joined) => joined.userToken);
  assert.equal(new Set([userToken, ...tokens]).size, 5);
});
