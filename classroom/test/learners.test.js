import assert from 'node:assert/strict';
import { answerPoll, answerQuestion } from '../lib/answers.js';
import { Crowd } from '../lib/crowd.js';
import { Learner } from '../lib/learner.js';
import { check } from './support/check.js';
import { startClassroom } from './support/classroom.js';
import { openWire } from './support/wire.js';
import { Presenter } from './support/presenter.js';
import { runProgram, runServer } from './support/program.js';

const COUNT = 6;
const options = (...ids) => ids.map((id, i) => ({ id, optionText: '', displaySeqNumber: i + 1, math: false }));

const QUESTIONS = [
  { type: 'true-false', activityOptions: options('A', 'B', '?') },
  { type: 'yes-no-other', activityOptions: options('A', 'B') },
  { type: 'multiple', activityOptions: options('A', 'B', 'C', 'D'), numberOfCorrectOptions: 2 },
  { type: 'scale', activityOptions: options('0', '1', '2', '3', '4') },
  { type: 'scale' },
  { type: 'sort', activityOptions: options('A', 'B', 'C') },
  { type: 'text', maxChars: 0 },
  { type: 'number', noOfDecimals: 2 },
  { type: 'math formula' },
].map((question, i) => ({ id: `quest${i}`, ...question }));

const POLLS = [
  { type: 'word-seed', id: 'poll-1', metadata: { ordinalType: 'alpha-upper', options: [0, 1, 2] } },
  { type: 'word-seed', id: 'poll-2', metadata: { ordinalType: 'alpha-upper', options: [] } },
  { type: 'creative', id: 'poll-3', metadata: { ordinalType: 'generic', options: [] } },
];

const learnersOf = (t, url, more) => runProgram(t, 'learners.js', ['--url', url, ...more]);
const nameOf = (index) => new Learner(index, {}).userName;

// Which learner a token belongs to, from the joins.
function indexByToken(joins) {
  const names = Array.from({ length: joins.length }, (_, i) => nameOf(i));
  return new Map(joins.map(({ from, value }) => [from, names.indexOf(value.userName)]));
}

function assertAnswers(messages, indexes, expected) {
  assert.equal(new Set(messages.map(({ from }) => from)).size, indexes.size, 'each has answered once');
  for (const { from, value } of messages) {
    const { responseTime, ...rest } = value;
    assert.ok(Number.isInteger(responseTime) && responseTime >= 0);
    assert.deepEqual(rest, expected(indexes.get(from)));
  }
}

for (const transport of ['websocket', 'xhr-streaming', 'xhr-polling']) {
  check(`learners attend a lesson of all ten types from the join to the goodbye, over ${transport}`, async (t) => {
    const { url } = await runServer(t, ['--quiet']);
    const presenter = await Presenter.open(t, url);
    const args = ['--session', presenter.code, '--count', String(COUNT), '--transports', transport];
    const learners = learnersOf(t, url, args);
    const indexes = indexByToken(await presenter.all('join', COUNT));
    assert.deepEqual([...indexes.values()].sort(), [0, 1, 2, 3, 4, 5]);
    for (const question of QUESTIONS) {
      presenter.ask(question);
      assertAnswers(await presenter.all('questionResponse', COUNT), indexes, (index) => ({
        questionId: question.id, questionSetMode: 'Poll', ...answerQuestion({ activityOptions: [], ...question }, index),
      }));
      presenter.publish('pollStop', 'an id of the poll');
    }
    for (const poll of POLLS) {
      presenter.publish('poll', poll);
      assertAnswers(await presenter.all('pollResponse', COUNT), indexes, (index) => (
        { pollId: poll.id, blob: answerPoll(poll, index) }));
      presenter.publish('pollStop', poll.id);
    }
    presenter.publish('heavy', '%0', '.learner');
    presenter.publish('showCard', { components: [{ blob: { url: 'data:image/png;base64,AAAA' } }] }, '.learner');
    await presenter.stop();
    assert.deepEqual(await learners.exited, { code: 0, signal: null }, learners.stderr());
    assert.deepEqual(learners.lines, [
      `learners: joined=${COUNT} questions=12 cards=1 answers=${12 * COUNT} decode-failures=0`]);
  });
}

check('learners understand a service that answers with gzip', async (t) => {
  const { url } = await runServer(t, ['--quiet', '--gzip']);
  const presenter = await Presenter.open(t, url);
  const learners = learnersOf(t, url, ['--session', 'auto', '--count', '2']);
  await presenter.all('join', 2);
  await presenter.stop();
  assert.deepEqual(await learners.exited, { code: 0, signal: null });
});

check('learners whose session is stopped without a goodbye are done all the same', async (t) => {
  const { url } = await runServer(t, ['--quiet']);
  const presenter = await Presenter.open(t, url);
  const learners = learnersOf(t, url, ['--session', presenter.code, '--count', '2']);
  await presenter.all('join', 2);
  await presenter.host.stop(presenter.token);
  assert.deepEqual(await learners.exited, { code: 0, signal: null });
  assert.match(learners.lines[0], /^learners: joined=2 questions=0 /);
});

check('auto waits for a start; repeat goes on to the next session until a signal', async (t) => {
  const { url } = await runServer(t, ['--quiet']);
  const learners = learnersOf(t, url, ['--session', 'auto', '--count', '12', '--repeat', '--quiet']);
  for (const id of ['one', 'two']) {
    const presenter = await Presenter.open(t, url);
    await presenter.all('join', 12);
    presenter.ask({ id, type: 'text' });
    await presenter.all('questionResponse', 12);
    await presenter.stop();
  }
  learners.child.kill('SIGTERM');
  assert.deepEqual(await learners.exited, { code: 0, signal: null });
  assert.deepEqual(learners.lines, ['learners: joined=24 questions=2 cards=0 answers=24 decode-failures=0']);
  assert.equal(learners.stderr(), '');
});

check('a signal during a lesson makes the learners leave with their totals', async (t) => {
  const { url } = await runServer(t, ['--quiet']);
  const presenter = await Presenter.open(t, url);
  const learners = learnersOf(t, url, ['--session', presenter.code, '--count', '2']);
  const joins = await presenter.all('join', 2);
  learners.child.kill('SIGINT');
  assert.deepEqual(await learners.exited, { code: 0, signal: null });
  assert.equal(learners.lines.length, 1);
  const gone = [];
  while (gone.length < 2) gone.push((await presenter.bus.nextBody((body) => body.action === 'unregister')).client);
  assert.deepEqual(new Set(gone.map(({ token }) => token)), new Set(joins.map(({ from }) => from)));
});

check('a payload that cannot be decoded is counted, and is a failure', async (t) => {
  const { url } = await runServer(t, ['--quiet']);
  const presenter = await Presenter.open(t, url);
  const learners = learnersOf(t, url, ['--session', presenter.code, '--count', '2']);
  await presenter.all('join', 2);
  presenter.bus.publish(presenter.token, { from: 'x', type: 'questionStart', data: ['AAAA'] });
  presenter.publish('poll', null);
  presenter.bus.publish(presenter.token, { from: 'x', type: 'not for learners', data: 'AAAA' });
  presenter.bus.publish(presenter.token, null);
  await presenter.stop();
  assert.deepEqual(await learners.exited, { code: 1, signal: null });
  assert.match(learners.lines[0], /decode-failures=4$/);
  assert.match(learners.stderr(), /"questionStart" cannot be read/);
});

check('learners that cannot join are a failure', async (t) => {
  const { url } = await runServer(t, ['--quiet']);
  const learners = learnersOf(t, url, ['--session', '000000', '--count', '2']);
  assert.deepEqual(await learners.exited, { code: 1, signal: null });
  assert.deepEqual(learners.lines, ['learners: joined=0 questions=0 cards=0 answers=0 decode-failures=0']);
  assert.match(learners.stderr(), /session\.error\.unknownCode/);
});

// --- one learner, inside the test ---

async function lesson(t, settings = {}) {
  const { url } = await startClassroom(t);
  const presenter = await Presenter.open(t, url);
  const notes = [];
  const learner = new Learner(0, { url, note: (text) => notes.push(text), ...settings });
  t.after(() => learner.leave());
  await learner.join(presenter.code);
  await presenter.next('join');
  return { presenter, learner, notes };
}

check('a learner shows its name and device, and says where it is', async (t) => {
  const { url } = await startClassroom(t);
  const presenter = await Presenter.open(t, url);
  const learner = new Learner(3, { url, note: assert.fail });
  t.after(() => learner.leave());
  await learner.join(presenter.code);
  const { from, value } = await presenter.next('join');
  assert.equal(from, learner.token);
  assert.deepEqual(value, { userName: 'Ада 4', deviceType: 'tablet' });
  const { action, client } = await presenter.bus.nextBody((body) => body.action);
  assert.deepEqual([action, client], ['register', { token: learner.token, type: 'user' }]);
});

check('a paused learner answers after the resume', async (t) => {
  const { presenter, learner } = await lesson(t, { answerAfter: 200 });
  presenter.ask({ id: 'q', type: 'text' });
  presenter.publish('pause', 'p');
  // Another one, asked later, thinks for longer: by its answer the paused one would have answered too.
  const other = new Learner(1, { url: presenter.host.url, note: () => {}, answerAfter: 300 });
  t.after(() => other.leave());
  await other.join(presenter.code);
  presenter.ask({ id: 'other', type: 'text' }, `.user.${other.token}`);
  assert.equal((await presenter.next('questionResponse')).from, other.token);
  assert.equal(learner.answers, 0);
  presenter.publish('resume', 'p');
  assert.equal((await presenter.next('questionResponse')).value.questionId, 'q');
  assert.equal(learner.answers, 1);
});

check('a stopped question is not answered, and the next one is, unpaused', async (t) => {
  const { presenter, learner } = await lesson(t, { answerAfter: 100 });
  presenter.ask({ id: 'stopped', type: 'text' });
  presenter.publish('pause', 'p');
  presenter.publish('pollStop', 'p');
  presenter.ask({ id: 'next', type: 'text' });
  assert.equal((await presenter.next('questionResponse')).value.questionId, 'next');
  assert.deepEqual([learner.questions, learner.answers], [2, 1]);
});

check('a learner works through an assessment, question by question', async (t) => {
  const { presenter, learner } = await lesson(t);
  const own = `.user.${learner.token}`;
  presenter.publishObject('assessmentStart', { assessmentToken: 'a', questionCount: 4, startingQuestionNumber: 2 }, own);
  for (const number of [2, 3, 4]) {
    const { value } = await presenter.next('questionGet');
    assert.deepEqual(value, { questionNumber: number, assessmentToken: 'a' });
    const question = { id: `q${number}`, questionNumber: number, type: 'number', questionSetMode: 'Assessment' };
    presenter.ask(question, own);
    const { value: answer } = await presenter.next('questionResponse');
    assert.equal(answer.questionId, `q${number}`);
    assert.equal(answer.studentAssessmentToken, 'a');
    assert.equal(answer.questionSetMode, 'Assessment');
  }
  presenter.publishObject('dialogShow', { text: 'Done', isDismissible: true }, own);
  presenter.publishObject('questionSetReview', { text: 'Look', showNavigation: true }, own);
  presenter.publishObject('assessmentStop', { assessmentToken: 'a' });
  presenter.ask({ id: 'after', type: 'text' });
  assert.equal((await presenter.next('questionResponse')).value.studentAssessmentToken, undefined);
  assert.equal(presenter.bus.frames.filter(({ body }) => body.type === 'questionGet').length, 0);
  assert.deepEqual([learner.questions, learner.answers, learner.dialogs], [4, 4, 2]);
});

check('a poll in the midst of an assessment takes no question away', async (t) => {
  const { presenter } = await lesson(t, { answerAfter: 100 });
  presenter.publishObject('assessmentStart', { assessmentToken: 'a', questionCount: 1 });
  await presenter.next('questionGet');
  presenter.ask({ id: 'q1', questionNumber: 1, type: 'text', questionSetMode: 'Assessment' });
  presenter.ask({ id: 'between', type: 'text' });
  assert.equal((await presenter.next('questionResponse')).value.questionId, 'between');
  assert.equal((await presenter.next('questionGet')).value.questionNumber, 1);
});

check('what learners mean to answer in assessments is told in words', async (t) => {
  const { url } = await startClassroom(t);
  const presenter = await Presenter.open(t, url);
  const crowd = new Crowd({ url, count: 2, note: () => {} });
  const attended = crowd.attend(presenter.code, new AbortController().signal);
  const indexes = indexByToken(await presenter.all('join', 2));
  const questions = [
    { id: 'q1', type: 'multiple', numberOfCorrectOptions: 2, activityOptions: options('A', 'B', 'C') },
    { id: 'q2', type: 'text' },
  ].map((question, i) => ({ ...question, questionNumber: i + 1, questionSetMode: 'Assessment' }));
  presenter.publishObject('assessmentStart', { assessmentToken: 'a', title: 'Test', questionCount: 2 });
  const sent = new Map([[0, []], [1, []]]);
  for (const question of questions) {
    await presenter.all('questionGet', 2);
    presenter.ask(question);
    for (const { from, value } of await presenter.all('questionResponse', 2)) {
      const picked = value.optionAnswers?.map(({ activityOptionId }) => activityOptionId).join('');
      sent.get(indexes.get(from)).push(picked ?? value.answer);
    }
  }
  await presenter.stop();
  await attended;
  const [heading, header, ...rows] = crowd.meantAnswers().map((line) => line.trim().split(/ {2,}/));
  assert.deepEqual([heading, header], [['Meant as answers to "Test":'], ['Learner', '1', '2']]);
  assert.deepEqual(rows.sort(), [[nameOf(0), ...sent.get(0)], [nameOf(1), ...sent.get(1)]].sort());
});

check('an assessment without a starting number begins with question 1', async (t) => {
  const { presenter } = await lesson(t);
  presenter.publishObject('assessmentStart', { assessmentToken: 'a', questionCount: 1, startingQuestionNumber: 0 });
  assert.equal((await presenter.next('questionGet')).value.questionNumber, 1);
});

check('one learner can be sent away', async (t) => {
  const { presenter, learner } = await lesson(t);
  presenter.publish('disconnect', '', `.user.${learner.token}`);
  await learner.ended;
  const { client } = await presenter.bus.nextBody((body) => body.action === 'unregister');
  assert.deepEqual(client, { token: learner.token, type: 'user' });
});

check('questions of a crowd are the most that one learner was asked', async (t) => {
  const { url } = await startClassroom(t);
  const presenter = await Presenter.open(t, url);
  const crowd = new Crowd({ url, count: 2, note: () => {} });
  const attended = crowd.attend(presenter.code, new AbortController().signal);
  const [first] = await presenter.all('join', 2);
  presenter.ask({ id: 'all', type: 'text' });
  await presenter.all('questionResponse', 2);
  presenter.ask({ id: 'one', type: 'text' }, `.user.${first.from}`);
  await presenter.next('questionResponse');
  await presenter.stop();
  await attended;
  assert.ok(crowd.ok);
  assert.equal(crowd.summary(), 'learners: joined=2 questions=2 cards=0 answers=3 decode-failures=0');
});

check('learners who have lost the service end with 1; with --reconnect they come back with their answers', async (t) => {
  for (const [more, code] of [[[], 1], [['--reconnect'], 0]]) {
    const { classroom, url } = await startClassroom(t);
    const presenter = await Presenter.open(t, url);
    const wire = await openWire(t, url);
    const learners = learnersOf(t, wire.url, ['--session', presenter.code, '--count', '2', '--quiet', ...more]);
    const before = await presenter.all('join', 2);
    presenter.ask({ id: 'one', type: 'text' });
    const answers = await presenter.all('questionResponse', 2);
    wire.cut();
    wire.mend();
    if (code === 0) {
      const tokens = (messages) => messages.map(({ from }) => from).sort();
      assert.deepEqual(tokens(await presenter.all('join', 2)), tokens(before));
      const again = await presenter.all('questionResponse', 2);
      for (const { from, value } of again) assert.deepEqual(value, answers.find((one) => one.from === from).value);
      await presenter.stop();
    }
    assert.deepEqual(await learners.exited, { code, signal: null }, learners.stderr());
    assert.match(learners.lines[0], /joined=2 questions=1 cards=0 answers=2 /);
    await classroom.close();
  }
});

// Over XHR, a cut leaves the answer on which it listens without an end, and sockjs-client does not hear of that.
check('a learner with --reconnect notices that nothing comes any more, although it sends nothing', { timeout: 30000 }, async (t) => {
  const { url } = await startClassroom(t);
  const presenter = await Presenter.open(t, url);
  const wire = await openWire(t, url);
  const learner = new Learner(0, {
    url: wire.url, note: () => {}, reconnect: true, silence: 500, transports: ['xhr-streaming'],
  });
  t.after(() => learner.leave());
  await learner.join(presenter.code);
  const { from } = await presenter.next('join');
  presenter.publish('dialogShow', {}, `.user.${from}`);
  while (learner.dialogs === 0) await new Promise(setImmediate); // else the end of its own request tells
  wire.cut();
  wire.mend();
  assert.equal((await presenter.next('join')).from, from);
  presenter.ask({ id: 'one', type: 'text' });
  assert.equal((await presenter.next('questionResponse')).from, from);
});
