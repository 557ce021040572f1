// The hosts of the guide, on the local classroom with three simulated learners and a remote control. Arguments: the
// folder of the programs.
import assert from 'node:assert/strict';
import { startRemoteControl } from './support/remote-control.mjs';
import { Program, SOURCE, startClassroom, startLearners, withPrograms } from './support/programs.mjs';

const LEARNERS = 3;
const folder = process.argv[2];

async function onTheLesson(url) {
  const learners = startLearners(url, LEARNERS);
  const host = new Program(`${folder}/lesson`, [url, 'teacher', 'chalk', String(LEARNERS)]);
  await host.says(/password is wrong/);
  const [, code] = await host.says(/^Join with the code (\S+)$/m);
  const [, right] = await host.says(/^B Carbon dioxide: (\d)$/m);
  assert.ok(Number(right) <= LEARNERS);
  const remote = await startRemoteControl(url, code);
  remote.send('nextCard');
  while ((await remote.hears('currentCard')).currentCard !== '2');
  remote.send('stopSession');
  await host.succeeds();
  remote.close();
  await learners.succeeds();
  // Who is listed before it has said that it joins can get the question twice. Both answers count as one.
  assert.match(learners.output, /joined=3 questions=[12] cards=0 answers=[3-6] decode-failures=0/);
}

async function onTheWire(url) {
  const learners = startLearners(url, LEARNERS);
  const picture = `${SOURCE}presenter/lessons/images/leaf.png`;
  const host = new Program(`${folder}/guide`, [url, 'teacher', 'chalk', String(LEARNERS), picture]);
  const [, code] = await host.says(/^Join with the code (\S+)$/m);
  await host.says(/^ok learners$/m);
  // Asks which lesson it is, and for the next card.
  const remote = await startRemoteControl(url, code);
  remote.send('requestLessonInfo');
  const told = await remote.hears('currentLesson');
  assert.deepEqual(told, { lessonId: 'leaves', name: 'Photosynthesis' });
  assert.equal((await remote.hears('currentCard')).currentCard, '1');
  remote.send('nextCard');
  await host.succeeds();
  remote.close();
  await learners.succeeds();
  // Two polls and two questions of an assessment; the picture by its address, and as bytes.
  assert.match(learners.output, /joined=3 questions=4 cards=2 answers=12 decode-failures=0/);
}

await withPrograms(async () => {
  const [, url] = await startClassroom();
  await onTheLesson(url);
  await onTheWire(url);
});
