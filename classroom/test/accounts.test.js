import assert from 'node:assert/strict';
import { check } from './support/check.js';
import { Host, assertRefused, startClassroom } from './support/classroom.js';

const SUBMIT = '/tavisto/login/submit';
const CALLBACK = '/tavisto/login/oauth/facebook/callback';
const REGISTER = '/tavisto/register/oauth/submit';
const sourceSystem = 'Lumora';

async function hostOf(t, options) {
  const { url, classroom } = await startClassroom(t, options);
  return { host: new Host(url), url, classroom };
}

check('the server check needs neither a body nor a login', async (t) => {
  const { host } = await hostOf(t);
  const reply = await host.post('/tavisto', '');
  assert.equal(reply.status, 200);
  assert.deepEqual(reply.value, { success: true, errorMsgKeys: [], infoMsgKeys: [], data: {} });
  assert.equal(reply.headers['content-encoding'], undefined);
});

check('a password login answers with a success key and sets a cookie that scripts cannot read', async (t) => {
  const { host } = await hostOf(t);
  const reply = await host.post(SUBMIT, '{"userId":"teacher","password":"chalk","sourceSystem":"Lumora"}');
  assert.equal(reply.status, 200);
  assert.equal(reply.value.success, true);
  assert.deepEqual(reply.value.infoMsgKeys, ['login.success']);
  assert.ok(!('infoMsgs' in reply.value), 'an empty list would be taken for an answer');
  assert.match(reply.headers['set-cookie'][0], /^tavistoLogin=[0-9a-f-]{36}; .*HttpOnly/);
});

check('a login is known by its cookie until it logs out', async (t) => {
  const { host, url } = await hostOf(t);
  assert.deepEqual(await host.data('/tavisto/login/user', {}), {});
  await host.logIn();
  assert.deepEqual(await host.data('/tavisto/login/user', {}), { userLoginId: 'teacher' });
  assert.deepEqual(await new Host(url).data('/tavisto/login/user', {}), {});
  const stolen = new Host(url);
  stolen.cookie = host.cookie;
  const reply = await host.post('/tavisto/login/logout', {});
  assert.match(reply.headers['set-cookie'][0], /Max-Age=0/);
  assert.deepEqual(await stolen.data('/tavisto/login/user', {}), {});
  assert.equal((await host.post('/tavisto/login/logout', {})).status, 200);
});

check('a second login replaces the first', async (t) => {
  const { host, url } = await hostOf(t);
  await host.logIn();
  const before = new Host(url);
  before.cookie = host.cookie;
  await host.logIn('assistant', 'sponge');
  assert.deepEqual(await host.data('/tavisto/login/user', {}), { userLoginId: 'assistant' });
  assert.deepEqual(await before.data('/tavisto/login/user', {}), {});
});

check('a login keeps alive while it is open', async (t) => {
  const { host } = await hostOf(t);
  assertRefused(await host.post('/tavisto/login/keepSessionAlive', ''), 403, 'login.error.required');
  await host.logIn();
  assert.equal((await host.post('/tavisto/login/keepSessionAlive', '')).status, 200);
});

check('wrong credentials are refused', async (t) => {
  const { host } = await hostOf(t);
  for (const [userId, password] of [['teacher', 'cheese'], ['nobody', 'chalk'], ['toString', 'x'], ['Teacher', 'chalk']]) {
    assertRefused(await host.post(SUBMIT, { userId, password, sourceSystem }), 403, 'login.error.badCredentials');
  }
  assert.equal(host.cookie, '');
});

check('accounts given at the start can log in, beyond ASCII too', async (t) => {
  const { host } = await hostOf(t, { users: [{ userId: 'ada:x', password: 'p:ä' }] });
  assert.deepEqual(await host.logIn('ada:x', 'p:ä'), { userLoginId: 'ada:x' });
  assert.deepEqual(await host.logIn('zoë', 'ärmel'), { userLoginId: 'zoë' });
});

check('a device gets a token with a password, and logs in with it afterwards', async (t) => {
  const { host, url } = await hostOf(t);
  const { deviceAccessToken } = await host.data(SUBMIT, {
    userId: 'teacher', password: 'chalk', deviceId: 'd1', deviceName: 'lectern', sourceSystem,
  });
  assert.ok(deviceAccessToken.length >= 16);
  assert.deepEqual(await host.data('/tavisto/login/user', {}), { userLoginId: 'teacher' });
  const device = new Host(url);
  const login = { userId: 'teacher', deviceId: 'd1', deviceAccessToken, sourceSystem };
  const reply = await device.post(SUBMIT, login);
  assert.deepEqual(reply.value.infoMsgKeys, ['login.success']);
  assert.deepEqual(await device.data('/tavisto/login/user', {}), { userLoginId: 'teacher' });
  for (const wrong of [{ deviceId: 'd2' }, { userId: 'assistant' }, { deviceAccessToken: 'made-up' }]) {
    assertRefused(await device.post(SUBMIT, { ...login, ...wrong }), 403, 'login.error.badDeviceAccessToken');
  }
});

check('asking for a device token again makes the earlier one useless', async (t) => {
  const { host } = await hostOf(t);
  const ask = { userId: 'teacher', password: 'chalk', deviceId: 'd1', deviceName: 'lectern', sourceSystem };
  const { deviceAccessToken: first } = await host.data(SUBMIT, ask);
  const { deviceAccessToken: second } = await host.data(SUBMIT, ask);
  const login = { userId: 'teacher', deviceId: 'd1', sourceSystem };
  assertRefused(await host.post(SUBMIT, { ...login, deviceAccessToken: first }), 403, 'login.error.badDeviceAccessToken');
  assert.equal((await host.post(SUBMIT, { ...login, deviceAccessToken: second })).status, 200);
});

check('a login body that lacks something is refused with what it lacks', async (t) => {
  const { host } = await hostOf(t);
  const full = { userId: 'teacher', password: 'chalk', sourceSystem };
  for (const key of ['userId', 'password', 'sourceSystem']) {
    assertRefused(await host.post(SUBMIT, { ...full, [key]: undefined }), 400, `login.error.${key}`);
    assertRefused(await host.post(SUBMIT, { ...full, [key]: '' }), 400, `login.error.${key}`);
    assertRefused(await host.post(SUBMIT, { ...full, [key]: 5 }), 400, `login.error.${key}`);
  }
  assertRefused(await host.post(SUBMIT, { ...full, userId: 'x'.repeat(1001) }), 400, 'login.error.userId');
  assertRefused(await host.post(SUBMIT, { ...full, deviceAccessToken: 'x' }), 400, 'login.error.deviceId');
});

check('a body that is no JSON object is refused', async (t) => {
  const { host } = await hostOf(t);
  const quoted = '{"userId":"a "quoted" name","password":"x","sourceSystem":"Lumora"}';
  for (const body of ['', 'login', '{', quoted, Buffer.from([0x7b, 0x22, 0xff, 0x22, 0x3a, 0x31, 0x7d])]) {
    assertRefused(await host.send('POST', SUBMIT, body), 400, 'request.error.malformedJson');
  }
  for (const body of ['[]', 'null', '5', '"text"']) {
    assertRefused(await host.post(SUBMIT, body), 400, 'request.error.notAnObject');
  }
});

check('a known user logs in through an OAuth provider, with a device token when a device asks', async (t) => {
  const { host, url } = await hostOf(t);
  const body = { code: 'teacher-code', callbackUrl: `${url}/`, sourceSystem };
  const reply = await host.post(CALLBACK, body);
  assert.deepEqual(reply.value.infoMsgKeys, ['login.success']);
  assert.deepEqual(await host.data('/tavisto/login/user', {}), { userLoginId: 'teacher' });
  const { deviceAccessToken } = await host.data(CALLBACK, { ...body, deviceId: 'd1', deviceName: 'lectern' });
  await host.data(SUBMIT, { userId: 'teacher', deviceId: 'd1', deviceAccessToken, sourceSystem });
});

check('the callback address ends in a slash for the one provider that registered it so', async (t) => {
  const { host, url } = await hostOf(t);
  const ask = (provider, callbackUrl) => host.post(
    `/tavisto/login/oauth/${provider}/callback`, { code: 'teacher-code', callbackUrl, sourceSystem });
  assert.equal((await ask('facebook', `${url}/`)).status, 200);
  assert.equal((await ask('schoolid', url)).status, 200);
  for (const [provider, address] of [['facebook', url], ['schoolid', `${url}/`], ['schoolid', 'elsewhere']]) {
    assertRefused(await ask(provider, address), 400, 'login.oauth.error.callbackUrl');
  }
  assertRefused(await ask('unheard-of', url), 403, 'login.oauth.error.badCode');
  assertRefused(await ask('%ff', url), 400, 'request.error.path');
});

check('an OAuth login without a code or with a wrong one is refused', async (t) => {
  const { host, url } = await hostOf(t);
  const body = { code: 'wrong', callbackUrl: `${url}/`, sourceSystem };
  assertRefused(await host.post(CALLBACK, body), 403, 'login.oauth.error.badCode');
  assertRefused(await host.post(CALLBACK, { ...body, code: '' }), 400, 'login.oauth.error.code');
  assertRefused(await host.post(CALLBACK, { ...body, sourceSystem: 'x' }), 400, 'login.oauth.error.sourceSystem');
});

// As a client does it: it cuts the registration out of the raw reply and patches its own field in.
async function cutRegistration(host, url) {
  const reply = await host.post(CALLBACK, { code: 'newcomer-code', callbackUrl: `${url}/`, sourceSystem });
  assert.equal(reply.status, 200);
  const [key] = reply.value.infoMsgKeys;
  assert.ok(key.includes('success') && key.includes('registration'), key);
  assert.ok(!('infoMsgs' in reply.value));
  assert.equal(host.cookie, '', 'not logged in yet');
  assert.deepEqual(reply.value.registration, reply.value.data);
  const raw = JSON.stringify(reply.value);
  return raw.slice(raw.indexOf('"data":') + 7, -1);
}

const patched = (registration) => {
  const at = registration.lastIndexOf('"') + 1;
  return `${registration.slice(0, at)},"sourceSystem":"Lumora"${registration.slice(at)}`;
};

check('a new OAuth user is asked to register, registers, and is known from then on', async (t) => {
  const { host, url } = await hostOf(t);
  const registration = await cutRegistration(host, url);
  const reply = await host.post(REGISTER, patched(registration));
  assert.equal(reply.status, 200);
  assert.match(reply.value.infoMsgs[0], /success/);
  assert.deepEqual(await host.data('/tavisto/login/user', {}), { userLoginId: 'newcomer' });
  const again = new Host(url);
  await again.data(CALLBACK, { code: 'newcomer-code', callbackUrl: `${url}/`, sourceSystem });
  assert.deepEqual(await again.data('/tavisto/login/user', {}), { userLoginId: 'newcomer' });
  assertRefused(await host.post(REGISTER, patched(registration)), 403, 'register.error.badToken');
});

check('the user may choose another name, but none that is taken', async (t) => {
  const { host, url } = await hostOf(t);
  const registration = JSON.parse(await cutRegistration(host, url));
  const named = (userId) => ({ ...registration, userId, sourceSystem });
  assertRefused(await host.post(REGISTER, named('teacher')), 409, 'register.error.userIdTaken');
  await host.data(REGISTER, named('someone new'));
  assert.deepEqual(await host.data('/tavisto/login/user', {}), { userLoginId: 'someone new' });
});

check('a registration that was not asked for, or not completed, is refused', async (t) => {
  const { host, url } = await hostOf(t);
  const text = await cutRegistration(host, url);
  const full = { ...JSON.parse(text), sourceSystem };
  assertRefused(await host.post(REGISTER, text), 400, 'register.error.sourceSystem');
  assertRefused(await host.post(REGISTER, { ...full, userId: '' }), 400, 'register.error.userId');
  assertRefused(await host.post(REGISTER, { ...full, registrationToken: 'x' }), 403, 'register.error.badToken');
  assertRefused(await host.post(REGISTER, { ...full, provider: 'schoolid' }), 403, 'register.error.badToken');
  assertRefused(await host.post(REGISTER, `${text},"sourceSystem":"Lumora"}`), 400, 'request.error.malformedJson');
});

check('unknown paths and wrong methods are refused in the envelope', async (t) => {
  const { host } = await hostOf(t);
  assertRefused(await host.post('/tavisto/login/nonsense', {}), 404, 'request.error.unknownPath');
  assertRefused(await host.post('/tavisto/', {}), 404, 'request.error.unknownPath');
  assertRefused(await host.send('GET', '/tavisto'), 405, 'request.error.method');
  assertRefused(await host.send('GET', SUBMIT), 405, 'request.error.method');
});

check('a JSON body above one mebibyte is refused, one of exactly that is read', async (t) => {
  const { host } = await hostOf(t);
  const frame = JSON.stringify({ userId: '', sourceSystem });
  const body = (size) => JSON.stringify({ userId: 'x'.repeat(size - frame.length), sourceSystem });
  assertRefused(await host.post(SUBMIT, body(1024 * 1024)), 400, 'login.error.userId');
  assertRefused(await host.post(SUBMIT, body(1024 * 1024 + 1)), 413, 'request.error.tooLarge');
  assertRefused(await host.post('/tavisto', 'x'.repeat(1024 * 1024 + 1)), 413, 'request.error.tooLarge');
});

check('replies are gzip-encoded on demand, refusals included, whatever the client accepts', async (t) => {
  const { url } = await hostOf(t, { gzip: true });
  for (const [path, body, ok] of [['/tavisto', '', true], [SUBMIT, '{}', false]]) {
    const reply = await fetch(`${url}${path}`, { method: 'POST', body, headers: { 'accept-encoding': 'identity' } });
    assert.equal(reply.headers.get('content-encoding'), 'gzip');
    assert.equal((await reply.json()).success, ok);
  }
  assert.equal((await new Host(url).post('/tavisto', '')).value.success, true);
});
