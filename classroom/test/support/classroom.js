import assert from 'node:assert/strict';
import { Classroom } from '../../lib/classroom.js';
import { requestJson } from '../../lib/rest.js';

/** A classroom inside the test, on a free port, ended with the test. */
export async function startClassroom(t, options) {
  const classroom = new Classroom(options);
  const url = await classroom.listen();
  t.after(() => classroom.close());
  return { classroom, url };
}

/** A client of the service that keeps its login cookie, as a host does. */
export class Host {
  cookie = '';

  constructor(url) {
    this.url = url;
  }

  async send(method, path, body, headers = {}) {
    const reply = await requestJson(method, `${this.url}${path}`, {
      body,
      headers: { 'content-type': 'application/json; charset=UTF-8', cookie: this.cookie, ...headers },
    });
    const [cookie] = reply.headers['set-cookie'] ?? [];
    if (cookie) this.cookie = cookie.split(';')[0];
    return reply;
  }

  post(path, value) {
    return this.send('POST', path, typeof value === 'string' ? value : JSON.stringify(value));
  }

  async data(path, value) {
    const reply = await this.post(path, value);
    assert.equal(reply.status, 200, `${path}: ${JSON.stringify(reply.value)}`);
    return reply.value.data;
  }

  logIn(userId = 'teacher', password = 'chalk') {
    return this.data('/tavisto/login/submit', { userId, password, sourceSystem: 'Lumora' });
  }

  join(sessionCode, mode, more = {}) {
    return this.data('/tavisto/classroom/session/join', {
      userName: `a ${mode}`, sessionCode, mode, deviceName: `device of a ${mode}`, deviceType: mode, ...more,
    });
  }

  async createSession() {
    return (await this.data('/tavisto/session/create', {})).sessionCode;
  }

  async start(sessionCode) {
    const body = { sessionCode, serverUrl: this.url, sourceSystem: 'Lumora', version: '3.0.0' };
    return (await this.data('/tavisto/session/start', body)).sessionToken;
  }

  stop(sessionToken) {
    return this.data('/tavisto/session/stop', { sessionToken });
  }
}

/** A logged-in host with a started session: {host, code, token}. */
export async function startSession(url) {
  const host = new Host(url);
  await host.logIn();
  const code = await host.createSession();
  return { host, code, token: await host.start(code) };
}

/** Asserts that a reply is a refusal as the service words it. */
export function assertRefused(reply, status, key) {
  assert.equal(reply.status, status, JSON.stringify(reply.value));
  assert.equal(reply.value.success, false);
  assert.deepEqual(reply.value.errorMsgKeys, [key]);
  assert.match(key, /error/);
}
