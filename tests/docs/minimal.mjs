// The minimal example, on the local classroom with three simulated learners. Argument: the program.
import assert from 'node:assert/strict';
import { Program, startClassroom, startLearners, withPrograms } from './support/programs.mjs';

const LEARNERS = 3;

await withPrograms(async () => {
  const [, url] = await startClassroom();
  const learners = startLearners(url, LEARNERS);
  const host = new Program(process.argv[2], [url, 'teacher', 'chalk', String(LEARNERS)]);
  await host.succeeds();
  await learners.succeeds();
  assert.match(host.output, /^Join with the code \S+$/m);
  const counts = [...host.output.matchAll(/^[A-D]: (\d+)$/gm)].map(([, count]) => Number(count));
  assert.equal(counts.length, 4, host.output);
  assert.equal(counts.reduce((sum, count) => sum + count), LEARNERS, host.output);

  const refused = new Program(process.argv[2], [url, 'teacher', 'cheese', String(LEARNERS)]);
  assert.equal(await refused.ended, 1);
  assert.match(refused.output, /password is wrong/);
});
