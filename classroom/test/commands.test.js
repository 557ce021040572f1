import assert from 'node:assert/strict';
import { BusClient } from './support/bus-client.js';
import { check } from './support/check.js';
import { Host, assertRefused } from './support/classroom.js';
import { ask } from './support/elsewhere.js';
import { Presenter } from './support/presenter.js';
import { runServer } from './support/program.js';

const options = (...ids) => ids.map((id) => ({ id }));

/** A classroom that takes commands, with tell(line): the answer. */
async function commanded(t, more = []) {
  const classroom = await runServer(t, ['--commands', '--quiet', ...more]);
  let told = 0;
  const tell = (line) => {
    classroom.child.stdin.write(`${line}\n`);
    told += 1;
    return classroom.line(told);
  };
  return { ...classroom, tell };
}

const answersOf = async (presenter, type, count) => (await presenter.all(type, count))
  .map(({ value: { answer, optionAnswers, blob } }) => answer ?? blob?.input ?? blob?.pick.join()
    ?? optionAnswers.map(({ activityOptionId }) => activityOptionId).join());

check('learners join, answer what they are told, and leave, by command', async (t) => {
  const { url, tell } = await commanded(t);
  const joined = tell('join 3'); // waits for a lesson
  const presenter = await Presenter.open(t, url);
  assert.equal(await joined, 'ok 3 learners');
  assert.equal(await tell(`join 1 ${presenter.code}`), 'ok 1 learners');
  const names = (await presenter.all('join', 4)).map(({ value }) => value.userName);
  assert.deepEqual(names.map((name) => name.split(' ')[1]), ['1', '2', '3', '4'], 'in their order');

  presenter.ask({ id: 'one', type: 'multiple', activityOptions: options('A', 'B', 'C') });
  assert.equal(await tell('answer by 1 A,C'), 'ok 1 learners');
  assert.match(await tell('answer Z'), /^error not one of the options A B C: Z$/);
  assert.equal(await tell('answer B'), 'ok 3 learners');
  assert.deepEqual(await answersOf(presenter, 'questionResponse', 4), ['A,C', 'B', 'B', 'B']);
  const answered = tell('answer  in my words '); // waits for the question
  presenter.ask({ id: 'two', type: 'text' });
  assert.equal(await answered, 'ok 4 learners');
  assert.deepEqual(new Set(await answersOf(presenter, 'questionResponse', 4)), new Set(['in my words']));
  presenter.publish('poll', { type: 'word-seed', id: 'three', metadata: { options: [0, 1] } });
  assert.equal(await tell('answer 1'), 'ok 4 learners');
  assert.deepEqual(new Set(await answersOf(presenter, 'pollResponse', 4)), new Set(['1']));
  presenter.ask({ id: 'four', type: 'scale', activityOptions: options('0', '1') });
  assert.equal(await tell('answer'), 'ok 4 learners');
  assert.equal((await answersOf(presenter, 'questionResponse', 4)).length, 4);

  presenter.ask({ id: 'five', type: 'text' });
  assert.equal(await tell('answer by 3'), 'ok 3 learners');
  const idle = tell('idle');
  presenter.publish('pollStop', 'five');
  assert.equal(await idle, 'ok');

  assert.equal(await tell('leave 1'), 'ok 1 learners');
  assert.equal(await tell('leave'), 'ok 3 learners');
  for (let gone = 0; gone < 4; gone += 1) await presenter.bus.nextBody(({ action }) => action === 'unregister');
});

check('with --answer-after they answer by themselves, and come back to a question after a cut', async (t) => {
  const { url, tell } = await commanded(t, ['--answer-after', '0']);
  const presenter = await Presenter.open(t, url);
  await tell('join 2');
  presenter.ask({ id: 'one', type: 'number' });
  await presenter.all('questionResponse', 2);
  assert.equal(await tell('cut'), 'ok');
  await presenter.bus.closed;
  presenter.bus = await BusClient.open(t, url, [`${presenter.token}.presenter`]);
  await presenter.all('questionResponse', 2);
});

check('what is told to fail fails, until it is mended', async (t) => {
  const { url, tell } = await commanded(t);
  const host = new Host(url);
  const asked = () => host.post('/tavisto', '');
  await host.logIn();

  assert.equal(await tell('refuse lesson.error.maintenance'), 'ok');
  assertRefused(await asked(), 503, 'lesson.error.maintenance');
  const headers = { connection: 'Upgrade', upgrade: 'websocket' };
  assert.equal((await ask(url, '/eventbus/000/abc/websocket', { method: 'GET', headers })).status, 503);
  assert.equal(await tell('mend'), 'ok');
  assert.equal((await asked()).status, 200);

  assert.equal(await tell('down'), 'ok');
  await assert.rejects(asked()); // over a connection that is kept, which has been cut
  await assert.rejects(asked(), /ECONNREFUSED/);
  assert.equal(await tell('mend'), 'ok');
  assert.equal((await asked()).status, 200);

  assert.equal(await tell('logout'), 'ok');
  assertRefused(await host.post('/tavisto/session/create', {}), 403, 'login.error.required');
});

for (const transport of ['websocket', 'xhr-streaming', 'xhr-polling']) {
  check(`a stalled classroom says nothing over ${transport}, and all of it when it is mended`, async (t) => {
    const { url, tell } = await commanded(t);
    const { host, code, bus, token } = await Presenter.open(t, url);
    const device = await host.join(code, 'learner');
    const learner = await BusClient.open(t, url, [`${token}.user.${device.userToken}`], { transports: [transport] });
    await bus.nextBody(({ action }) => action === 'register');
    assert.equal(await tell('stall'), 'ok');
    let heard = 0;
    learner.publish(`${token}.presenter`, { from: device.userToken, type: 'x' });
    const anew = ask(url, '/tavisto', { method: 'POST' }); // over a connection that is made now
    const replies = [anew, host.post('/tavisto', ''), bus.nextBody(({ type }) => type === 'x')];
    for (const reply of replies) reply.then(() => { heard += 1; });
    // Many times the way that the replies have to go.
    for (let times = 0; times < 50; times += 1) assert.equal(await tell('stall'), 'ok');
    assert.equal(heard, 0);
    assert.equal(await tell('mend'), 'ok');
    await Promise.all(replies);
  });
}

check('a classroom that forgets cuts its sessions off, and knows the login', async (t) => {
  const { url, tell } = await commanded(t);
  const { host, token, bus } = await Presenter.open(t, url);
  assert.equal(await tell('forget'), 'ok');
  await bus.closed;
  assertRefused(await host.post('/tavisto/session/getusers', { sessionToken: token }), 404, 'session.error.unknownSession');
  await host.createSession();
});

check('what is no command is answered so; the end of stdin is the end', async (t) => {
  const classroom = await commanded(t);
  for (const [line, answer] of [
    ['dance', 'error unknown command: dance'],
    ['join', 'error not a number from 1 to 10000: nothing'],
    ['join 0', 'error not a number from 1 to 10000: 0'],
    ['join 1 123456', 'error session.error.unknownCode'],
    ['answer by x', 'error not a number from 1 to 10000: x'],
    ['cut it off', 'error too much after cut: it off'],
    ['refuse me', 'error a key of a refusal has "error" in it: me'],
    ['leave', 'ok 0 learners'],
    ['down', 'ok'],
  ]) {
    assert.equal(await classroom.tell(line), answer);
  }
  classroom.child.stdin.end('\n');
  assert.deepEqual(await classroom.exited, { code: 0, signal: null });
});
