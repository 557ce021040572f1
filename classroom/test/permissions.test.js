import assert from 'node:assert/strict';
import http from 'node:http';
import { BusClient } from './support/bus-client.js';
import { check } from './support/check.js';
import { Host, startClassroom, startSession } from './support/classroom.js';
import { Presenter } from './support/presenter.js';

const DENIED = { type: 'err', body: 'access_denied' };

async function classOf(t) {
  const { url } = await startClassroom(t);
  const presenter = await Presenter.open(t, url);
  const device = async (mode) => {
    const { userToken } = await presenter.host.join(presenter.code, mode);
    const own = `${presenter.token}.user.${userToken}`;
    const bus = await BusClient.open(t, url, [own, presenter.token, `${presenter.token}.${mode}`]);
    return { bus, own, token: userToken };
  };
  return { url, presenter, token: presenter.token, device };
}

/** A bus client that comes from another address of this machine, over XHR polling by hand. */
async function fromElsewhere(url, id, frame) {
  const post = (path, body) => new Promise((resolve, reject) => {
    const request = http.request(`${url}/eventbus/119/${id}${path}`, { method: 'POST', localAddress: '127.0.0.2' }, (response) => {
      let text = '';
      response.setEncoding('utf8').on('data', (piece) => { text += piece; }).on('end', () => resolve(text));
    });
    request.on('error', reject).end(body);
  });
  assert.equal(await post('/xhr'), 'o\n');
  await post('/xhr_send', JSON.stringify([JSON.stringify(frame)]));
  return JSON.parse(JSON.parse((await post('/xhr')).slice(1))[0]);
}

check('the presenter’s addresses are heard from where the session was started, and from nowhere else', async (t) => {
  const { url } = await startClassroom(t);
  const { token } = await startSession(url);
  for (const place of ['presenter', 'presenter.x']) {
    assert.deepEqual(await fromElsewhere(url, `other${place.length}`, { type: 'register', address: `${token}.${place}` }), DENIED, place);
    await BusClient.open(t, url, [`${token}.${place}`]);
  }
});

check('a learner talks to the presenter in its own name only', async (t) => {
  const { presenter, token, device } = await classOf(t);
  const [one, other] = [await device('learner'), await device('learner')];
  for (const from of [other.token, presenter.userToken, 'x', '', undefined]) {
    for (const type of ['publish', 'send']) {
      one.bus.send({ type, address: `${token}.presenter`, body: { from, type: 'join', data: [] } });
      assert.deepEqual(await one.bus.next(), DENIED, `${type} from ${from}`);
    }
  }
  one.bus.publish(`${token}.presenter`, { from: one.token, type: 'join', data: [] });
  assert.equal((await presenter.bus.nextBody(({ type }) => type === 'join')).from, one.token);
});

check('devices talk neither to each other nor to the class', async (t) => {
  const { token, device } = await classOf(t);
  const [learner, controller, victim] = [await device('learner'), await device('controller'), await device('learner')];
  await device('controller');
  for (const { bus, token: from } of [learner, controller]) {
    for (const address of [token, `${token}.learner`, `${token}.controller`, victim.own]) {
      bus.publish(address, { from, type: 'stopSession', data: [] });
      assert.deepEqual(await bus.next(), DENIED, address);
    }
  }
  await victim.bus.settled(token);
  assert.deepEqual(victim.bus.frames, []);
});

check('a device may talk to itself', async (t) => {
  const { url, device } = await classOf(t);
  const { bus, own } = await device('learner');
  bus.publish(own, 'here');
  assert.equal(await bus.nextBody(), 'here');
  // A second window of the same browser.
  const again = await BusClient.open(t, url, [own]);
  again.publish(own, 'and here');
  assert.equal(await bus.nextBody(), 'and here');
});

check('a presenter that has gone is none any more', async (t) => {
  const { presenter, token, device } = await classOf(t);
  const learner = await device('learner');
  presenter.bus.unregister(`${token}.presenter`);
  presenter.bus.publish(learner.own, 'too late');
  assert.deepEqual(await presenter.bus.next(({ type }) => type === 'err'), DENIED);
});

check('a learner is told nothing of the others', async (t) => {
  const { url, presenter, device } = await classOf(t);
  await device('learner');
  const { userToken, sessionToken, ...rest } = await presenter.host.join(presenter.code, 'learner');
  assert.deepEqual(Object.keys(rest), ['serverUrl']);
  const reply = await new Host(url).post('/tavisto/session/getusers', { sessionToken });
  assert.equal(reply.status, 403);
  assert.ok(!JSON.stringify(reply.value).includes(userToken));
});
