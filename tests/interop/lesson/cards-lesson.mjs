// The lesson of cards, with a remote control that looks on: every card and every poll's card comes with the very picture
// that the lesson names, be it in the message or uploaded; the remote control is told of the lesson and of its cards.
//
// node cards-lesson.mjs CALYX_PRESENTER
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { isDeepStrictEqual } from 'node:util';
import { classroomModule, lessonFile, numberOf, run, teach } from './lesson.mjs';

const LEARNERS = 30;
const { decodeData, encodeData } = await classroomModule('codec.js');
const { waitForSession } = await classroomModule('crowd.js');
const { post } = await classroomModule('rest.js');
const EventBus = createRequire(lessonFile('../../classroom/package.json'))('vertx3-eventbus-client');

// What a device of the session gets, by type.
class Watcher {
  #got = new Map();
  #awaited = new Map();

  /** Resolves once the presenter has answered: by then the bus has taken all that was registered before. */
  async open(url) {
    const { code } = await waitForSession(url, 0);
    const { userToken, sessionToken, serverUrl } = await post(url, '/tavisto/classroom/session/join', {
      userName: 'Remote control', sessionCode: code, mode: 'controller', deviceName: 'watcher', deviceType: 'controller',
    });
    const bus = new EventBus(`${serverUrl}/eventbus`);
    await new Promise((resolve) => { bus.onopen = resolve; });
    for (const place of ['', '.learner', '.controller']) {
      bus.registerHandler(sessionToken + place, (error, { body }) => this.#take(body));
    }
    const command = { from: userToken, type: 'requestLesson', data: encodeData({}) };
    bus.publish(`${sessionToken}.presenter`, command);
    await new Promise((resolve) => { this.#awaited.set('currentCard', resolve); });
  }

  all(type) {
    return this.#got.get(type) ?? [];
  }

  #take({ type, data }) {
    this.#got.set(type, [...this.all(type), decodeData(data)]);
    this.#awaited.get(type)?.();
  }
}

const picture = (name) => readFileSync(lessonFile(`images/${name}.png`));

// The bytes that a device finds under the reference, which may be in CSS's url('...').
async function load(reference) {
  const response = await fetch(reference.replace(/^url\('(.*)'\)$/, '$1'));
  assert.equal(response.status, 200, reference);
  assert.equal(response.headers.get('content-type'), 'image/png');
  return Buffer.from(await response.arrayBuffer());
}

async function checkPictures(watcher) {
  const cards = watcher.all('showCard').map(({ components: [{ blob }] }) => blob.url);
  assert.ok(cards[0].startsWith('data:image/png;base64,'));
  assert.ok(cards.slice(1).every((url) => url.startsWith('http://127.0.0.1:')));
  assert.deepEqual(await Promise.all(cards.map(load)), ['leaf', 'sun', 'drop', 'drop'].map(picture));
  const polls = [...watcher.all('questionStart'), ...watcher.all('poll')].map(({ card }) => card.styles.backgroundImage);
  assert.ok(polls.every((reference) => reference.startsWith("url('http://127.0.0.1:")), polls.join());
  assert.deepEqual(await Promise.all(polls.map(load)), ['leaf', 'sun'].map(picture));
}

function checkRemoteControl(watcher) {
  const lesson = { lessonId: 'light-to-sugar', name: 'From light to sugar' };
  assert.ok(watcher.all('currentLesson').every((told) => isDeepStrictEqual(told, lesson)));
  const cards = watcher.all('currentCard').map(({ currentCard, totalCards }) => `${currentCard} of ${totalCards}`);
  assert.deepEqual(cards.filter((card, i) => card !== cards[i - 1]), ['1 of 3', '2 of 3', '3 of 3', '2 of 3']);
}

await run(async () => {
  const watcher = new Watcher();
  const { lesson, learners } = await teach('cards.lesson', LEARNERS, async (url) => {
    await watcher.open(url);
    return () => checkPictures(watcher);
  });
  checkRemoteControl(watcher);
  assert.equal(numberOf(lesson, /^Total: .* (\d+) cards/m), 4);
  assert.equal(numberOf(learners, /cards=(\d+)/), 4);
  assert.equal(numberOf(learners, /answers=(\d+)/), 2 * LEARNERS);
  console.log('4 cards and 2 polls with their pictures');
  process.exit(); // clients that have been closed keep timers for a while
});
